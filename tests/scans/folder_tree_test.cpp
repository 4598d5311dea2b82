#include "scans/folder_tree.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "profile/read_profile.h"
#include "tests/support/report_run.h"
#include "tests/support/versioned_file.h"

namespace hostscope {
namespace {

namespace fs = std::filesystem;

class FolderTree : public testing::Test {
 protected:
  // The folder C is drive C:; everything there was written on 18 November 2026.
  FolderTree() {
    fs::create_directory(disk_);
    machine_.files.MountDrive('C', disk_);
    machine_.files.StateWriteTime("*", 134394768000000000);
  }

  // The report's lines below the section's heading, for the entries. Whatever becomes of them,
  // nothing stays open and the program folder is the current one again.
  std::string Tree(const std::string& entries) {
    const auto open = machine_.handles.OpenObjects();
    run_.Run("[FOLDERS]\r\n" + entries);
    DestroyLists(run_.settings());
    EXPECT_EQ(machine_.handles.OpenObjects(), open) << entries;
    EXPECT_EQ(machine_.files.CurrentFolder(), program_folder_) << entries;
    const std::string report = run_.Report();
    const std::string heading =
        "\r\n\r\nFolders & Files:      [path]   [last write date]   [size]   [version]\r\n\r\n";
    const std::size_t at = report.find(heading);
    return at == std::string::npos ? report : report.substr(at + heading.size());
  }
  std::string Status() { return run_.Progress().back(); }
  void Write(const std::string& name, const std::string& content = "123") {
    run_.folder().Write("C/" + name, content);
  }
  static std::string File(const std::string& name) {
    return "|---" + name + std::string(25 - name.size(), ' ') + "18.11.26         3 b     \r\n";
  }

