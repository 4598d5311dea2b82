// What a run does once its report is written: whole programs and single runs of the worker.
#include <gtest/gtest.h>

#include <string>

#include "platform/resources.h"
#include "platform/win32.h"
#include "tests/app/program_run.h"
#include "tests/support/report_run.h"

namespace hostscope {
namespace {

constexpr char kItem[] = "[SYSTEM]\r\nComputerName=1\r\n";

TEST(OpenReport, IsTheLastStepOfACompleteRun) {
  struct Row {
    const char* post_run;
    bool opens;
  };
  for (const Row& row : {Row{"Open=1", true}, {"Open=-5", true}, {"Open=0", false}, {"", false}}) {
    for (const bool refused : {false, true}) {
      SCOPED_TRACE(std::string(row.post_run) + (refused ? ", which fails" : ""));
      test::ReportRun run;
      if (refused) run.machine().faults.FailAlways("ShellExecuteA", 1155);
      run.machine().faults.AtCall("ShellExecuteA", [&] {
        EXPECT_EQ(run.machine().handles.OpenObjects().count("file"), 0U);
        EXPECT_TRUE(run.Report().ends_with("WORKSTATION7\r\n\r\n"));
        EXPECT_FALSE(run.state().run_complete);
      });
      run.Run(std::string(kItem) + "[POST-RUN]\r\n" + row.post_run + "\r\n");
      EXPECT_TRUE(run.state().run_complete);
      EXPECT_EQ(run.machine().faults.CallCount("ShellExecuteA"), row.opens ? 1U : 0U);
      if (!row.opens || refused) continue;
      const host::ShellOpening opening = run.machine().desktop.ShellOpenings().at(0);
      EXPECT_EQ(opening.owner, nullptr);
      EXPECT_EQ(opening.verb, "open");
      EXPECT_EQ(opening.target, run.folder().path().string() + "/report.txt");
      EXPECT_EQ(opening.show_command, 5);
      EXPECT_FALSE(opening.has_parameters || opening.has_folder);
    }
  }
}

class PostRun : public testing::Test {
 protected:
  // Starts a program that is to open and to mail its report; "@" stands for its folder.
  void Start(const std::string& post_run, const std::string& arguments = "") {
    run_.machine().registry.SetText("HKLM\\SOFTWARE\\Microsoft\\Windows Messaging Subsystem",
                                    "MAPI", "1");
    run_.WriteProfile(kItem + ("[POST-RUN]\r\nOpen=1\r\n" + post_run));
    run_.Start(arguments);
  }
  void Finish() {
    ASSERT_TRUE(run_.WaitForFinish());
    run_.desktop().PressCloseBox(run_.dialog());
    EXPECT_EQ(run_.WaitForExit(), 0);
    EXPECT_TRUE(run_.machine().handles.OpenObjects().empty());
  }
  std::size_t Opened() { return run_.machine().opened_targets.size(); }
  std::size_t Mailed() { return run_.machine().mail.size(); }

  test::ProgramRun run_;
};

TEST_F(PostRun, MailGoesOutWhenTheDialogIsGone) {
  std::filesystem::create_directory(run_.folder().path() / "out");
  run_.machine().faults.AtCall("MAPISendMail", [&] { EXPECT_FALSE(IsWindow(run_.dialog())); });
  // A folder that counts from the program's: other programs have another current folder.
  Start(
      "Email=1\r\nAddress=help@example.org\r\nName=Help\r\nCC=c@x;d@x\r\nBCC=b@x\r\nSubject=S\r\n"
      "[EMAIL TEXT]\r\nHello,\r\nyou.\r\n",
      " \"test.ini\" \"out\"");
  Finish();
  ASSERT_EQ(Mailed(), 1U);
  const host::SentMail& mail = run_.machine().mail[0];
  const std::string report = run_.folder().path().string() + "/out/hscope.txt";
  EXPECT_EQ(run_.machine().opened_targets, std::vector<std::string>{report});
  EXPECT_EQ(mail.recipients,
            (std::vector<host::MailRecipient>{
                {.recipient_class = MAPI_TO, .name = "Help", .address = "help@example.org"},
                {.recipient_class = MAPI_CC, .address = "c@x;d@x"},
                {.recipient_class = MAPI_BCC, .address = "b@x"}}));
  EXPECT_EQ(mail.subject, "S");
  EXPECT_EQ(mail.text, "Hello,\r\nyou.");
  EXPECT_EQ(mail.attachments.at(0).path, report);
  EXPECT_EQ(mail.attachments.at(0).content, run_.folder().Read("out/hscope.txt"));
}

TEST_F(PostRun, NothingIsMailedUnlessItIsWanted) {
  Start("Email=1\r\n");
  ASSERT_TRUE(run_.WaitForFinish());
  run_.ClickMiddle(run_.Item(kEmailCheckBoxId));
  Finish();
  EXPECT_EQ(Opened(), 1U);
  EXPECT_EQ(Mailed(), 0U);
}

TEST_F(PostRun, AClientThatFailsEndsTheProgramAsAlways) {
  run_.machine().faults.FailAlways("MAPISendMail", 1);
  Start("Email=1\r\n");
  Finish();
  EXPECT_EQ(run_.machine().faults.CallCount("MAPISendMail"), 1U);
}

TEST_F(PostRun, AReportThatCouldNotBeMadeGoesNowhere) {
  Start("Email=1\r\n", " \"test.ini\" \"none\"");
  Finish();
  EXPECT_EQ(Opened() + Mailed(), 0U);
}

TEST_F(PostRun, ARunThatWasLeftGoesNowhere) {
  run_.HoldWorker();
  run_.desktop().StateAnswers({IDYES});
  Start("Email=1\r\n");
  ASSERT_TRUE(run_.WaitForHold());
  run_.Press(VK_ESCAPE);
  EXPECT_EQ(run_.WaitForExit(), 0);
  EXPECT_EQ(Opened() + Mailed(), 0U);
}

}  // namespace
}  // namespace hostscope
