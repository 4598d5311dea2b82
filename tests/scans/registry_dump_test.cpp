#include "scans/registry_dump.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "profile/catalogue.h"
#include "scans/registry_value.h"
#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using namespace std::string_literals;

TEST(FormatRegistryValue, EveryTypeAndSize) {
  host::Machine machine;
  const host::UseMachine use(machine);
  struct Row {
    DWORD type;
    std::string data;
    std::string expected;
  };
  const std::string long_text(5000, 'x');
  const Row rows[] = {
      {REG_SZ, "abc\0"s, "\"abc\""},
      {REG_SZ, "\0"s, "\"\""},
      {REG_SZ, "ab\0cd\0"s, "\"ab\""},
      {REG_SZ, "abc", "\"ab\""},
      {REG_SZ, "a\"b\r\n\0"s, "\"a\"b\r\n\""},
      {REG_SZ, long_text + '\0', '"' + long_text + '"'},
      {REG_EXPAND_SZ, "%TEMP%\0"s, "\"%TEMP%\""},
      {REG_DWORD, "\x0A\0\0\0"s, "0x0000000a (10)"},
      {REG_DWORD, "\xFF\xFF\xFF\xFF\x01", "0xffffffff (4294967295)"},
      {REG_DWORD, "\x0A\0\x01"s, "0a 00 01 "},
      {REG_DWORD_BIG_ENDIAN, "\x12\x34\xAB\xCD", "0x1234abcd (305441741)"},
      {REG_DWORD_BIG_ENDIAN, "\x12", "12 "},
      {REG_QWORD, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", "0xffffffffffffffff (18446744073709551615)"},
      {REG_QWORD, "\x0A\0\0\0\x01\0\0\0"s, "0x000000010000000a (4294967306)"},
      {REG_QWORD, "\0\0\0\0\0\0\0\0"s, "0x0000000000000000 (0)"},
      {REG_QWORD, "\x0A\0\0\0\x01\0\0"s, "0a 00 00 00 01 00 00 "},
      {REG_BINARY, "\x01\xFF", "01 ff "},
      {REG_NONE, "\0\x80"s, "00 80 "},
      {REG_MULTI_SZ, "a\0b\0\0"s, "\"a\",\"b\""},
      {REG_MULTI_SZ, "a\0b\0"s, "\"a\",\"b\""},
      {REG_MULTI_SZ, "a\0bc"s, "\"a\",\"bc\""},
      {REG_MULTI_SZ, "a", "\"a\""},
      {REG_MULTI_SZ, "a\0\0b\0\0"s, "\"a\""},
      {REG_MULTI_SZ, "\0b\0\0"s, ""},
      {REG_MULTI_SZ, "a,\0\",\0\0"s, "\"a,\",\"\",\""},
      {REG_LINK, "a\0"s, "61 00 "},
      {REG_RESOURCE_LIST, "\x02", "02 "},
      {0x12345678, "ab", "61 62 "},
  };
  for (const Row& row : rows) {
    // On its own piece of memory, so that a look beyond the data is seen.
    const std::vector<char> data(row.data.begin(), row.data.end());
    EXPECT_EQ(FormatRegistryValue(row.type, data).c_str(), row.expected)
        << row.type << " of " << data.size() << " bytes";
    EXPECT_STREQ(FormatRegistryValue(row.type, {}).c_str(), "(value not set)") << row.type;
  }
}

constexpr char kReport[] = "[REGISTRY KEYS]\r\n";

TEST(RegistryKeys, EntriesAndTheirDumps) {
  struct Row {
    const char* entry;
    std::string expected;
    bool opened = true;
  };
  const std::string demo = "    (Default)=\"abc\"\r\n    Bin=01 ff \r\n\r\n";
  const std::string sub = "        Count=0x0000000a (10)\r\n";
  const std::string heading = "HKEY_CURRENT_USER\\Software\\Demo\r\n";
  const std::string shallow = heading + "    \\Sub\r\n" + demo;
  const std::string whole = heading + "    \\Sub\r\n" + sub + demo;
  const std::string root = "HKEY_CURRENT_USER\r\n    \\Software\r\n\r\n";
  const std::string absent = "can not open the registry key.\r\n\r\n";
  const Row rows[] = {
      {"HKCU\\Software\\Demo,1", whole},
      {"HKCU\\Software\\Demo,0x1", whole},
      {"HKCU\\Software\\Demo,01", whole},
      {"HKCU\\Software\\Demo,-1", whole},
      {"HKCU\\Software\\Demo", shallow},
      {"HKCU\\Software\\Demo,0", shallow},
      {"HKCU\\Software\\Demo, 1", shallow},
      {"HKCU\\Software\\Demo,ware,1", whole},
      {"hkcu\\SOFTWARE\\demo\\sub",
       "HKEY_CURRENT_USER\\SOFTWARE\\demo\\sub\r\n    Count=0x0000000a (10)\r\n\r\n"},
      {"HKCU", root},
      {"HKCU\\", "HKEY_CURRENT_USER\\\r\n    \\Software\r\n\r\n"},
      {"HKCU\\Soft", "HKEY_CURRENT_USER\\Soft\r\n" + absent, false},
      {"HKEY_CURRENT_USER\\Software", "", false},
      {"nothing\r\nHKLM\\x\r\nHKCU", "HKEY_LOCAL_MACHINE\\x\r\n" + absent + root},
  };
  for (const Row& row : rows) {
    test::ReportRun run;
    host::Registry& registry = run.machine().registry;
    registry.SetDword("HKCU\\Software\\Demo\\Sub", "Count", 10);
    registry.SetText("HKCU\\Software\\Demo", "", "abc");
    registry.SetValue("HKCU\\Software\\Demo", "Bin", REG_BINARY, "\x01\xFF");
    run.Run(kReport + std::string(row.entry));
    EXPECT_EQ(run.LastSection(), row.expected) << row.entry;
    const auto word =
        row.opened ? "Registry keys...         Ok" : "Registry keys...         Failed";
    EXPECT_EQ(run.Progress(), std::vector<std::string>{word}) << row.entry;
  }
}

// Subkeys with all that lies below them come before a key's own values, each in its order.
TEST(RegistryKeys, Order) {
  test::ReportRun run;
  host::Registry& registry = run.machine().registry;
  registry.SetText("HKLM\\K", "y", "1");
  registry.SetText("HKLM\\K", "x", "2");
  registry.SetText("HKLM\\K\\B\\C", "deep", "3");
  registry.SetText("HKLM\\K\\B", "b", "4");
  registry.SetText("HKLM\\K\\A", "a", "5");
  registry.SetText("HKLM\\K\\\0hidden"s, "never", "0");  // opened by its name it would be K
  // Read as a path the first would be A; the other may be one character of two bytes.
  const auto key = host::Registry::FindBelow(registry.Root(host::Hive::kLocalMachine), "K");
  key->MakeSubkey("A\\\0x"s);
  key->MakeSubkey("\x95\\\0x"s);
  registry.SetText("HKLM\\K\\\x95", "c", "7");
  registry.DenyAccess("HKLM\\K\\Closed");
  registry.SetText("HKLM\\K\\Closed", "never", "6");
  run.Run(kReport + "HKLM\\K,1\r\n"s);
  EXPECT_EQ(run.LastSection(),
            "HKEY_LOCAL_MACHINE\\K\r\n"
            "    \\\r\n"
            "    \\A\r\n        a=\"5\"\r\n"
            "    \\A\\\r\n"
            "    \\B\r\n        \\C\r\n            deep=\"3\"\r\n        b=\"4\"\r\n"
            "    \\Closed\r\n"
            "    \\\x95\r\n        c=\"7\"\r\n"
            "    \\\x95\\\r\n        c=\"7\"\r\n"
            "    y=\"1\"\r\n    x=\"2\"\r\n\r\n");
}

// A link is entered unless it leads to a key that is open; what looks like one above it is no link.
TEST(RegistryKeys, Links) {
  struct Row {
    const char* what;
    std::function<void(host::Machine&)> arrange;
    std::string expected;  // below the heading
    const char* key = "K";
  };
  const auto two_links = [](host::Machine& m) {
    m.registry.MakeLink("HKLM\\K\\A\\1", "HKLM\\L");
    m.registry.MakeLink("HKLM\\L\\2", "HKLM\\K\\A");
    m.registry.SetWriteTime("HKLM\\L", 1);  // nothing else tells it from K and A
  };
  const Row rows[] = {
      {"to the key it is in",
       [](auto& m) { m.registry.MakeLink("HKLM\\K\\A\\self", "HKLM\\K\\A"); },
       "\\A \\self v=02 v=01 "},
      {"two levels up", [](auto& m) { m.registry.MakeLink("HKLM\\K\\A\\B\\up", "HKLM\\K"); },
       "\\A \\B \\up v=02 v=01 "},
      {"two links", two_links, "\\A \\1 \\2 v=03 v=02 v=01 "},
      {"two links, from below", two_links, "\\1 \\2 v=03 v=02 ", "K\\A"},
      {"beyond the first key", [](auto& m) { m.registry.MakeLink("HKLM\\K\\A\\up", "HKLM\\K"); },
       "\\up \\A \\up v=02 v=01 v=02 ", "K\\A"},
      {"that can not be read",
       [](auto& m) {
         m.registry.MakeLink("HKLM\\K\\A\\self", "HKLM\\K\\A");
         m.registry.DenyAccess("HKLM\\K\\A\\self");
       },
       "\\A \\self v=02 v=01 "},
      {"to another key", [](auto& m) { m.registry.MakeLink("HKLM\\K\\other", "HKLM\\L"); },
       "\\A v=02 \\other v=03 v=01 "},
      {"no link", [](auto& m) { m.registry.MakeKey("HKLM\\K\\A\\A"); }, "\\A \\A v=02 v=01 "},
      {"no link, where the option is refused",
       [](auto& m) {
         m.registry.MakeKey("HKLM\\K\\A\\A");
         m.faults.FailNth("RegOpenKeyExA", 3, ERROR_INVALID_PARAMETER);
       },
       "\\A \\A v=02 v=01 "},
      {"nowhere", [](auto& m) { m.registry.MakeLink("HKLM\\K\\A\\1", "HKLM\\none"); },
       "\\A \\1 v=02 v=01 "},
  };
  for (const Row& row : rows) {
    test::ReportRun run;
    host::Registry& registry = run.machine().registry;
    for (const auto& [key, byte] : {std::pair{"K", "\1"}, {"K\\A", "\2"}, {"L", "\3"}})
      registry.SetValue("HKLM\\"s + key, "v", REG_BINARY, byte);
    row.arrange(run.machine());
    run.Run(kReport + "HKLM\\"s + row.key + ",1\r\n");
    std::istringstream lines(run.LastSection());
    std::string found;
    std::string line;
    for (std::getline(lines, line); lines >> line;)
      found += line + ' ';
    EXPECT_EQ(found, row.expected) << row.what;
  }
}

TEST(RegistryKeys, FailingAndChangingKeys) {
  struct Row {
    const char* what;
    std::function<void(host::Machine&)> arrange;
    std::string expected;  // below the heading
  };
  const std::string a = "    \\A\r\n", b = "    \\B\r\n", in_a = "        v=\"1\"\r\n";
  const std::string x = "    x=\"1\"\r\n", y = "    y=\"2\"\r\n";
  const auto at_first_own_value = [](host::Machine& machine, auto change) {
    machine.faults.AtCall("RegEnumValueA", [&machine, change] {
      // Two calls for A come before; B is not asked, it has said that it has no values.
      if (machine.faults.CallCount("RegEnumValueA") == 3) change(machine.registry);
    });
  };
  const Row rows[] = {
      {"a value grows",
       [=](host::Machine& m) {
         at_first_own_value(m, [](auto& r) { r.SetText("HKLM\\K", "y", std::string(99, 'y')); });
       },
       a + in_a + b + x},
      {"a value with a longer name comes",
       [=](host::Machine& m) {
         at_first_own_value(m, [](auto& r) { r.SetText("HKLM\\K", "longer", "3"); });
       },
       a + in_a + b + x + y},
      {"a value goes",
       [=](host::Machine& m) {
         at_first_own_value(m, [](auto& r) { r.RemoveValue("HKLM\\K", "x"); });
       },
       a + in_a + b + y},
      {"the key goes",
       [=](host::Machine& m) { at_first_own_value(m, [](auto& r) { r.RemoveKey("HKLM\\K"); }); },
       a + in_a + b},
  };
  for (const Row& row : rows) {
    test::ReportRun run;
    host::Registry& registry = run.machine().registry;
    registry.SetText("HKLM\\K", "x", "1");
    registry.SetText("HKLM\\K", "y", "2");
    registry.SetText("HKLM\\K\\A", "v", "1");
    registry.MakeKey("HKLM\\K\\B");
    const auto open_before = run.machine().handles.OpenObjects();
    row.arrange(run.machine());
    run.Run(kReport + "HKLM\\K,1\r\n"s);
    EXPECT_EQ(run.LastSection(), "HKEY_LOCAL_MACHINE\\K\r\n" + row.expected + "\r\n") << row.what;
    EXPECT_EQ(run.Progress(), std::vector<std::string>{"Registry keys...         Ok"});
    DestroyLists(run.settings());
    EXPECT_EQ(run.machine().handles.OpenObjects(), open_before) << row.what;
  }
}

TEST(RegistryKeys, LongNamesAndDeepTrees) {
  test::ReportRun run;
  host::Registry& registry = run.machine().registry;
  const std::string key_name(255, 'k'), value_name(16383, 'v'), text(70000, 't');
  registry.SetText("HKLM\\K\\" + key_name, value_name, text);
  constexpr int kDepth = 2000;
  registry.MakeKey("HKLM\\Deep");
  host::RegistryKey* key = registry.Root(host::Hive::kLocalMachine)->subkeys.Find("Deep").get();
  std::string expected = "HKEY_LOCAL_MACHINE\\K\r\n    \\" + key_name + "\r\n        " +
                         value_name + "=\"" + text + "\"\r\n\r\nHKEY_LOCAL_MACHINE\\Deep\r\n";
  std::vector<std::string> values;
  for (int level = 1; level <= kDepth; ++level) {
    const std::string indent(4 * static_cast<std::size_t>(level), ' ');
    key->SetValue("v", REG_SZ, std::to_string(level) + '\0');
    values.push_back(indent + "v=\"" + std::to_string(level) + "\"\r\n");
    if (level < kDepth) expected += indent + "\\k\r\n";
    if (level < kDepth) key = &key->MakeSubkey("k");
  }
  for (auto value = values.rbegin(); value != values.rend(); ++value)
    expected += *value;
  run.Run(kReport + "HKLM\\K,1\r\nHKLM\\Deep,1\r\n"s);
  EXPECT_TRUE(run.LastSection() == expected + "\r\n") << run.LastSection().substr(0, 999);
}

}  // namespace
}  // namespace hostscope