  test::ReportRun run_;
  host::Machine& machine_ = run_.machine();
  const fs::path disk_ = run_.folder().path() / "C";
  std::string program_folder_ = run_.folder().path();
};

TEST_F(FolderTree, DateSizeAndVersion) {
  Write("Data/Sub/a.txt");
  std::string library = test::Bytes({.fixed = {{5, 0, 2, 1}}});
  library.resize(1024);
  Write("Data/b.dll", library);
  EXPECT_EQ(Tree("C:\\Data,1\r\n"),
            "C:\\Data\r\n"
            "|---\\SUB\r\n"
            "|   |---a.txt                    18.11.26         3 b     \r\n"
            "|   \r\n"
            "|---b.dll                    18.11.26      1024 b     5.0.2.1\r\n\r\n");
  EXPECT_EQ(Status(), "Folders...               Ok");
  EXPECT_EQ(Tree("C:\\Data\r\n"),
            "C:\\Data\r\n|---\\SUB\r\n"
            "|---b.dll                    18.11.26      1024 b     5.0.2.1"
            "\r\n\r\n");
}

TEST_F(FolderTree, LevelsSeparatorsAndOrder) {
  fs::create_directories(disk_ / "T" / "Empty");
  fs::create_directories(disk_ / "T" / "Mid" / "Low" / "Void");
  for (const char* name : {"T/Mid/Low/x", "T/co-op.dll", "T/Coop.dll", "T/_A.TXT", "T/b\xC3\x84"})
    Write(name);
  const std::string files = File("_a.txt") + File("b\xE4") + File("coop.dll") + File("co-op.dll");
  EXPECT_EQ(Tree("C:\\T,1\r\n"),
            "C:\\T\r\n"
            "|---\\EMPTY\r\n"
            "|   \r\n"
            "|---\\MID\r\n"
            "|   |---\\LOW\r\n"
            "|   |   |---\\VOID\r\n"
            "|   |   |   \r\n"
            "|   |   |" +
                File("x").substr(1) + "|   |   \r\n" + files + "\r\n");
}

TEST_F(FolderTree, Entries) {
  Write("App/a");
  fs::create_directories(disk_ / "Own, dir");
  host::Registry& registry = machine_.registry;
  const auto state = [&registry](const char* name, const std::string& text) {
    registry.SetValue("HKLM\\Software\\App", name, 1, text + '\0');
  };
  state("Dir", "C:\\App\\");
  state("", "C:\\App");
  state("Empty", "");
  state("Gone", "C:\\Gone");
  registry.SetValue("HKLM\\Software\\App", "None", 1, "");
  const std::string app = "C:\\App\r\n" + File("a") + "\r\n";
  const std::string unread = "Can not read registry value.\r\n\r\n";
  const struct {
    const char* entry;
    std::string expected;
    bool entered;
  } rows[] = {
      {"HKLM\\Software\\App,Dir,0", app, true},
      {"hklm\\Software\\App,Dir,1", app, true},
      {"HKLM\\Software\\App,Dir", app, true},  // the default value
      {"HKLM\\Software\\App,1", app, true},
      {"HKLM\\Software\\App,Gone,1", "C:\\Gone\r\nFolder is not exists.\r\n\r\n", false},
      {"HKLM\\Software\\App,Empty,0", unread, false},
      {"HKLM\\Software\\App,None,0", unread, false},
      {"HKLM\\Software\\App,Other,0", unread, false},
      {"HKLM\\Software\\Other,0", unread, false},
      {"HKLM", unread, false},
      {"C:\\App\\,0", "C:\\App\\\r\n" + File("a") + "\r\n", true},
      {"C:\\Own, dir,0", "C:\\Own, dir\r\n\r\n", true},
      {"C:\\Own, dir", "C:\\Own\r\nFolder is not exists.\r\n\r\n", false},
      {"C:\\App\\a,1", "C:\\App\\a\r\nFolder is not exists.\r\n\r\n", false},
      {"C:", "C:\r\n|---\\APP\r\n|---\\OWN, DIR\r\n\r\n", true},
      {",1", "\r\nFolder is not exists.\r\n\r\n", false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Tree(std::string(row.entry) + "\r\n"), row.expected) << row.entry;
    EXPECT_EQ(Status(),
              row.entered ? "Folders...               Ok" : "Folders...               Failed")
        << row.entry;
  }
  const std::string program = run_.folder().path().string();
  EXPECT_TRUE(Tree("<run folder>,0\r\n").starts_with(program + "\r\n|---\\C\r\n|---report.txt  "));
  // Relative to the program folder; times of files on no drive are their own.
  EXPECT_TRUE(Tree("C\\App\r\n").starts_with("C\\App\r\n|---a   "));
}

TEST_F(FolderTree, OfAProgramInARoot) {
  Write("Data/a");
  run_.state().program_folder = DuplicateText("C:");
  program_folder_ = "C:\\";
  EXPECT_EQ(Tree("C:\\Data\r\n"), "C:\\Data\r\n" + File("a") + "\r\n");
}

TEST_F(FolderTree, NamesOutsideOfTheCodePage) {
  Write("T/\xE6\x97\xA5\xE6\x9C\xAC/a");
  Write("T/\xE4\xB8\xAD.dll", test::Bytes({.fixed = {{1, 0, 0, 1}}}));
  Write("T/\xE6\x9C\xAC.dll", test::Bytes({.fixed = {{2, 0, 0, 2}}}) + "12");
  Write("T/a.dll");
  const std::string name = "|---?.dll                    ";
  EXPECT_EQ(Tree("C:\\T,1\r\n"), "C:\\T\r\n|---\\??\r\n|   " + File("a") + "|   \r\n" + name +
                                     "18.11.26      1024 b     1.0.0.1\r\n" + name +
                                     "18.11.26      1026 b     2.0.0.2\r\n" + File("a.dll") +
                                     "\r\n");
  machine_.files.tells_short_names = false;
  const std::string unusable = "(name can not be used)\r\n";
  EXPECT_EQ(Tree("C:\\T,1\r\n"), "C:\\T\r\n|---\\??\r\n|   |---" + unusable + "|   \r\n" + name +
                                     unusable + name + unusable + File("a.dll") + "\r\n");
}

TEST_F(FolderTree, WhatIsLeftOutIsSaid) {
  const std::string long_name(123, 'n'), shown(123, 'N');
  fs::create_directories(disk_ / "P" / long_name / long_name / "deep");
  Write("P/" + long_name + "/" + std::string(150, 'f'));
  fs::create_directory_symlink("..", disk_ / "P" / "up");
  EXPECT_EQ(Tree("C:\\P,1\r\n"),
            "C:\\P\r\n"
            "|---\\" +
                shown +
                "\r\n"
                "|   |---\\" +
                shown +
                "\r\n"
                "|   |   |---\\DEEP\r\n"
                "|   |   |   |---(path is too long)\r\n"
                "|   |   |   \r\n"
                "|   |---" +
                std::string(150, 'f') +
                "(path is too long)\r\n"
                "|   \r\n"
                "|---\\UP\r\n"
                "|   |---(link, not followed)\r\n"
                "|   \r\n\r\n");
  const std::string rooted = run_.folder().path().string() + "\\" + std::string(250, 'd');
  fs::create_directory(run_.folder().path() / std::string(250, 'd'));
  EXPECT_EQ(Tree(rooted + "\r\n"), rooted + "\r\n|---(path is too long)\r\n\r\n");
}

TEST_F(FolderTree, WhatChangesOrFailsMeanwhile) {
  const std::string sub = "|---\\SUB\r\n|   \r\n";
  Write("M/a");
  Write("M/b");
  fs::create_directories(disk_ / "M" / "Sub");
  // The profile is looked at before; count from the section's first call on.
  bool stated = false;
  machine_.faults.AtCall("SetCurrentDirectoryA", [&] {
    if (stated || machine_.files.CurrentFolder() != run_.folder().path()) return;
    stated = true;
    machine_.faults.FailNth("FindFirstFileA", 5, ERROR_ACCESS_DENIED);
  });
  EXPECT_EQ(Tree("C:\\M,1\r\n"), "C:\\M\r\n" + sub +
                                     "|---a                        (file can not be read)\r\n" +
                                     File("b") + "\r\n");
  machine_.faults.AtCall("SetCurrentDirectoryA", {});
  machine_.faults.AtCall("GetFileVersionInfoSizeA", [&] { fs::remove(disk_ / "M" / "b"); });
  EXPECT_EQ(Tree("C:\\M,1\r\n"), "C:\\M\r\n" + sub + File("a") +
                                     "|---b                        (file can not be read)\r\n\r\n");
}

TEST_F(FolderTree, LargeFilesAndLargeFolders) {
  Write("L/huge.bin", "");
  fs::resize_file(disk_ / "L" / "huge.bin", 5000000000);
  EXPECT_EQ(Tree("C:\\L\r\n"),
            "C:\\L\r\n|---huge.bin                 18.11.265000000000 b     \r\n\r\n");
  StringList names;
  ASSERT_TRUE(names.Create());
  for (int i = 0; i < 100000; ++i)
    ASSERT_EQ(names.Append(std::to_string(i * 7919 % 100000).c_str()), i);
  EXPECT_LT(machine_.faults.CallCount("HeapReAlloc"), 100U);
}

}  // namespace
}  // namespace hostscope
