// Messages between threads, message boxes, the mouse, the list and the check box.
#include "platform/host/desktop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include "tests/platform/host/dialog_run.h"

namespace host {
namespace {

LPARAM TextParameter(const std::string& text) {
  return reinterpret_cast<LPARAM>(text.c_str());
}

TEST(SentMessages, AreCarriedOutInOrderOnTheDialogsThread) {
  constexpr int kLines = 300;
  std::atomic<int> elsewhere = 0;
  std::thread::id dialog_thread;
  DialogRun run([&](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR {
    if (message == WM_INITDIALOG) dialog_thread = std::this_thread::get_id();
    if (std::this_thread::get_id() != dialog_thread) ++elsewhere;
    return FALSE;
  });
  run.Start();
  std::vector<LRESULT> answers;
  std::thread worker([&] {
    for (int line = 0; line < kLines; ++line) {
      answers.push_back(SendMessageA(run.Item(kList), LB_ADDSTRING, 0,
                                     TextParameter("line " + std::to_string(line))));
      SendMessageA(run.Item(kList), LB_SETCURSEL, static_cast<WPARAM>(line), 0);
      if (line % 3 == 0) SendMessageA(run.dialog(), WM_USER, 0, 0);
    }
  });
  worker.join();
  const std::vector<std::string> lines = run.desktop().ListLines(run.Item(kList));
  ASSERT_EQ(lines.size(), static_cast<std::size_t>(kLines));
  for (int line = 0; line < kLines; ++line) {
    EXPECT_EQ(lines[static_cast<std::size_t>(line)], "line " + std::to_string(line));
    EXPECT_EQ(answers[static_cast<std::size_t>(line)], line);
  }
  EXPECT_EQ(run.desktop().ListCurrentLine(run.Item(kList)), kLines - 1);
  EXPECT_EQ(elsewhere, 0);
}

TEST(SentMessages, OfALivingThreadAreCounted) {
  DialogRun run;
  run.Start();
  EXPECT_EQ(run.desktop().SendingThreads(), 0);
  std::promise<void> sent;
  std::promise<void> go_on;
  std::thread worker([&] {
    SendMessageA(run.Item(kList), LB_GETCOUNT, 0, 0);
    sent.set_value();
    go_on.get_future().wait();
  });
  sent.get_future().wait();
  EXPECT_EQ(run.desktop().SendingThreads(), 1);
  go_on.set_value();
  worker.join();
  EXPECT_TRUE(run.desktop().WaitUntil([&] { return run.desktop().SendingThreads() == 0; }));
}

// A worker sends on and on while the dialog goes: it must neither hang nor crash.
TEST(SentMessages, EndWithTheirWindow) {
  DialogRun run;
  run.Start();
  const HWND list = run.Item(kList);
  std::thread worker([&] {
    while (IsWindow(list))
      SendMessageA(list, LB_ADDSTRING, 0, TextParameter("line"));
    EXPECT_EQ(SendMessageA(list, LB_GETCOUNT, 0, 0), 0);
    EXPECT_EQ(GetLastError(), 1400u);
  });
  run.desktop().WaitUntil([&] { return run.desktop().ListLines(list).size() > 20; });
  run.desktop().KeyPress(VK_ESCAPE);
  EXPECT_EQ(run.WaitForEnd(), 5);
  worker.join();
}

// ---- message boxes ----

constexpr UINT kAsk = WM_USER + 7;

// Shows a box at kAsk and notes the answer.
DialogRun::Hook AskingHook(DialogRun*& run, UINT style) {
  return [&run, style](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
    if (message != kAsk) return FALSE;
    run->Note("answer " + std::to_string(MessageBoxA(dialog, "Text", "Caption", style)));
    return TRUE;
  };
}

TEST(MessageBoxes, LetTheRunGoOnUntilTheyAreAnswered) {
  DialogRun* running = nullptr;
  DialogRun run(AskingHook(running, MB_YESNO | MB_ICONEXCLAMATION));
  running = &run;
  run.Start();
  Desktop& desktop = run.desktop();
  desktop.KeyPress(VK_TAB);
  PostMessageA(run.dialog(), kAsk, 0, 0);
  ASSERT_TRUE(desktop.WaitUntil([&] { return desktop.OpenMessageBox().has_value(); }));
  desktop.WaitForRest(run.dialog());
  EXPECT_EQ(desktop.OpenMessageBox()->text, "Text");
  EXPECT_EQ(desktop.OpenMessageBox()->style, 0x34u);
  EXPECT_EQ(desktop.OpenMessageBox()->owner, run.dialog());
  EXPECT_FALSE(IsWindowEnabled(run.dialog()));
  EXPECT_FALSE(desktop.Click(run.Item(kCheck), 3, 3)) << "behind the box";
  EXPECT_NE(desktop.Focus(), run.Item(kCheck));
  SendMessageA(run.Item(kList), LB_ADDSTRING, 0, TextParameter("meanwhile"));
  EXPECT_EQ(desktop.ListLines(run.Item(kList)).size(), 1u);
  EXPECT_EQ(run.TakeLog(), "");
  EXPECT_TRUE(desktop.AnswerMessageBox(IDNO));
  EXPECT_FALSE(desktop.AnswerMessageBox(IDNO));
  desktop.WaitForRest(run.dialog());
  EXPECT_EQ(run.TakeLog(), "answer 7");
  EXPECT_TRUE(IsWindowEnabled(run.dialog()));
  EXPECT_EQ(run.FocusId(), kCheck);
  EXPECT_EQ(desktop.MessageBoxes().size(), 1u);
}

TEST(MessageBoxes, AreAnsweredByKeysAndByStatement) {
  using Answering = std::function<void(DialogRun&)>;
  const auto key = [](WPARAM pressed) -> Answering {
    return [pressed](DialogRun& run) { run.desktop().KeyPress(pressed); };
  };
  const struct {
    const char* name;
    UINT style;
    Answering before;
    Answering meanwhile;
    const char* log;
  } kRows[] = {
      {"Enter", MB_YESNO, {}, key(VK_RETURN), "answer 6"},
      {"Enter, the second is the default", MB_YESNO | 0x100, {}, key(VK_RETURN), "answer 7"},
      {"Escape cancels", MB_YESNOCANCEL, {}, key(VK_ESCAPE), "answer 2"},
      {"Escape is the only button", MB_OK, {}, key(VK_ESCAPE), "answer 1"},
      {"Escape without a cancel button", MB_YESNO, {}, key(VK_ESCAPE), ""},
      {"stated",
       MB_RETRYCANCEL,
       [](DialogRun& run) { run.desktop().StateAnswers({IDRETRY}); },
       {},
       "answer 4"},
      {"stated by a function",
       MB_YESNO,
       [](DialogRun& run) {
         run.desktop().StateAnswerFunction(
             [](const ShownMessageBox& box) { return box.Buttons().back(); });
       },
       {},
       "answer 7"},
      {"patience is over",
       MB_YESNO,
       [](DialogRun& run) { run.desktop().SetPatience(Desktop::Limit(1)); },
       {},
       "answer 0"},
      {"no such style", 9, {}, {}, "answer 0"},
  };
  for (const auto& row : kRows) {
    DialogRun* running = nullptr;
    DialogRun run(AskingHook(running, row.style));
    running = &run;
    if (row.before) row.before(run);
    run.Start();
    if (row.meanwhile) {
      PostMessageA(run.dialog(), kAsk, 0, 0);
      run.desktop().WaitUntil([&] { return run.desktop().OpenMessageBox().has_value(); });
      row.meanwhile(run);
    } else {
      SendMessageA(run.dialog(), kAsk, 0, 0);
    }
    run.desktop().WaitForRest(run.dialog());
    EXPECT_EQ(run.TakeLog(), row.log) << row.name;
  }
}

// ---- the mouse ----

// Plain windows on the test's own thread that note the mouse messages they get.
class MouseTest : public testing::Test {
 protected:
  MouseTest() : use_(machine_) {
    notes().clear();
    WNDCLASSA record = {};
    record.lpszClassName = "Plain";
    record.lpfnWndProc = [](HWND window, UINT message, WPARAM wparam, LPARAM lparam) -> LRESULT {
      Note(window, message, lparam);
      return DefWindowProcA(window, message, wparam, lparam);
    };
    RegisterClassA(&record);
    top_ = Make(nullptr, 1, 0, {100, 100, 300, 300});
  }

  static std::string& notes() {
    static std::string notes;
    return notes;
  }
  static void Note(HWND window, UINT message, LPARAM lparam) {
    const bool moved = message == WM_MOUSEMOVE;
    if (!moved && message != WM_LBUTTONDOWN && message != WM_LBUTTONUP &&
        message != WM_CAPTURECHANGED) {
      return;
    }
    const auto packed = static_cast<ULONG_PTR>(lparam);
    const char* const name = moved                          ? "move"
                             : message == WM_LBUTTONDOWN    ? "down"
                             : message == WM_CAPTURECHANGED ? "lost"
                                                            : "up";
    notes() += std::to_string(GetDlgCtrlID(window)) + name;
    if (message != WM_CAPTURECHANGED) {
      notes() += " " + std::to_string(static_cast<SHORT>(LOWORD(packed))) + "," +
                 std::to_string(static_cast<SHORT>(HIWORD(packed)));
    }
    notes() += "; ";
  }
  HWND Make(HWND parent, int id, DWORD style, RECT place) {
    const DWORD kind = parent != nullptr ? WS_CHILD : WS_POPUP;
    const HWND made = CreateWindowExA(0, "Plain", "", kind | WS_VISIBLE | style, place.left,
                                      place.top, place.right - place.left, place.bottom - place.top,
                                      parent, nullptr, nullptr, nullptr);
    SetWindowLongPtrA(made, GWLP_ID, id);
    return made;
  }
  std::string Taken() { return std::exchange(notes(), std::string()); }

  Machine machine_;
  UseMachine use_;
  HWND top_ = nullptr;
};

TEST_F(MouseTest, GoesToTheWindowUnderThePoint) {
  Make(top_, 2, 0, {10, 10, 50, 50});
  Make(top_, 3, 0, {30, 30, 90, 90});  // behind 2
  Make(top_, 4, WS_DISABLED, {100, 10, 140, 50});
  Make(top_, 5, 0, {100, 100, 140, 140});
  ShowWindow(GetDlgItem(top_, 5), SW_HIDE);
  const struct {
    int x, y;
    const char* expected;
  } kRows[] = {
      {5, 6, "1down 5,6; "},     {12, 13, "2down 2,3; "},     {40, 40, "2down 30,30; "},
      {60, 61, "3down 30,31; "}, {110, 20, "1down 110,20; "}, {110, 110, "1down 110,110; "},
  };
  for (const auto& row : kRows) {
    EXPECT_TRUE(machine_.desktop.MouseDown(top_, row.x, row.y));
    EXPECT_EQ(Taken(), row.expected) << row.x << "," << row.y;
    machine_.desktop.MouseUp(top_, row.x, row.y);
    Taken();
  }
  EXPECT_FALSE(machine_.desktop.MouseDown(top_, 500, 500));
  EnableWindow(top_, FALSE);
  EXPECT_FALSE(machine_.desktop.MouseDown(top_, 5, 5));
}

TEST_F(MouseTest, GoesToTheWindowThatHoldsIt) {
  const HWND first = Make(top_, 2, 0, {10, 10, 50, 50});
  const HWND second = Make(top_, 3, 0, {60, 60, 90, 90});
  SetCapture(second);
  machine_.desktop.MouseMove(top_, 20, 20);
  EXPECT_EQ(Taken(), "3move -40,-40; ");
  SetCapture(first);
  EXPECT_EQ(Taken(), "3lost; ");
  ReleaseCapture();
  EXPECT_EQ(Taken(), "2lost; ");
  machine_.desktop.MouseMove(top_, 20, 20);
  EXPECT_EQ(Taken(), "2move 10,10; ");
  SetCapture(first);
  DestroyWindow(first);
  EXPECT_EQ(GetCapture(), nullptr);
}

// ---- list box and check box ----

TEST(ListBox, KeepsTheCurrentLineInSight) {
  // The list is 26 pixels high, its lines 13: two are seen.
  const struct {
    const char* name;
    UINT message;
    int parameter;
    int current;
    int top;
  } kRows[] = {
      {"all added", LB_GETCOUNT, 0, -1, 0},
      {"within", LB_SETCURSEL, 1, 1, 0},
      {"below", LB_SETCURSEL, 4, 4, 3},
      {"still seen", LB_SETCURSEL, 3, 3, 3},
      {"above", LB_SETCURSEL, 1, 1, 1},
      {"the last", LB_SETCURSEL, 9, 9, 8},
      {"the last goes", LB_DELETESTRING, 9, -1, 7},
      {"too far", LB_SETCURSEL, 9, -1, 7},
      {"the first goes", LB_DELETESTRING, 0, -1, 6},
      {"top", LB_SETTOPINDEX, 2, -1, 2},
      {"none", LB_SETCURSEL, -1, -1, 2},
  };
  DialogRun run;
  run.Start();
  const HWND list = run.Item(kList);
  const HFONT font = CreateFontA(-11, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, "MS Sans Serif");
  SendMessageA(list, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  EXPECT_EQ(SendMessageA(list, LB_GETITEMHEIGHT, 0, 0), 13);
  for (int line = 0; line < 10; ++line)
    SendMessageA(list, LB_ADDSTRING, 0, TextParameter("x"));
  for (const auto& row : kRows) {
    SendMessageA(list, row.message, static_cast<WPARAM>(row.parameter), 0);
    EXPECT_EQ(run.desktop().ListCurrentLine(list), row.current) << row.name;
    EXPECT_EQ(run.desktop().ListTopLine(list), row.top) << row.name;
  }
}

TEST(ListBox, TellsItsListenerOfTheEnd) {
  DialogRun run;
  run.Start();
  std::string told;
  run.desktop().ListenToLists(
      [&](const ListChange& change) { told += (change.added ? "+" : "-") + change.text + " "; });
  const HWND list = run.Item(kList);
  for (const char* line : {"a", "b", "c"})
    SendMessageA(list, LB_ADDSTRING, 0, TextParameter(line));
  SendMessageA(list, LB_DELETESTRING, 0, 0);
  SendMessageA(list, LB_DELETESTRING, 1, 0);
  run.desktop().ListenToLists(nullptr);
  EXPECT_EQ(told, "+a +b +c -c ");
}

TEST(ListBox, CanBeMadeToRefuse) {
  DialogRun run;
  run.Start();
  const HWND list = run.Item(kList);
  run.machine().faults.FailNth("LB_ADDSTRING", 2, 8);
  EXPECT_EQ(SendMessageA(list, LB_ADDSTRING, 0, TextParameter("a")), 0);
  EXPECT_EQ(SendMessageA(list, LB_ADDSTRING, 0, TextParameter("b")), LB_ERRSPACE);
  run.machine().faults.FailAlways("LB_GETCOUNT", 8);
  EXPECT_EQ(SendMessageA(list, LB_GETCOUNT, 0, 0), LB_ERR);
  EXPECT_EQ(run.desktop().ListLines(list), std::vector<std::string>{"a"});
}

TEST(CheckBox, CountsAClickThatEndsWhereItBegan) {
  using Playing = std::function<void(Desktop&, HWND)>;
  const struct {
    const char* name;
    Playing play;
    WPARAM state;  // check and pushed bits
    const char* log;
  } kRows[] = {
      {"away and back",
       [](Desktop& desktop, HWND box) {
         desktop.MouseDown(box, 3, 3);
         desktop.MouseMove(box, 3, -9);
         desktop.MouseMove(box, 3, 4);
         desktop.MouseUp(box, 3, 4);
       },
       1, "command 11"},
      {"Space held",
       [](Desktop& desktop, HWND box) {
         SendMessageA(GetParent(box), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(box), TRUE);
         desktop.KeyDown(VK_SPACE);
       },
       4, ""},
  };
  for (const auto& row : kRows) {
    DialogRun run;
    run.Start();
    const HWND box = run.Item(kCheck);
    row.play(run.desktop(), box);
    EXPECT_EQ(SendMessageA(box, BM_GETSTATE, 0, 0) & ~static_cast<LRESULT>(BST_FOCUS),
              static_cast<LRESULT>(row.state))
        << row.name;
    EXPECT_EQ(run.TakeLog(), row.log) << row.name;
  }
}

}  // namespace
}  // namespace host
