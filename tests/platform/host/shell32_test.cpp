#include "platform/host/shell32.h"

#include <gtest/gtest.h>

#include "platform/host/machine.h"
#include "platform/host/user32.h"

namespace host {
namespace {

TEST(SpecialFolders, AreThoseOfTheMachine) {
  Machine machine;
  const UseMachine use(machine);
  machine.special_folders = {{CSIDL_PERSONAL, "C:\\My Documents"},
                             {CSIDL_DESKTOPDIRECTORY, std::string(300, 'x')}};
  const struct {
    int folder;
    const char* path;  // null: none
  } kRows[] = {
      {CSIDL_PERSONAL, "C:\\My Documents"}, {CSIDL_DESKTOPDIRECTORY, nullptr}, {7, nullptr}};
  for (const auto& row : kRows) {
    LPMALLOC allocator = nullptr;
    ASSERT_EQ(SHGetMalloc(&allocator), S_OK);
    LPITEMIDLIST list = nullptr;
    char path[MAX_PATH] = "";
    const bool found = SUCCEEDED(SHGetSpecialFolderLocation(nullptr, row.folder, &list)) &&
                       SHGetPathFromIDListA(list, path);
    EXPECT_EQ(found, row.path != nullptr) << row.folder;
    EXPECT_STREQ(path, row.path != nullptr ? row.path : "") << row.folder;
    const int lists = list != nullptr ? 1 : 0;
    EXPECT_EQ(machine.handles.OpenObjects()["item list"], lists);
    allocator->Free(list);
    allocator->Release();
    EXPECT_TRUE(machine.handles.OpenObjects().empty()) << row.folder;
  }
}

TEST(ShellExecute, IsOnRecordUnlessItFails) {
  Machine machine;
  const UseMachine use(machine);
  machine.faults.FailNth("ShellExecuteA", 2, 5);
  const auto open = [](LPCSTR target) {
    return reinterpret_cast<std::uintptr_t>(
        ShellExecuteA(nullptr, "open", target, nullptr, nullptr, SW_MAXIMIZE));
  };
  EXPECT_GT(open("C:\\r.txt"), 32u);
  EXPECT_LE(open("C:\\none.txt"), 32u);
  EXPECT_EQ(machine.opened_targets, std::vector<std::string>{"C:\\r.txt"});
  const auto openings = machine.desktop.ShellOpenings();
  ASSERT_EQ(openings.size(), 1u);
  EXPECT_EQ(openings[0].verb, "open");
  EXPECT_EQ(openings[0].show_command, 3);
}

}  // namespace
}  // namespace host
