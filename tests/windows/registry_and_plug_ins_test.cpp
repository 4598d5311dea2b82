// The scans that a profile asks for: registry keys, folders named in the registry, plug-ins.

#include <gtest/gtest.h>

#include <list>

#include "tests/windows/driver.h"
#include "tests/windows/expected.h"

namespace drive {
namespace {

using namespace std::string_literals;

constexpr char kKey[] = "Software\\Hostscope test";
constexpr char kScanned[] = "Software\\Hostscope test of folders";
constexpr char kEntry[] = "HKCU\\Software\\Hostscope test,1";

// What stands below the last banner.
std::string LastSection(const std::string& report) {
  const size_t rule = report.rfind("=\r\n\r\n");
  return rule == std::string::npos ? report : report.substr(rule + 5);
}

// The system lists subkeys and values by their names.
TEST(RegistryKeys, AreWrittenWithEveryTypeOfValue) {
  const std::string long_text(3000, 'x');
  const struct {
    const char* name;
    DWORD type;
    std::string data;
    std::string text;
  } rows[] = {
      {"a text", REG_SZ, long_text + '\0', '"' + long_text + '"'},
      {"c nothing", REG_BINARY, "", "(value not set)"},
      {"e list", REG_MULTI_SZ, "one\0two, three\0\0"s, "\"one\",\"two, three\""},
      {"g number", REG_DWORD, "\x0A\0\0\0"s, "0x0000000a (10)"},
      {"i number", REG_QWORD, "\0\0\0\0\0\0\0\x80"s, "0x8000000000000000 (9223372036854775808)"},
  };
  std::list<RegistryValue> values;
  std::string expected =
      "HKEY_CURRENT_USER\\Software\\Hostscope test\r\n    \\Another\r\n        w=\"x\"\r\n"
      "    \\Sub \xE4\r\n        \\Deep\r\n            v=\"\xFC\"\r\n    (Default)=\"y\"\r\n";
  for (const auto& row : rows) {
    values.emplace_back(HKEY_CURRENT_USER, kKey, row.name, row.type, row.data);
    expected += "    "s + row.name + "=" + row.text + "\r\n";
  }
  values.emplace_back(HKEY_CURRENT_USER, kKey, "", REG_SZ, "y\0"s);
  values.emplace_back(HKEY_CURRENT_USER, kKey + "\\Sub \xE4\\Deep"s, "v", REG_SZ, "\xFC\0"s);
  values.emplace_back(HKEY_CURRENT_USER, kKey + "\\Another"s, "w", REG_SZ, "x\0"s);
  const Folder folder;
  std::vector<std::string> list;
  const std::string report = ReportOf(
      folder, "[REGISTRY KEYS]\r\n"s + kEntry + "\r\nHKLM\\no such key\r\nnothing\r\n", {}, &list);
  EXPECT_EQ(LastSection(report), expected +
                                     "\r\nHKEY_LOCAL_MACHINE\\no such key\r\n"
                                     "can not open the registry key.\r\n\r\n");
  EXPECT_EQ(list.front(), ProgressLine("Registry keys...", "Ok"));
}

// A key that links to the key it lies in. The link goes with the object.
class LinkBack {
 public:
  LinkBack() {
    constexpr DWORD kOptions = REG_OPTION_CREATE_LINK | REG_OPTION_VOLATILE;
    RegCreateKeyExA(HKEY_LOCAL_MACHINE, "Software\\Hostscope test\\back", 0, nullptr, kOptions,
                    KEY_ALL_ACCESS, nullptr, &key_, nullptr);
    const std::wstring target = L"\\Registry\\Machine\\Software\\Hostscope test";
    made_ = RegSetValueExW(key_, L"SymbolicLinkValue", 0, REG_LINK,
                           reinterpret_cast<const BYTE*>(target.data()),
                           static_cast<DWORD>(target.size() * sizeof(wchar_t))) == ERROR_SUCCESS;
  }
  ~LinkBack() {
    // RegDeleteKey would delete what it leads to.
    const auto delete_key = reinterpret_cast<LONG(WINAPI*)(HANDLE)>(
        reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtDeleteKey")));
    delete_key(key_);
    RegCloseKey(key_);
  }
  bool made() const { return made_; }

 private:
  HKEY key_ = nullptr;
  bool made_ = false;
};

TEST(RegistryKeys, LinksBackAreNamedOnly) {
  const RegistryValue value = RegistryValue::Text(HKEY_LOCAL_MACHINE, kKey, "v", "x");
  const LinkBack link;
  ASSERT_TRUE(link.made());
  const Folder folder;
  const std::string report = ReportOf(folder, "[REGISTRY KEYS]\r\nHKLM\\"s + kKey + ",1\r\n");
  EXPECT_EQ(LastSection(report),
            "HKEY_LOCAL_MACHINE\\Software\\Hostscope test\r\n    \\back\r\n    v=\"x\"\r\n\r\n");
}

TEST(ScanKeys, CallForTheFoldersSection) {
  const Folder folder;
  for (const std::string& named : {folder.path(), folder.program()}) {
    const auto value = RegistryValue::Text(HKEY_CURRENT_USER, kScanned, "Path", named);
    const std::string report = ReportOf(folder, "[SCAN KEYS]\r\nHKCU\\"s + kScanned + ",1,0\r\n");
    const bool has_section = report.find(" Folders & files ") != std::string::npos;
    EXPECT_EQ(has_section, named == folder.path()) << named;
  }
}

TEST(CustomDlls, WriteIntoTheReport) {
  const Folder folder;
  folder.CopyFromBuild("test_plugin.dll");
  folder.CopyFromBuild("sample.dll");
  const std::string by_path = folder.Path("test_plugin.dll");
  std::vector<std::string> list;
  const std::string report = ReportOf(folder,
                                      "[CUSTOM DLLS]\r\ntest_plugin.dll,Succeeds\r\n" + by_path +
                                          ",Fails\r\ntest_plugin.dll,Neither\r\ntest_plugin.dll\r\n"
                                          "no_plugin.dll,Succeeds\r\n"
                                          "sample.dll,WriteConfigurationFiles\r\n",
                                      {}, &list);
  const std::vector<std::string> expected = {"Custom dlls:",
                                             ProgressLine("test_plugin.dll...", "Ok"),
                                             ProgressLine((by_path + "...").c_str(), "Failed"),
                                             ProgressLine("test_plugin.dll...", "NoFunc"),
                                             ProgressLine("test_plugin.dll...", "NoFunc"),
                                             ProgressLine("no_plugin.dll...", "Absent"),
                                             ProgressLine("sample.dll...", "Ok"),
                                             "",
                                             kLastLine};
  EXPECT_EQ(list, expected);
  const auto lines = ReportLines(LastSection(report));
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[0], "first, second");
  char windows[MAX_PATH] = {};
  GetWindowsDirectoryA(windows, MAX_PATH);
  const std::string win_ini = windows + "\\WIN.INI"s;
  const auto bytes = ReadFileBytes(win_ini);
  EXPECT_EQ(lines[1], Padded("Configuration files", 27) + Padded(win_ini, 26) +
                          std::to_string(bytes.value_or("").size()) + " b");
}

}  // namespace
}  // namespace drive
