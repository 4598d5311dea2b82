#include "app/report_location.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/host/machine.h"
#include "platform/win32.h"

namespace hostscope {
namespace {

struct Location {
  std::string folder;
  std::string path;
};

struct Choice {
  const char* what;
  std::int32_t output_folder;
  const char* out_argument;  // null: none
  const char* report_name;
};

Location Locate(const Choice& choice) {
  const auto state = std::make_unique<RunState>();
  const auto settings = std::make_unique<ProfileSettings>();
  state->program_folder = DuplicateText("C:\\Tools\\Hscope");
  if (choice.out_argument != nullptr) state->out_argument = DuplicateText(choice.out_argument);
  settings->output_folder = choice.output_folder;
  CopyText(settings->report_file_name, choice.report_name);
  LocateReport(*state, *settings);
  return {state->report_folder.c_str(), state->report_path.c_str()};
}

TEST(ReportLocation, FollowsOutputFolderAndName) {
  host::Machine machine;
  const host::UseMachine use(machine);
  machine.special_folders = {{CSIDL_DESKTOPDIRECTORY, "C:\\WINNT\\Profiles\\jdoe\\Desktop"},
                             {CSIDL_PERSONAL, "D:\\Documents"}};
  struct Row {
    Choice choice;
    Location expected;
  };
  const Row rows[] = {
      {{"no argument", 0, nullptr, "hscope.txt"},
       {"C:\\Tools\\Hscope", "C:\\Tools\\Hscope\\hscope.txt"}},
      {{"an argument with its backslash", 0, "C:\\Out\\", "r.txt"},
       {"C:\\Out\\", "C:\\Out\\r.txt"}},
      {{"a relative argument", 0, "reports", "hscope.txt"}, {"reports", "reports\\hscope.txt"}},
      {{"an empty argument", 0, "", "hscope.txt"}, {"", "\\hscope.txt"}},
      {{"the desktop", 1, "C:\\Out", "r.txt"},
       {"C:\\WINNT\\Profiles\\jdoe\\Desktop", "C:\\WINNT\\Profiles\\jdoe\\Desktop\\r.txt"}},
      {{"the documents", 2, nullptr, "r.txt"}, {"D:\\Documents", "D:\\Documents\\r.txt"}},
      {{"any other number", 3, "C:\\Out", "r.txt"},
       {"C:\\Tools\\Hscope", "C:\\Tools\\Hscope\\r.txt"}},
      {{"a name that is a path", 2, "C:\\Out", "E:\\all\\r.txt"},
       {"D:\\Documents", "E:\\all\\r.txt"}},
  };
  for (const Row& row : rows) {
    const Location location = Locate(row.choice);
    EXPECT_EQ(location.folder, row.expected.folder) << row.choice.what;
    EXPECT_EQ(location.path, row.expected.path) << row.choice.what;
  }
  EXPECT_TRUE(machine.handles.OpenObjects().empty());
}

TEST(ReportLocation, IsTheRootWhenTheShellCannotGiveTheFolder) {
  for (const char* const function :
       {"SHGetSpecialFolderLocation", "SHGetPathFromIDListA", "no such folder"}) {
    host::Machine machine;
    const host::UseMachine use(machine);
    if (std::string(function) != "no such folder") {
      machine.special_folders = {{CSIDL_DESKTOPDIRECTORY, "C:\\Desktop"}};
      machine.faults.FailAlways(function, ERROR_NOT_SUPPORTED);
    }
    const Location location = Locate({"", 1, "C:\\Out", "r.txt"});
    EXPECT_EQ(location.folder, "") << function;
    EXPECT_EQ(location.path, "\\r.txt") << function;
    EXPECT_TRUE(machine.handles.OpenObjects().empty()) << function;
  }
}

}  // namespace
}  // namespace hostscope
