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

// Fills the list up to so many lines, as a long run would.
void FillList(ProgramRun& run, int lines) {
  for (int n = static_cast<int>(run.Lines().size()); n < lines; ++n)
    SendMessageA(run.list(), LB_ADDSTRING, 0, reinterpret_cast<LPARAM>("one more line"));
}

TEST(ProgressDialog, ShowsTheRunAndEndsWithAnyKey) {
  for (const WPARAM key : {WPARAM{'Q'}, VK_SPACE, VK_LEFT, VK_HOME, VK_SHIFT, WPARAM{0x70}}) {
    ProgramRun run;
    run.WriteProfile(kOneItem);
    run.HoldWorker();
    run.Start();
    ASSERT_TRUE(run.WaitForHold());
    EXPECT_EQ(run.Lines(), std::vector<std::string>{"Computer name..."});
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

TEST(ProgressDialog, IgnoresKeysAndClicksInTheListWhileTheWorkerRuns) {
  ProgramRun run;
  run.WriteProfile("[SYSTEM]\r\nWindowsVersion=1\r\n" + std::string(kOneItem + 10));
  run.HoldWorker();
  run.Start();
  ASSERT_TRUE(run.WaitForHold());
  ASSERT_EQ(run.CurrentLine(), 1);
  for (const WPARAM key : {WPARAM{'Q'}, VK_SPACE, VK_RETURN, VK_UP, VK_DOWN, VK_PRIOR, VK_NEXT}) {
    run.Press(key);
    EXPECT_EQ(run.CurrentLine(), 1) << key;
  }
  run.desktop().Click(run.list(), 5, 5);
  EXPECT_EQ(run.CurrentLine(), 1);
  EXPECT_TRUE(IsWindow(run.dialog()));
  EXPECT_TRUE(run.desktop().MessageBoxes().empty());
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

TEST(ProgressDialog, GoesOnAfterNo) {
  ProgramRun run;
  run.WriteProfile(kOneItem);
  run.HoldWorker();
  run.desktop().StateAnswers({IDNO});
  run.Start();
  ASSERT_TRUE(run.WaitForHold());
  run.Press(VK_ESCAPE);
  run.Resume();
  ASSERT_TRUE(run.WaitForFinish());
  EXPECT_TRUE(run.folder().Read("hscope.txt").ends_with("WORKSTATION7\r\n\r\n"));
  run.Press(VK_ESCAPE);
  EXPECT_EQ(run.WaitForExit(), 0);
  EXPECT_EQ(run.desktop().MessageBoxes().size(), 1u);
}

TEST(ProgressDialog, ClosesAtOnceWhenTheWorkerHasFinished) {
  struct Row {
    const char* what;
    void (*close)(ProgramRun&);
  };
  const Row rows[] = {
      {"Escape", [](ProgramRun& run) { run.Press(VK_ESCAPE); }},
      {"the close box", [](ProgramRun& run) { run.desktop().PressCloseBox(run.dialog()); }},
      {"a click on the button", [](ProgramRun& run) { run.ClickMiddle(CloseButton(run)); }},
      {"dragging off the button",
       [](ProgramRun& run) {
         run.desktop().MouseDown(CloseButton(run), 5, 5);
         EXPECT_TRUE(IsWindow(run.dialog()));
         run.desktop().MouseMove(CloseButton(run), -20, 5);
       }},
      {"Space on the button",
       [](ProgramRun& run) {
         run.Press(VK_TAB);
         EXPECT_EQ(run.desktop().Focus(), CloseButton(run));
         run.desktop().KeyDown(VK_SPACE);
         EXPECT_TRUE(IsWindow(run.dialog()));
         run.desktop().KeyUp(VK_SPACE);
       }},
  };
  for (const Row& row : rows) {
    ProgramRun run;
    run.WriteProfile(kOneItem);
    run.Start();
    ASSERT_TRUE(run.WaitForFinish()) << row.what;
    row.close(run);
    EXPECT_EQ(run.WaitForExit(), 0) << row.what;
    EXPECT_TRUE(run.desktop().MessageBoxes().empty()) << row.what;
  }
}

TEST(ProgressDialog, MovesTheCurrentLineOfAFinishedList) {
  ProgramRun run;
  run.WriteProfile(kOneItem);
  run.Start();
  ASSERT_TRUE(run.WaitForFinish());
  FillList(run, 40);
  RECT client = {};
  GetClientRect(run.list(), &client);
  const int half = (client.bottom + 1) / 2;
  struct Row {
    const char* what;
    WPARAM key;  // 0: a click
    int y;       // of the click
    int expected;
  };
  const Row rows[] = {
      {"first line", VK_PRIOR, 0, 0},
      {"up from the first line", VK_UP, 0, 0},
      {"down", VK_DOWN, 0, 16},
      {"down again", VK_DOWN, 0, 32},
      {"down past the end", VK_DOWN, 0, 39},
      {"down from the last line", VK_DOWN, 0, 39},
      {"up", VK_UP, 0, 38},
      {"first line again", VK_PRIOR, 0, 0},
      {"last line", VK_NEXT, 0, 39},
      {"a click at the top", 0, 0, 0},
      {"a click at the bottom", 0, client.bottom - 1, 39},
      {"a click at the end of the upper half", 0, half - 1, 0},
      {"a click at the start of the lower half", 0, half, 39},
  };
  for (const Row& row : rows) {
    if (row.key != 0) {
      run.Press(row.key);
    } else {
      run.desktop().Click(run.list(), 30, row.y);
    }
    EXPECT_EQ(run.CurrentLine(), row.expected) << row.what;
  }
  // With no current line the Up key has nowhere to go.
  SendMessageA(run.list(), LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
  run.Press(VK_UP);
  EXPECT_EQ(run.CurrentLine(), -1);
  // Enter belongs to the dialog, which does nothing with it.
  run.Press(VK_RETURN);
  EXPECT_TRUE(IsWindow(run.dialog()));
}

TEST(ProgressDialog, TabGoesRoundItsControls) {
  ProgramRun run;
  run.WriteProfile("[POST-RUN]\r\nEmail=1\r\n");
  run.Start();
  ASSERT_TRUE(run.WaitForFinish());
  EXPECT_EQ(run.desktop().Focus(), run.list());
  for (const HWND next : {run.Item(kEmailCheckBoxId), CloseButton(run), run.list()}) {
    run.Press(VK_TAB);
    EXPECT_EQ(run.desktop().Focus(), next);
  }
  run.Press(VK_TAB);
  run.desktop().Click(run.list(), 5, 5);
  EXPECT_EQ(run.desktop().Focus(), run.list());
}

TEST(ProgressDialog, CheckBoxFollowsTheProfileAndTheUser) {
  struct Row {
    const char* post_run;
    bool checked;
    bool enabled;
  };
  const Row rows[] = {
      {"Email=1\r\nEmailCheckBox=1", true, true},   {"Email=1", true, true},
      {"Email=1\r\nEmailCheckBox=0", true, false},  {"Email=0\r\nEmailCheckBox=1", false, false},
      {"Email=0\r\nEmailCheckBox=0", false, false}, {"", false, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.post_run);
    ProgramRun run;
    run.WriteProfile("[POST-RUN]\r\n" + std::string(row.post_run) + "\r\n");
    run.HoldWorker();
    run.Start();
    ASSERT_NE(run.WaitForDialog(), nullptr);
    const HWND box = run.Item(kEmailCheckBoxId);
    const auto checked = [&] { return SendMessageA(box, BM_GETCHECK, 0, 0) == BST_CHECKED; };
    EXPECT_EQ(checked(), row.checked);
    EXPECT_EQ(IsWindowEnabled(box) != FALSE, row.enabled);
    run.ClickMiddle(box);
    EXPECT_EQ(checked(), row.enabled ? !row.checked : row.checked);
  }
}

// The setting follows the check box; whoever sends the report looks at it afterwards.
TEST(ProgressDialog, CheckBoxWritesTheSetting) {
  host::Machine machine;
  const host::UseMachine use(machine);
  RunState state;
  ProfileSettings settings;
  settings.email = 1;
  settings.email_check_box = 1;
  state.ini_argument = DuplicateText("a");  // a notice: nothing runs meanwhile
  std::vector<int> seen;
  const auto dialog = std::make_unique<ProgressDialog>(state, settings);
  std::thread person([&] {
    host::Desktop& desktop = machine.desktop;
    desktop.WaitUntil([&] { return !desktop.TopWindows().empty(); });
    const HWND window = desktop.TopWindows().front();
    desktop.WaitForRest(window);
    for (int i = 0; i < 2; ++i) {
      desktop.Click(GetDlgItem(window, kEmailCheckBoxId), 3, 3);
      seen.push_back(settings.email);
    }
    desktop.PressCloseBox(window);
  });
  EXPECT_TRUE(dialog->Run(GetModuleHandleA(nullptr), nullptr));
  person.join();
  EXPECT_EQ(seen, (std::vector<int>{0, 1}));
}

TEST(ProgressDialog, ShowsANoticeWithoutAProfile) {
  const std::vector<std::string> usage = {"Usage: hscope [ini] [out]",
                                          "",
                                          "[ini]: Settings file path",
                                          "[out]: Report file output",
                                          "       folder (current by ",
                                          "       default)",
                                          "",
                                          "Press any key..."};
  struct Row {
    const char* arguments;
    std::vector<std::string> lines;  // none: the credits
  };
  const Row rows[] = {
      {"", {"Can not find ini file!", "", "Press any key..."}},
      {" \"?\"", usage},
      {" \"h\"", usage},
      {" \"H\" \"C:\\Out\"", usage},
      {" h", usage},
      {" \"a\"", {}},
      {" \"A\"", {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.arguments);
    ProgramRun run;
    // The special arguments look for no profile, though there is one.
    if (*row.arguments != '\0') run.WriteProfile("[POST-RUN]\r\nEmail=1\r\n");
    run.Start(row.arguments);
    ASSERT_NE(run.WaitForDialog(), nullptr);
    const std::vector<std::string> lines = run.Lines();
    if (!row.lines.empty()) {
      EXPECT_EQ(lines, row.lines);
    } else {
      ASSERT_EQ(lines.size(), 5u);
      EXPECT_EQ(lines[3], "");
      EXPECT_EQ(lines[4], "Press any key...");
    }
    EXPECT_EQ(run.machine().faults.CallCount("CreateThread"), 0u);
    const HWND box = run.Item(kEmailCheckBoxId);
    EXPECT_EQ(SendMessageA(box, BM_GETCHECK, 0, 0), 0);
    EXPECT_FALSE(IsWindowEnabled(box));
    run.Press('X');
    EXPECT_EQ(run.WaitForExit(), 0);
    EXPECT_FALSE(run.folder().Holds("hscope.txt"));
  }
}

RECT PlaceIn(HWND window, HWND dialog) {
  RECT place = {};
  POINT origin = {};
  GetWindowRect(window, &place);
  ClientToScreen(dialog, &origin);
  OffsetRect(&place, -origin.x, -origin.y);
  return place;
}

std::string Show(const RECT& place) {
  return std::to_string(place.left) + "," + std::to_string(place.top) + " to " +
         std::to_string(place.right) + "," + std::to_string(place.bottom);
}

TEST(ProgressDialog, IsPutTogetherAsDrawn) {
  ProgramRun run;
  run.WriteProfile(kOneItem);
  run.Start();
  ASSERT_TRUE(run.WaitForFinish());
  const HWND dialog = run.dialog();
  EXPECT_EQ(run.desktop().Text(dialog), "Hostscope v.0.93b");
  EXPECT_EQ(
      GetClassLongPtrA(dialog, GCLP_HICON),
      reinterpret_cast<ULONG_PTR>(LoadIconA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(kIconId))));
  RECT window = {}, client = {};
  GetWindowRect(dialog, &window);
  GetClientRect(dialog, &client);
  EXPECT_EQ(window.left, (800 - (window.right - window.left)) / 2);
  EXPECT_EQ(window.top, (600 - (window.bottom - window.top)) / 2);

  const LONG width = client.right, height = client.bottom;
  struct Row {
    const char* window_class;
    RECT place;
  };
  // Behind the two of the template, in the order in which they are made.
  const Row rows[] = {
      {"HyperLink", {130, 40, width - 7, 55}},
      {"GLabel", {6, 2, width - 6, 27}},
      {"GLabel", {6, 27, width - 6, 57}},
      {"TspButton", {width - 72, height - 24, width - 7, height - 5}},
  };
  const std::vector<HWND> children = run.desktop().Children(dialog);
  ASSERT_EQ(children.size(), 2 + std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    char name[32] = {};
    GetClassNameA(children[i + 2], name, sizeof name);
    EXPECT_STREQ(name, rows[i].window_class) << i;
    EXPECT_EQ(Show(PlaceIn(children[i + 2], dialog)), Show(rows[i].place)) << i;
  }
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
