// Messages between threads, and message boxes.
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

}  // namespace
}  // namespace host
