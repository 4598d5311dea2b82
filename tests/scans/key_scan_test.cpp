#include "scans/key_scan.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

TEST(KeyScan, FolderPathTexts) {
  for (const char* text : {"C:\\Program Files\\App", "z:\\x", "C:\\", "C:\\a,b;c|d\"", "C:\\a\\\\b",
                           "\\\\server\\share\\folder", "\\\\server\\share\\folder\\",
                           "\\\\server\\share\\\\", "\\\\s\\?\\*"})
    EXPECT_TRUE(IsFolderPathText(text)) << text;
  for (const char* text : {"C:\\\\a",
                           "C:",
                           "C:a",
                           "C:/a",
                           "1:\\a",
                           "\xC4:\\a",
                           "[:\\a",
                           "@:\\a",
                           " C:\\a",
                           "C:\\a*",
                           "C:\\a?",
                           "C:\\<a",
                           "C:\\a>",
                           "%ProgramFiles%\\App",
                           "App\\x",
                           "\\App\\x\\y\\z\\w",
                           "",
                           "\\\\server\\share\\",
                           "\\\\server\\share",
                           "\\\\"})
    EXPECT_FALSE(IsFolderPathText(text)) << text;
}

class KeyScanRun : public testing::Test {
 protected:
  KeyScanRun() {
    run_.folder().Write("c/Program Files/App/app.exe", "MZ");
    run_.machine().files.MountDrive('C', run_.folder().path() / "c");
  }
  void SetText(const char* key, const char* name, const std::string& text) {
    run_.machine().registry.SetText(std::string("HKLM\\K") + key, name, text);
  }
  // The list of folders after a run with these entries. The report must be the one of a profile
  // that names these folders itself.
  std::vector<std::string> FoldersAfter(std::string_view entries, std::string_view folders = "") {
    run_.Run("[SCAN KEYS]\r\n" + std::string(entries) + "\r\n[FOLDERS]\r\n" + std::string(folders));
    std::vector<std::string> found;
    std::string named = "[FOLDERS]\r\n";
    for (int i = 0; i < run_.settings().folders.count(); ++i)
      named += found.emplace_back(run_.settings().folders.Get(i)) + "\r\n";
    const std::string report = run_.Report();
    run_.Run(named);
    EXPECT_EQ(report, run_.Report()) << entries;
    return found;
  }

  test::ReportRun run_;
};

using Entries = std::vector<std::string>;

TEST_F(KeyScanRun, WhichValuesAreTaken) {
  SetText("", "folder", "C:\\Program Files\\App\\");
  SetText("", "again", "C:\\Program Files\\App");
  SetText("", "other case", "c:\\program files\\app");
  SetText("", "file", "C:\\Program Files\\App\\app.exe");
  SetText("", "missing", "C:\\Gone\\\\");
  SetText("", "root", "C:\\");
  SetText("", "drive that is not there", "X:\\y");
  SetText("", "no path", "%ProgramFiles%\\App");
  SetText("", "number in the text", "C:\\a%u,1");
  SetText("", "long", "C:\\" + std::string(2000, 'l'));
  host::Registry& registry = run_.machine().registry;
  registry.SetExpandText("HKLM\\K", "other type", "C:\\Expand");
  registry.SetValue("HKLM\\K", "unterminated", REG_SZ, "C:\\Open");
  registry.SetValue("HKLM\\K", "nothing", REG_SZ, "");
  EXPECT_EQ(
      FoldersAfter("HKLM\\K"),
      (Entries{"C:\\Program Files\\App,0", "c:\\program files\\app,0", "C:\\Gone\\,0", "C:,0",
               "X:\\y,0", "C:\\a%u,1,0", "C:\\" + std::string(2000, 'l') + ",0", "C:\\Open,0"}));
  for (const std::string& line : run_.Progress())
    EXPECT_EQ(line.find("keys"), std::string::npos) << line;
}

TEST_F(KeyScanRun, SubtreesNumbersAndDuplicates) {
  SetText("", "own", "C:\\Own");
  SetText("\\B", "b", "C:\\B");
  SetText("\\A\\C", "c", "C:\\C");
  SetText("\\A", "a", "C:\\Own");
  const Entries shallow = {"C:\\Own,0"};
  const Entries whole = {"C:\\C,0", "C:\\Own,0", "C:\\B,0"};
  const Entries flagged = {"C:\\C,7", "C:\\Own,7", "C:\\B,7"};
  const struct {
    const char* entries;
    Entries expected;
    const char* folders = "";
  } rows[] = {
      {"HKLM\\K", shallow},
      {"HKLM\\K,0", shallow},
      {"HKLM\\K, 1", shallow},
      {"HKLM\\K,1", whole},
      {"HKLM\\K,1,7", flagged},
      {"HKLM\\K,0,-1", {"C:\\Own,4294967295"}},
      {"HKLM\\K,x,0x10", {"C:\\Own,16"}},
      {"HKLM\\K,lost,1,7", flagged},
      {"HKLM\\none,1\r\nHKEY_LOCAL_MACHINE\\K\r\nhklm\\k\\b", {"C:\\B,0"}},
      {"HKLM\\K\\B\r\nHKLM\\K,1\r\nHKLM\\K\\B,0,1", {"C:\\B,0", "C:\\C,0", "C:\\Own,0", "C:\\B,1"}},
      {"HKLM\\K,1", {"C:\\B,0", "c:\\own,0", "C:\\C,0", "C:\\Own,0"}, "C:\\B,0\r\nc:\\own,0"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(FoldersAfter(row.entries, row.folders), row.expected) << row.entries;
}

// Each text is found again, however many there are, and with no memory for the index too.
TEST_F(KeyScanRun, ManyFolders) {
  for (int i = 0; i < 300; ++i)
    SetText("", std::to_string(i).c_str(), "C:\\f" + std::to_string(i));
  HKEY key = nullptr;
  RegOpenKeyExA(HKEY_LOCAL_MACHINE, "K", 0, KEY_READ, &key);
  StringList list;
  ASSERT_TRUE(list.Create());
  {
    TextIndex folders(list);
    for (int i = 0; i < 2; ++i)
      ScanKeyForFolders(key, true, 0, folders);
    EXPECT_EQ(list.count(), 300);
    EXPECT_STREQ(list.Get(299), "C:\\f299,0");
  }
  const auto no_index = [&] {
    run_.machine().faults.FailNth("HeapAlloc", 1, ERROR_NOT_ENOUGH_MEMORY);
  };
  no_index();
  TextIndex folders(list);
  for (const char* text : {"C:\\f299,0", "C:\\new,0", "C:\\new,0"}) {
    no_index();
    folders.AppendIfNew(text);
  }
  EXPECT_EQ(list.count(), 301);
  RegCloseKey(key);
}

}  // namespace
}  // namespace hostscope
