// The scans that a profile asks for: registry keys, folders named in the registry, plug-ins.

#include <gtest/gtest.h>

#include "tests/windows/driver.h"
#include "tests/windows/expected.h"

namespace drive {
namespace {

using namespace std::string_literals;

constexpr char kTestKey[] = "Software\\Hostscope test";

// Subkeys first: a key with subkeys is not deleted on every system.
void DeleteTree(HKEY parent, const std::string& name) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(parent, name.c_str(), 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) return;
  char subkey[256];
  while (RegEnumKeyA(key, 0, subkey, sizeof subkey) == ERROR_SUCCESS)
    DeleteTree(key, subkey);
  RegCloseKey(key);
  RegDeleteKeyA(parent, name.c_str());
}

// A key of the test's own, which goes with everything below it.
class TestKey {
 public:
  TestKey() { DeleteTree(HKEY_CURRENT_USER, kTestKey); }
  ~TestKey() { DeleteTree(HKEY_CURRENT_USER, kTestKey); }
  TestKey(const TestKey&) = delete;
  TestKey& operator=(const TestKey&) = delete;

  void Set(const std::string& below, const char* name, DWORD type, const std::string& data) const {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, (kTestKey + below).c_str(), &key), ERROR_SUCCESS);
    RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(data.data()),
                   static_cast<DWORD>(data.size()));
    RegCloseKey(key);
  }
};

// What stands below the last banner.
std::string LastSection(const std::string& report) {
  const size_t rule = report.rfind("=\r\n\r\n");
  return rule == std::string::npos ? report : report.substr(rule + 5);
}

// The system lists subkeys and values by their names.
TEST(RegistryKeys, AreWrittenWithEveryTypeOfValue) {
  const TestKey key;
  const std::string long_text(3000, 'x');
  key.Set("", "", REG_SZ, "default\0"s);
  key.Set("", "a text", REG_SZ, long_text + '\0');
  key.Set("", "b empty", REG_SZ, "\0"s);
  key.Set("", "c nothing", REG_BINARY, "");
  key.Set("", "d variables", REG_EXPAND_SZ, "%TEMP%\\x\0"s);
  key.Set("", "e list", REG_MULTI_SZ, "one\0two, three\0\0"s);
  key.Set("", "f empty list", REG_MULTI_SZ, "\0"s);
  key.Set("", "g number", REG_DWORD, "\x0A\0\0\0"s);
  key.Set("", "h number", REG_DWORD_BIG_ENDIAN, "\0\0\x01\0"s);
  key.Set("", "i number", REG_QWORD, "\0\0\0\0\0\0\0\x80"s);
  key.Set("", "j bytes", REG_BINARY, "\x01\xFF");
  key.Set("", "k none", REG_NONE, "\x02");
  key.Set("", "l link", REG_LINK, "\x03");
  key.Set("", "m short number", REG_DWORD, "\x04");
  key.Set("\\Sub \xE4\\Deep", "v", REG_SZ, "\xFC\0"s);
  key.Set("\\Another", "w", REG_SZ, "x\0"s);
  const Folder folder;
  std::vector<std::string> list;
  const std::string report = ReportOf(
      folder, "[REGISTRY KEYS]\r\nHKCU\\"s + kTestKey + ",1\r\nHKLM\\no such key\r\nnothing\r\n",
      {}, &list);
  EXPECT_EQ(LastSection(report),
            "HKEY_CURRENT_USER\\Software\\Hostscope test\r\n"
            "    \\Another\r\n"
            "        w=\"x\"\r\n"
            "    \\Sub \xE4\r\n"
            "        \\Deep\r\n"
            "            v=\"\xFC\"\r\n"
            "    (Default)=\"default\"\r\n"
            "    a text=\"" +
                long_text +
                "\"\r\n"
                "    b empty=\"\"\r\n"
                "    c nothing=(value not set)\r\n"
                "    d variables=\"%TEMP%\\x\"\r\n"
                "    e list=\"one\",\"two, three\"\r\n"
                "    f empty list=\r\n"
                "    g number=0x0000000a (10)\r\n"
                "    h number=0x00000100 (256)\r\n"
                "    i number=0x8000000000000000 (9223372036854775808)\r\n"
                "    j bytes=01 ff \r\n"
                "    k none=02 \r\n"
                "    l link=03 \r\n"
                "    m short number=04 \r\n"
                "\r\n"
                "HKEY_LOCAL_MACHINE\\no such key\r\n"
                "can not open the registry key.\r\n"
                "\r\n");
  EXPECT_EQ(list.front(), ProgressLine("Registry keys...", "Ok"));
}

TEST(ScanKeys, CallForTheFoldersSection) {
  const Folder folder;
  for (const std::string& named : {folder.path(), folder.program()}) {
    const TestKey key;
    key.Set("\\Sub", "Path", REG_SZ, named + '\0');
    const std::string report = ReportOf(folder, "[SCAN KEYS]\r\nHKCU\\"s + kTestKey + ",1,0\r\n");
    EXPECT_EQ(report.find(" Folders & files ") != std::string::npos, named == folder.path())
        << named;
  }
}

TEST(CustomDlls, WriteIntoTheReport) {
  const Folder folder;
  folder.CopyFromBuild("test_plugin.dll");
  folder.CopyFromBuild("sample_plugin.dll");
  const std::string by_path = folder.Path("test_plugin.dll");
  std::vector<std::string> list;
  const std::string report = ReportOf(folder,
                                      "[CUSTOM DLLS]\r\ntest_plugin.dll,Succeeds\r\n" + by_path +
                                          ",Fails\r\ntest_plugin.dll,Neither\r\ntest_plugin.dll\r\n"
                                          "no_plugin.dll,Succeeds\r\n"
                                          "sample_plugin.dll,WriteConfigurationFiles\r\n",
                                      {}, &list);
  const std::vector<std::string> expected = {"Custom dlls:",
                                             ProgressLine("test_plugin.dll...", "Ok"),
                                             ProgressLine((by_path + "...").c_str(), "Failed"),
                                             ProgressLine("test_plugin.dll...", "NoFunc"),
                                             ProgressLine("test_plugin.dll...", "NoFunc"),
                                             ProgressLine("no_plugin.dll...", "Absent"),
                                             ProgressLine("sample_plugin.dll...", "Ok"),
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
