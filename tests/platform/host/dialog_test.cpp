// Modal dialogs as the person in front of them meets them. What single calls answer is held by the
// contract tests.
#include <gtest/gtest.h>

#include <atomic>

#include "tests/platform/host/dialog_run.h"

namespace host {
namespace {

struct Stroke {
  WPARAM key;
  bool shift = false;
  bool alt = false;
};

TEST(DialogKeys, MoveTheFocusAndSendCommands) {
  const struct {
    const char* name;
    std::vector<Stroke> strokes;
    int focus;  // afterwards
    const char* log;
  } kRows[] = {
      {"Shift+Tab", {{VK_TAB, true}}, kButton, ""},
      {"arrows are the list's own", {{VK_DOWN}, {VK_RIGHT}}, kList, ""},
      {"arrows elsewhere move on", {{VK_TAB}, {VK_DOWN}}, kButton, ""},
      {"arrows elsewhere move back", {{VK_TAB}, {VK_LEFT}}, kList, ""},
      {"a list takes letters", {{'S'}}, kList, ""},
      {"a letter elsewhere is a mnemonic", {{VK_TAB}, {'G'}}, kButton, "command 13"},
      {"Alt and a letter, from everywhere", {{'S', false, true}}, kCheck, "command 11"},
      {"the mnemonic of what is disabled", {{'O', false, true}}, kList, ""},
      {"a letter that is none", {{VK_TAB}, {'X'}}, kCheck, ""},
  };
  for (const auto& row : kRows) {
    DialogRun run;
    run.Start();
    for (const Stroke& stroke : row.strokes) {
      EXPECT_TRUE(run.desktop().KeyPress(stroke.key, stroke.shift, stroke.alt)) << row.name;
    }
    EXPECT_EQ(run.FocusId(), row.focus) << row.name;
    EXPECT_EQ(run.TakeLog(), row.log) << row.name;
  }
}

WNDPROC plain_procedure = nullptr;
LRESULT dialog_code = 0;
std::atomic<int> keys_seen = 0;

LRESULT CALLBACK CodedProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_GETDLGCODE) return dialog_code;
  if (message == WM_KEYDOWN) ++keys_seen;
  return CallWindowProcA(plain_procedure, window, message, wparam, lparam);
}

TEST(DialogKeys, GoToAControlThatWantsThem) {
  const struct {
    LRESULT code;
    WPARAM key;
    int seen;
    const char* log;
  } kRows[] = {
      {0, VK_TAB, 0, ""},
      {DLGC_WANTTAB, VK_TAB, 1, ""},
      {0, VK_UP, 0, ""},
      {DLGC_WANTARROWS, VK_UP, 1, ""},
      {DLGC_WANTARROWS, VK_ESCAPE, 0, "command 2"},
      {DLGC_WANTARROWS, VK_RETURN, 0, "command 1"},
      {DLGC_WANTALLKEYS, VK_ESCAPE, 1, ""},
      {DLGC_WANTALLKEYS, VK_RETURN, 1, ""},
      {0, 'Q', 1, ""},
  };
  for (const auto& row : kRows) {
    dialog_code = row.code;
    keys_seen = 0;
    DialogRun run([](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
      if (message == WM_INITDIALOG) {
        plain_procedure = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(
            GetDlgItem(dialog, kList), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CodedProcedure)));
      }
      return FALSE;
    });
    run.Start();
    run.desktop().KeyPress(row.key);
    EXPECT_EQ(keys_seen, row.seen) << row.code << " " << row.key;
    EXPECT_EQ(run.TakeLog(), row.log) << row.code << " " << row.key;
  }
}

TEST(DialogEnd, TellsTheDialogBeforeItsControls) {
  DialogRun* running = nullptr;
  static WNDPROC button_procedure;
  static DialogRun* noted;
  DialogRun run([&](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
    if (message == WM_INITDIALOG) {
      const HWND button = GetDlgItem(dialog, kButton);
      button_procedure = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(button, GWLP_WNDPROC));
      WNDPROC watching = [](HWND window, UINT told, WPARAM wparam, LPARAM lparam) -> LRESULT {
        if (told == WM_DESTROY) noted->Note("button destroyed");
        return CallWindowProcA(button_procedure, window, told, wparam, lparam);
      };
      SetWindowLongPtrA(button, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(watching));
    }
    if (message == WM_DESTROY) {
      running->Note(GetDlgItem(dialog, kButton) != nullptr ? "dialog destroyed" : "too late");
    }
    return FALSE;
  });
  noted = running = &run;
  run.Start();
  run.desktop().KeyPress(VK_ESCAPE);
  run.WaitForEnd();
  EXPECT_EQ(run.TakeLog(), "command 2, dialog destroyed, button destroyed");
}

TEST(DialogPlace, IsInPixelsOfTheFont) {
  DialogRun run;
  run.Start();
  RECT client = {};
  RECT whole = {};
  ASSERT_TRUE(GetClientRect(run.dialog(), &client));
  ASSERT_TRUE(GetWindowRect(run.dialog(), &whole));
  EXPECT_EQ(client.right, 180);
  EXPECT_EQ(client.bottom, 130);
  EXPECT_EQ(whole.right - whole.left, 180 + 2 * 3);
  EXPECT_EQ(whole.bottom - whole.top, 130 + 2 * 3 + 19);
  POINT corner = {0, 0};
  RECT button = {};
  ASSERT_TRUE(GetWindowRect(run.Item(kButton), &button));
  ASSERT_TRUE(ScreenToClient(run.dialog(), &corner));
  EXPECT_EQ(button.left + corner.x, 6);
  EXPECT_EQ(button.top + corner.y, 98);  // 97.5
  EXPECT_EQ(button.bottom - button.top, 26);
}

TEST(Dialog, IsNotShownThatCannotBeMade) {
  Machine machine;
  const UseMachine use(machine);
  const DLGPROC procedure = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; };
  EXPECT_EQ(DialogBoxParamA(nullptr, MAKEINTRESOURCEA(9), nullptr, procedure, 0), -1);
  EXPECT_EQ(GetLastError(), 1814u);
  DialogTemplate dialog = TestTemplate();
  dialog.items[2].window_class = "NO SUCH CLASS";
  machine.desktop.dialogs[9] = dialog;
  EXPECT_EQ(DialogBoxParamA(nullptr, MAKEINTRESOURCEA(9), nullptr, procedure, 0), -1);
  EXPECT_EQ(GetLastError(), 1407u);
  EXPECT_TRUE(machine.handles.OpenObjects().empty());
}

}  // namespace
}  // namespace host
