// The dialog as the person in front of it meets it.
#include "app/progress_dialog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/resources.h"
#include "platform/win32.h"
#include "tests/app/program_run.h"

namespace hostscope {
namespace {

using test::ProgramRun;

inline constexpr char kOneItem[] = "[SYSTEM]\r\nComputerName=1\r\n";
inline constexpr char kAbortQuestion[] =
    "System information report has not yet created!\nDo you want abort program?";

HWND CloseButton(const ProgramRun& run) {
  return run.Item(kCloseButtonId);
}

TEST(ProgressDialog, ShowsTheRunAndEndsWithAnyKey) {
  for (const WPARAM key : {WPARAM{'Q'}, VK_SPACE, VK_LEFT, VK_HOME, VK_SHIFT, WPARAM{0x70}}) {
    ProgramRun run;
    run.WriteProfile(kOneItem);
    run.HoldWorker();
    run.Start();
    ASSERT_TRUE(run.WaitForHold());
    EXPECT_EQ(run.Lines(), std::vector<std::string>{"Computer name..."});
    EXPECT_EQ(GetClassLongPtrA(run.dialog(), GCLP_HICON),
              reinterpret_cast<ULONG_PTR>(
                  LoadIconA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(kIconId))));
    run.Resume();
    ASSERT_TRUE(run.WaitForFinish());
    EXPECT_EQ(run.Lines(),
              (std::vector<std::string>{"Computer name...         Ok", "", "Press any key..."}));
    EXPECT_EQ(run.CurrentLine(), 2);
    run.Press(key);
    EXPECT_EQ(run.WaitForExit(), 0) << key;
    EXPECT_TRUE(run.folder().Read("hscope.txt").starts_with("Report generated on")) << key;
    EXPECT_TRUE(run.desktop().MessageBoxes().empty()) << key;
  }
}

TEST(ProgressDialog, AsksBeforeItLeavesARunningWorker) {
  enum class Way { kEscape, kCloseBox, kButton };
  for (const Way way : {Way::kEscape, Way::kCloseBox, Way::kButton}) {
    ProgramRun run;
    run.WriteProfile(kOneItem);
    run.HoldWorker();
    run.desktop().StateAnswers({IDNO, IDYES});
    run.Start();
    ASSERT_TRUE(run.WaitForHold());
    const auto close = [&] {
      if (way == Way::kEscape) run.Press(VK_ESCAPE);
      if (way == Way::kCloseBox) run.desktop().PressCloseBox(run.dialog());
      if (way == Way::kButton) run.ClickMiddle(CloseButton(run));
    };
    close();
    EXPECT_TRUE(IsWindow(run.dialog())) << "after No";
    close();
    EXPECT_EQ(run.WaitForExit(), 0) << "after Yes";
    const auto boxes = run.desktop().MessageBoxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].text, kAbortQuestion);
    EXPECT_EQ(boxes[0].caption, "Message");
    EXPECT_EQ(boxes[0].style, 0x34u);
    EXPECT_EQ(boxes[0].owner, run.dialog());
    // The report stays as far as it was written.
    const std::string report = run.folder().Read("hscope.txt");
    EXPECT_TRUE(report.ends_with("Computer name              ")) << report;
  }
}

std::string Show(const RECT& place) {
  return std::to_string(place.left) + "," + std::to_string(place.top) + " to " +
         std::to_string(place.right) + "," + std::to_string(place.bottom);
}

// The drawing of a window, painted anew.
std::vector<host::DrawingCall> Painted(ProgramRun& run, HWND window) {
  run.desktop().TakeDrawing(window);
  InvalidateRect(window, nullptr, FALSE);
  run.desktop().WaitForRest(run.dialog());
  return run.desktop().TakeDrawing(window);
}

TEST(ProgressDialog, CoversItselfWithTheBackground) {
  ProgramRun run;
  run.Start(" \"h\"");
  ASSERT_NE(run.WaitForDialog(), nullptr);
  RECT client = {};
  GetClientRect(run.dialog(), &client);
  std::vector<std::vector<bool>> covered(client.bottom, std::vector<bool>(client.right));
  LONG row = 0, column = 0;
  for (const host::DrawingCall& call : Painted(run, run.dialog())) {
    ASSERT_EQ(call.function, "BitBlt");
    const RECT& place = call.rectangle;
    EXPECT_EQ(Show(place), Show({column, row, std::min<LONG>(column + 64, client.right),
                                 std::min<LONG>(row + 64, client.bottom)}));
    EXPECT_EQ(call.flags, SRCCOPY);
    EXPECT_EQ(call.source.x, 0);
    EXPECT_EQ(call.source.y, 0);
    EXPECT_EQ(call.source_size.cx, kBackgroundWidth);
    for (LONG y = place.top; y < place.bottom; ++y)
      std::fill(covered[y].begin() + place.left, covered[y].begin() + place.right, true);
    column += 64;
    if (column >= client.right) column = 0, row += 64;
  }
  for (const std::vector<bool>& line : covered)
    ASSERT_EQ(std::count(line.begin(), line.end(), false), 0);
}

TEST(ProgressDialog, ListIsGreenOnBlackInAConsoleFont) {
  ProgramRun run;
  run.Start(" \"h\"");
  ASSERT_NE(run.WaitForDialog(), nullptr);
  int texts = 0;
  for (const host::DrawingCall& call : Painted(run, run.list())) {
    if (call.function == "FillRect") {
      EXPECT_EQ(call.fill_color, 0u);
    }
    if (call.text.empty()) continue;
    ++texts;
    EXPECT_EQ(call.text_color, 0x00F000u) << call.text;
    EXPECT_EQ(call.background_color, 0u) << call.text;
    EXPECT_STREQ(call.font.lfFaceName, "Lucida Console");
    EXPECT_EQ(call.font.lfHeight, -11);
    EXPECT_EQ(call.font.lfWeight, 400);
    EXPECT_EQ(call.font.lfCharSet, 1);
    EXPECT_EQ(call.font.lfOutPrecision, 4);
    EXPECT_EQ(call.font.lfQuality, 1);
    EXPECT_EQ(call.font.lfPitchAndFamily, 0x30);
  }
  EXPECT_GE(texts, 6);
}

TEST(ProgressDialog, LeavesNothingOpen) {
  for (const bool with_profile : {true, false}) {
    ProgramRun run;
    if (with_profile) run.WriteProfile("CreateMessageBox=1\r\n" + std::string(kOneItem));
    run.desktop().StateAnswers({IDOK});
    run.Start();
    ASSERT_NE(run.WaitForDialog(), nullptr);
    if (with_profile) {
      ASSERT_TRUE(run.WaitForFinish());
    }
    run.Press('X');
    ASSERT_EQ(run.WaitForExit(), 0);
    for (const auto& [kind, count] : run.machine().handles.OpenObjects())
      ADD_FAILURE() << count << " left open: " << kind;
  }
}

}  // namespace
}  // namespace hostscope
