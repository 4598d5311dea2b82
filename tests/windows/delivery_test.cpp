// What the program does with a finished report: opening it and handing it to a mail client, which
// is a library of the tests' own.

#include <gtest/gtest.h>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"
#include "tests/windows/expected.h"
#include "tests/windows/mail_client.h"
#include "tests/windows/opened_target.h"

namespace drive {
namespace {

constexpr char kProfile[] =
    "[SYSTEM]\r\nTempFolder=1\r\n[POST-RUN]\r\nEmail=1\r\nTo=help@example.org\r\nName=Help\r\n"
    "CC=c@x;d@x\r\nBCC=b@x\r\nSubject=A subject\r\n[EMAIL TEXT]\r\nHello,\r\nyou.\r\n";

// Runs the program to its end: what the library was handed, empty for nothing.
std::string MailOf(const Folder& folder) {
  folder.Write("test.ini", kProfile);
  Program program(folder, {.arguments = {"test.ini"}});
  EXPECT_TRUE(program.WaitUntilFinished());
  EXPECT_FALSE(folder.Read("mail.txt")) << "before the dialog was closed";
  TypeKey(program.dialog(), 'X');
  EXPECT_EQ(program.WaitForExit(), 0u);
  return folder.Read("mail.txt").value_or("");
}

std::string ExpectedMail(const Folder& folder) {
  return "call 0 0 9 0\n"
         "message 0 \"A subject\" \"Hello,\r\nyou.\" none none none 0 0\n"
         "recipient 0 1 \"Help\" \"help@example.org\" 0 0\n"
         "recipient 0 2 none \"c@x;d@x\" 0 0\n"
         "recipient 0 3 none \"b@x\" 0 0\n"
         "file 0 0 4294967295 \"" +
         folder.Path("hscope.txt") + "\" none 0\n";
}

class MailOnEveryRelease : public EveryRelease {};

TEST_P(MailOnEveryRelease, IsPreparedWhereSimpleMapiIsInstalled) {
  const bool knows_key = std::string(GetParam().release) != "nt351";
  struct Row {
    const char* registry;
    const char* win_ini;
    bool installed;
  };
  for (const Row& row : {Row{"1", "0", knows_key}, {"0", "1", true}, {"0", "0", false}}) {
    SCOPED_TRACE(std::string(row.registry) + row.win_ini);
    const Folder folder;
    folder.CopyFromBuild("mail_library.dll");
    const InstalledMapi installed(row.registry, row.win_ini);
    const MailClient client(folder.Path("mail_library.dll"));
    EXPECT_EQ(MailOf(folder), row.installed ? ExpectedMail(folder) : "");
  }
}

INSTANTIATE_TEST_SUITE_P(Mail, MailOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

TEST(Report, IsOpenedWhenItIsComplete) {
  const Folder folder;
  const OpeningProgram program_for_it(folder, "hostscope.report");
  const auto kind = RegistryValue::Text(HKEY_CLASSES_ROOT, ".hsreport", "", "hostscope.report");
  folder.Write("test.ini",
               "[GENERAL]\r\nReportFileName=my.hsreport\r\n[SYSTEM]\r\nTempFolder=1\r\n"
               "[POST-RUN]\r\nOpen=1\r\n");
  Program program(folder, {.arguments = {"test.ini"}});
  ASSERT_TRUE(program.WaitUntilFinished());
  const auto opened = program_for_it.WaitForTarget();
  ASSERT_TRUE(opened);
  EXPECT_EQ(opened->target, folder.Path("my.hsreport"));
  EXPECT_EQ(opened->show_command, SW_SHOW);
  TypeKey(program.dialog(), 'X');
  EXPECT_EQ(program.WaitForExit(), 0u);
}

}  // namespace
}  // namespace drive
