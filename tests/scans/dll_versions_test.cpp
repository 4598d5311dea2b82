#include "scans/dll_versions.h"

#include <gtest/gtest.h>

#include "tests/support/report_run.h"
#include "tests/support/versioned_file.h"

namespace hostscope {
namespace {

// What stands below the column heading.
std::string LinesOf(const std::string& report) {
  const std::string heading = "[dll name]                 [version]\r\n";
  const std::size_t at = report.find("\r\n\r\n" + heading);
  return at == std::string::npos ? report : report.substr(at + 4 + heading.size());
}

TEST(DllVersions, WhoIsAskedAndWhatIsWritten) {
  test::ReportRun run;
  const std::string long_name(1100, 'x');
  const auto write_file = [&run](const std::string& name, const test::VersionedFile& file) {
    run.folder().Write("C/WINNT/system32/" + name, test::Bytes(file));
  };
  host::Machine& machine = run.machine();
  machine.files.MountDrive('C', run.folder().path() / "C");
  write_file("both.dll", {.fixed = {{1, 2, 3, 4}}});
  write_file("older.dll", {.fixed = {{1, 2, 3, 4}}});
  write_file("refuses.dll", {.fixed = {{6, 0, 2600, 7}}});
  write_file("plain.dll", {.fixed = {{4, 72, 3110, 6}}, .wide = true});
  write_file("short.dll", {.fixed = {{4, 0, 0, 950}}, .fixed_length = 20});
  write_file("strings.dll", {.strings = {{"FileVersion", "1.0"}}});
  run.folder().Write("readme.dll", "a text");
  ASSERT_EQ(host::StateDllVersion(machine, "both.dll", {true, true, {5, 81, 4916, 65535}}), "");
  ASSERT_EQ(host::StateDllVersion(machine, "older.dll", {false, true, {5, 81, 4916}}), "");
  ASSERT_EQ(host::StateDllVersion(machine, "refuses.dll", {}), "");
  ASSERT_EQ(host::StateDllVersion(machine, "nofile.dll", {}), "");
  const struct {
    std::string entry;
    const char* expected;
  } rows[] = {
      {"both.dll", "5.81.4916.65535"},
      {"BOTH", "5.81.4916.65535"},
      {"older.dll", "5.81.4916.0"},
      {"refuses.dll", "6.0.2600.7"},
      {"nofile.dll", "dll is missing"},
      {"plain.dll", "4.72.3110.6"},
      {"C:\\WINNT\\system32\\plain.dll", "4.72.3110.6"},
      {"short.dll", "4.0.0.950"},
      {"strings.dll", "dll is missing"},
      {"readme.dll", "dll is missing"},
      {"nosuch.dll", "dll is missing"},
      {long_name, "dll is missing"},
  };
  std::string profile = "[DLLS]\r\n", expected;
  for (const auto& row : rows) {
    profile += row.entry + "\r\n";
    const std::size_t blanks = row.entry.size() < 27 ? 27 - row.entry.size() : 0;
    expected += row.entry + std::string(blanks, ' ') + row.expected + "\r\n";
  }
  run.Run(profile);
  EXPECT_EQ(LinesOf(run.Report()), expected);
  EXPECT_EQ(run.Progress(), std::vector<std::string>{"Dlls versions...         Ok"});
  for (const char* name : {"both.dll", "older.dll", "refuses.dll", "nofile.dll"})
    EXPECT_EQ(machine.libraries.References(name), 0U) << name;
}

TEST(DllVersions, TheRunSaysWhenNoneWasFound) {
  test::ReportRun run;
  std::string seen;
  run.machine().faults.AtCall("LoadLibraryA", [&] { seen = run.Report(); });
  run.Run("[DLLS]\r\nnosuch.dll\r\n");
  EXPECT_EQ(LinesOf(run.Report()), "nosuch.dll                 dll is missing\r\n");
  EXPECT_EQ(LinesOf(seen), "nosuch.dll                 ");
  EXPECT_EQ(run.Progress(), std::vector<std::string>{"Dlls versions...         Failed"});
}

}  // namespace
}  // namespace hostscope
