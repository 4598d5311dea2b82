// What happens while the report is being written. The run is held in the middle of an item by
// letting one call of the system take its time.

#include <gtest/gtest.h>

#include <memory>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"
#include "tests/windows/expected.h"

namespace drive {
namespace {

constexpr char kQuestion[] =
    "System information report has not yet created!\nDo you want abort program?";

// A run that stays in the item of the computer name until it is let go.
class HeldRun {
 public:
  explicit HeldRun(const std::string& profile) : call("GetComputerNameA") {
    folder.Write("test.ini", profile);
    program = std::make_unique<Program>(folder,
                                        Start{.arguments = {"test.ini"}, .interceptions = {&call}});
  }
  bool WaitUntilHeld() {
    return call.WaitUntilReached() && program->WaitForLine("Computer name...");
  }
  bool IsOnScreen() const { return program->Runs() && IsWindowVisible(program->dialog()); }

  // The check box shows that the input sent before it has been handled.
  void ExpectCheckBoxAnswers() const {
    const bool before = program->IsChecked();
    ClickMiddle(program->CheckBox());
    EXPECT_TRUE(WaitUntil([&] { return program->IsChecked() != before; }));
  }

  Folder folder;
  HeldCall call;
  std::unique_ptr<Program> program;
};

void ExpectRunGoesOn(HeldRun& run) {
  EXPECT_FALSE(run.program->FindMessageBox());
  run.call.LetAllGo();
  ASSERT_TRUE(run.program->WaitUntilFinished());
  EXPECT_EQ(run.program->Lines(), FinishedList());
  Click(run.program->List(), {20, 2});
  TypeKey(run.program->dialog(), 'X');
  EXPECT_EQ(run.program->WaitForExit(), 0u);
}

class RunningOnEveryRelease : public EveryRelease {};

TEST_P(RunningOnEveryRelease, ListTakesNoKeysAndNoClicks) {
  HeldRun run(ProfileWith("", "Email=1"));
  ASSERT_TRUE(run.WaitUntilHeld());
  Program& program = *run.program;
  EXPECT_EQ(program.Lines(), (std::vector<std::string>{
                                 ProgressLine("Windows version...", "Ok"),
                                 ProgressLine("Windows working time...", "Ok"),
                                 "Computer name...",
                             }));
  for (const int key : {int{'X'}, VK_SPACE, VK_RETURN, VK_UP, VK_DOWN, VK_PRIOR, VK_NEXT, VK_F1})
    TypeKey(program.dialog(), key);
  Click(program.List(), {20, 2});
  run.ExpectCheckBoxAnswers();
  EXPECT_TRUE(run.IsOnScreen());
  EXPECT_EQ(program.CurrentLine(), 2);
  ExpectRunGoesOn(run);
}

// The report can be read while it is written, but not changed.
TEST(RunningDialog, ReportIsSharedForReading) {
  HeldRun run(ProfileWith(""));
  ASSERT_TRUE(run.WaitUntilHeld());
  const std::string path = run.folder.Path("hscope.txt");
  EXPECT_TRUE(run.folder.Read("hscope.txt"));
  EXPECT_EQ(CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                        OPEN_EXISTING, 0, nullptr),
            INVALID_HANDLE_VALUE);
  ExpectRunGoesOn(run);
}

void ExpectQuestion(const std::optional<MessageBoxShown>& box, HWND dialog) {
  ASSERT_TRUE(box);
  EXPECT_EQ(box->caption, "Message");
  EXPECT_EQ(box->text, kQuestion);
  EXPECT_EQ(box->buttons, (std::vector<int>{IDYES, IDNO}));
  EXPECT_EQ(box->owner, dialog);
}

enum class Way { kEscape, kCloseButton, kSpaceOnCloseButton, kCaption };

// The close box lies where the system says so when it is asked about a point.
POINT CloseBoxOf(HWND window) {
  RECT frame = {};
  GetWindowRect(window, &frame);
  for (LONG x = frame.right - 1; x > frame.left; --x) {
    for (LONG y = frame.top; y < frame.top + 30; ++y) {
      if (Ask(window, WM_NCHITTEST, 0, MAKELPARAM(x, y)) != HTCLOSE) continue;
      POINT point = {x - 4, y + 4};
      ScreenToClient(window, &point);
      return point;
    }
  }
  return {};
}

void TryToLeave(Program& program, Way way) {
  switch (way) {
    case Way::kEscape:
      TypeKey(program.dialog(), VK_ESCAPE);
      break;
    case Way::kCloseButton:
      ClickMiddle(program.CloseButton());
      break;
    case Way::kSpaceOnCloseButton:
      TypeKey(program.dialog(), VK_TAB);
      ASSERT_TRUE(WaitUntil([&] { return program.Focus() == program.CloseButton(); }));
      TypeKey(program.dialog(), VK_SPACE);
      break;
    case Way::kCaption:
      Click(program.dialog(), CloseBoxOf(program.dialog()));
      break;
  }
}

class EveryWay : public testing::TestWithParam<Way> {};

TEST_P(EveryWay, AsksAndGoesOnAfterNo) {
  HeldRun run(ProfileWith(""));
  ASSERT_TRUE(run.WaitUntilHeld());
  TryToLeave(*run.program, GetParam());
  const auto box = run.program->WaitForMessageBox();
  ExpectQuestion(box, run.program->dialog());
  ASSERT_TRUE(Answer(*box, IDNO));
  EXPECT_TRUE(run.IsOnScreen());
  ExpectRunGoesOn(run);
}

TEST_P(EveryWay, ClosesAtOnceWhenTheRunIsOver) {
  const Folder folder;
  folder.Write("test.ini", ProfileWith(""));
  Program program(folder, {.arguments = {"test.ini"}});
  ASSERT_TRUE(program.WaitUntilFinished());
  TryToLeave(program, GetParam());
  EXPECT_EQ(program.WaitForExit(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Leaving, EveryWay,
                         testing::Values(Way::kEscape, Way::kCloseButton, Way::kSpaceOnCloseButton,
                                         Way::kCaption));

// The question may stand while the run comes to its end behind it.
TEST(RunningDialog, QuestionAnsweredAfterTheEnd) {
  HeldRun run(ProfileWith(""));
  ASSERT_TRUE(run.WaitUntilHeld());
  TypeKey(run.program->dialog(), VK_ESCAPE);
  const auto box = run.program->WaitForMessageBox();
  ASSERT_TRUE(box);
  run.call.LetAllGo();
  ASSERT_TRUE(run.program->WaitUntilFinished());
  ASSERT_TRUE(Answer(*box, IDYES));
  EXPECT_EQ(run.program->WaitForExit(), 0u);
}

// Left, or ended as power fails or the task list ends it: the label of the item is in the report.
TEST_P(RunningOnEveryRelease, ReportStaysAsFarAsWritten) {
  for (const bool killed : {false, true}) {
    SCOPED_TRACE(killed);
    HeldRun run("[SYSTEM]\r\nComputerName=1\r\nUserName=1\r\n");
    const Clock clock;
    ASSERT_TRUE(run.WaitUntilHeld());
    if (killed) {
      run.program->Kill();
    } else {
      TypeKey(run.program->dialog(), VK_ESCAPE);
      const auto box = run.program->WaitForMessageBox();
      ExpectQuestion(box, run.program->dialog());
      ClickMiddle(GetDlgItem(box->window, IDYES));
      EXPECT_EQ(run.program->WaitForExit(), 0u);
    }
    const std::string report = run.folder.Read("hscope.txt").value_or("");
    const size_t header = report.find("\r\n");
    ASSERT_NE(header, std::string::npos);
    EXPECT_TRUE(clock.IsHeader(report.substr(0, header)));
    EXPECT_EQ(report.substr(header + 2), Joined(SystemBanner()) + Padded("Computer name", 27));
  }
}

INSTANTIATE_TEST_SUITE_P(Running, RunningOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
