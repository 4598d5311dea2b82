// The program from its command line to its end.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "tests/app/program_run.h"

namespace hostscope {
namespace {

using test::ProgramRun;

inline constexpr char kProfile[] = "[SYSTEM]\r\nTempFolder=1\r\n";

// The arguments of a command line; "@" in them stands for the path of the program's folder.
std::string InFolder(std::string arguments, ProgramRun& run) {
  const std::size_t place = arguments.find('@');
  if (place != std::string::npos) arguments.replace(place, 1, run.folder().path().string());
  return arguments;
}

TEST(Entry, WritesTheReportWhereItBelongs) {
  struct Row {
    const char* what;
    const char* profile_name;
    const char* general;  // further keys of the section
    const char* arguments;
    const char* report;  // below the program's folder
  };
  const Row rows[] = {
      {"a profile beside the program", "any.ini", "", "", "hscope.txt"},
      {"a relative folder counts from the program's", "my.ini", "", " \"my.ini\" \"sub\"",
       "sub/hscope.txt"},
      {"the desktop", "my.ini", "OutputFolder=1\r\nReportFileName=all.txt\r\n", "", "sub/all.txt"},
      {"an agreed message", "my.ini", "CreateMessageBox=1\r\nMessageButtons=4\r\n", "",
       "hscope.txt"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    ProgramRun run;
    std::filesystem::create_directory(run.folder().path() / "sub");
    run.machine().special_folders[CSIDL_DESKTOPDIRECTORY] = run.folder().PathOf("sub");
    run.desktop().StateAnswers({IDYES});
    run.WriteProfile(std::string(row.general) + kProfile, row.profile_name);
    run.Start(InFolder(row.arguments, run));
    ASSERT_TRUE(run.WaitForFinish());
    EXPECT_EQ(run.Lines().front(), "Temp folder...           Ok");
    run.Press('X');
    EXPECT_EQ(run.WaitForExit(), 0);
    const std::string report = run.folder().Read(row.report);
    EXPECT_TRUE(report.find("Temp folder                C:\\TEMP\r\n") != std::string::npos)
        << report;
  }
}

TEST(Entry, EndsAtOnceWhenTheMessageIsDeclined) {
  for (const int answer : {IDNO, IDCANCEL}) {
    ProgramRun run;
    run.WriteProfile("CreateMessageBox=1\r\nMessageButtons=3\r\n" + std::string(kProfile) +
                     "[MESSAGE]\r\nTo #RFPATH#\r\nas #RFNAME#?\r\n");
    run.desktop().StateAnswers({answer});
    run.Start();
    EXPECT_EQ(run.WaitForExit(), 0);
    const auto boxes = run.desktop().MessageBoxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "To " + run.folder().PathOf("hscope.txt") + "\r\nas hscope.txt?");
    EXPECT_EQ(boxes[0].style, 0x43u);
    EXPECT_EQ(run.machine().faults.CallCount("DialogBoxParamA"), 0u);
    EXPECT_FALSE(run.folder().Holds("hscope.txt"));
    EXPECT_TRUE(run.machine().handles.OpenObjects().empty());
  }
}

}  // namespace
}  // namespace hostscope
