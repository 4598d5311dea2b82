#include "report/report_worker.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "profile/catalogue.h"
#include "tests/support/report_run.h"

namespace hostscope {
namespace {

inline constexpr char kHeader[] = "Report generated on 07 March 2002 09:05\r\n";

std::string Banner(const std::string& title) {
  const std::string rule(84, '=');
  const std::size_t left = (84 - title.size()) / 2 - 1;
  return "\r\n" + rule + "\r\n" + std::string(left, '=') + " " + title + " " +
         std::string(82 - title.size() - left, '=') + "\r\n" + rule + "\r\n\r\n";
}

TEST(ReportWorker, SectionsByTheirSwitches) {
  struct Row {
    const char* what;
    const char* profile;
    std::string expected;  // after the header line
  };
  const std::string system = Banner("SYSTEM INFORMATION");
  const Row rows[] = {
      {"nothing on", "[SYSTEM]\r\nTempFolder=0\r\n", "\r\n\r\n"},
      {"one item", "[SYSTEM]\r\nTempFolder=1\r\n",
       system + "Temp folder                C:\\TEMP\r\n\r\n"},
      {"another item, by a number below zero", "[SYSTEM]\r\nSystemFolder=-1\r\n",
       system + "System folder              C:\\WINNT\\system32\r\n\r\n"},
      {"a key that switches nothing", "[NETWORK]\r\nNetProtocols=1\r\n", "\r\n\r\n"},
      {"a key that counts toward the banner only", "[PRINTER]\r\nDefaultLocal=1\r\n",
       "\r\n\r\n" + Banner("PRINTERS")},
      {"the line inside the network section", "[NETWORK]\r\nNetCards=1\r\n",
       "\r\n" + Banner("NETWORK") + "\r\nNet cards (total 0)\r\n"},
      {"banners in report order",
       "[USB]\r\nControllers=1\r\n[DISK CONTROLLER]\r\nFDC=1\r\n"
       "[DISK DRIVE]\r\nLabel=1\r\n[PORT]\r\nPorts=1\r\n",
       "\r\n\r\n" + Banner("PORTS") + "Ports (total 0)\r\n" + Banner("DISK DRIVES") +
           "Logical disks              \r\n" + Banner("DISK CONTROLLERS") + "FDC (total 0)\r\n" +
           Banner("USB CONTROLLERS") + "USB (total 0)\r\n"},
      {"lists that are not empty",
       "[CUSTOM DLLS]\r\na.dll\r\n[DLLS]\r\nb.dll\r\n[FOLDERS]\r\n"
       "[SCAN KEYS]\r\nHKLM\\x\r\n[REGISTRY KEYS]\r\n",
       "\r\n\r\n" + Banner("DLLS VERSIONS") +
           "[dll name]                 [version]\r\nb.dll                      dll is missing\r\n" +
           Banner("ADDITIONAL INFORMATION")},
  };
  for (const Row& row : rows) {
    test::ReportRun run;
    run.Run(row.profile);
    EXPECT_EQ(run.Report(), kHeader + row.expected) << row.what;
  }
}

TEST(ReportWorker, TheFileShowsWhichItemIsRunning) {
  test::ReportRun run;
  std::string seen;
  std::vector<std::string> lines;
  run.machine().faults.AtCall("GetComputerNameA", [&] {
    seen = run.Report();
    lines = run.Progress();
  });
  run.Run("[SYSTEM]\r\nWorkingTime=1\r\nComputerName=1\r\n");
  EXPECT_EQ(seen, kHeader + Banner("SYSTEM INFORMATION") +
                      "Working time (d.h.m.s)     1:1:1:1\r\nComputer name              ");
  EXPECT_EQ(lines, (std::vector<std::string>{"Windows working time...  Ok", "Computer name..."}));
}

TEST(ReportWorker, WhatTheListShowsAsDoneIsInTheFile) {
  test::ReportRun run;
  std::vector<std::string> seen;  // the report at every message to the list
  run.machine().faults.AtCall("SendMessageA", [&] { seen.push_back(run.Report()); });
  run.Run("[SYSTEM]\r\nTempFolder=1\r\n");
  // Four messages replace the last item's line.
  ASSERT_GT(seen.size(), 4U);
  for (std::size_t i = seen.size() - 4; i < seen.size(); ++i)
    EXPECT_TRUE(seen[i].ends_with("Temp folder                C:\\TEMP")) << i << ": " << seen[i];
}

TEST(ReportWorker, NothingStaysOpenWhicheverCallFails) {
  constexpr char kProfile[] =
      "[SYSTEM]\r\nWindowsVersion=1\r\nWorkingTime=1\r\nComputerName=1\r\nUserName=1\r\n"
      "UserLocale=1\r\nWindowsFolder=1\r\nSystemFolder=1\r\nTempFolder=1\r\n"
      "[DLLS]\r\na.dll\r\n[FOLDERS]\r\n<Run Folder>,1\r\nHKLM\\x,1\r\n[POST-RUN]\r\nTo=a\r\n";
  test::ReportRun plain;
  plain.Run(kProfile);
  // What gives something back cannot be asked to fail and to leave nothing open.
  const std::set<std::string> closing = {"CloseHandle", "FindClose",   "FreeLibrary",
                                         "HeapFree",    "RegCloseKey", "WSACleanup"};
  for (const auto& [call, count] : plain.machine().faults.CallCounts()) {
    if (closing.contains(call)) continue;
    for (unsigned nth = 1; nth <= count; ++nth) {
      test::ReportRun run;
      const auto open_before = run.machine().handles.OpenObjects();
      run.machine().faults.FailNth(call, nth, ERROR_NOT_ENOUGH_MEMORY);
      run.Run(kProfile);
      DestroyLists(run.settings());
      EXPECT_EQ(run.machine().handles.OpenObjects(), open_before) << call << " " << nth;
      // Only a run that could not begin leaves no report, and its list says so.
      EXPECT_TRUE(run.state().run_complete || run.Progress().size() <= 1) << call << " " << nth;
    }
  }
}

}  // namespace
}  // namespace hostscope
