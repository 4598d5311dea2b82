// A modal dialog with a list box, check boxes and buttons: its messages, across threads too, its
// keyboard, focus, capture and end.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

constexpr int kList = 102;
constexpr int kCheckBox = 1002;
constexpr int kDisabledCheckBox = 1003;
constexpr int kButton = 7;
constexpr int kClose = 2;
constexpr UINT kStep = WM_USER + 100;

constexpr DWORD kChild = WS_CHILD | WS_VISIBLE | WS_TABSTOP;
constexpr Control kControls[] = {
    {"LISTBOX", "", kList, kChild | LBS_NOINTEGRALHEIGHT, WS_EX_CLIENTEDGE},
    {"BUTTON", "&Check", kCheckBox, kChild | BS_AUTOCHECKBOX, 0},
    {"BUTTON", "&Disabled", kDisabledCheckBox, kChild | BS_AUTOCHECKBOX | WS_DISABLED, 0},
    {"BUTTON", "&Button", kButton, kChild | BS_PUSHBUTTON, 0},
    {"BUTTON", "Close", kClose, kChild | BS_PUSHBUTTON, 0}};

// What a test does in its dialog, and what it has seen there.
struct Script {
  std::function<void(HWND)> start;               // at the dialog's beginning
  std::function<void(HWND, WPARAM)> step;        // for every kStep posted
  std::function<void(HWND, WORD)> command = {};  // for every command
  INT_PTR start_result = TRUE;
  std::vector<std::string> log = {};
};
Script* script = nullptr;

INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_INITDIALOG:
      script->log.push_back("start " + std::to_string(lparam));
      if (script->start) script->start(dialog);
      return script->start_result;
    case WM_COMMAND: {
      // A list box tells of its focus, which the program's own never does: it swallows that.
      if (LOWORD(wparam) == kList) return TRUE;
      const HWND control = GetDlgItem(dialog, LOWORD(wparam));
      const bool named = lparam != 0 && reinterpret_cast<HWND>(lparam) == control;
      script->log.push_back("command " + std::to_string(LOWORD(wparam)) + "/" +
                            std::to_string(HIWORD(wparam)) + (named ? " of a control" : ""));
      if (script->command) script->command(dialog, LOWORD(wparam));
      return TRUE;
    }
    case kStep:
      if (script->step) script->step(dialog, wparam);
      return TRUE;
    default:
      return FALSE;
  }
}

INT_PTR RunScript(Place& place, Script& to_run) {
  script = &to_run;
  const INT_PTR result = place.RunDialog(kControls, DialogProcedure, 4711);
  script = nullptr;
  return result;
}

std::string Log(const Script& from) {
  std::string all;
  for (const std::string& line : from.log)
    all += (all.empty() ? "" : ", ") + line;
  return all;
}

// A script that does everything at the dialog's beginning and leaves.
void AtOnce(const std::function<void(HWND)>& work, Script* used = nullptr) {
  Place place;
  Script mine{[&](HWND dialog) {
                work(dialog);
                EndDialog(dialog, 5);
              },
              nullptr};
  ExpectAnswer("dialog's result", 5, RunScript(place, mine));
  if (used != nullptr) *used = mine;
}

int FocusedId() {
  return GetFocus() == nullptr ? 0 : GetDlgCtrlID(GetFocus());
}

// ---- the list box, from a worker ----

struct ListRow {
  const char* name;
  UINT message;
  long long parameter;
  const char* text;
  long long expected;
};

// One after the other on one list.
constexpr ListRow kListRows[] = {
    {"count of the empty list", LB_GETCOUNT, 0, nullptr, 0},
    {"current of the empty list", LB_GETCURSEL, 0, nullptr, LB_ERR},
    {"delete from the empty list", LB_DELETESTRING, 0, nullptr, LB_ERR},
    {"first line", LB_ADDSTRING, 0, "first", 0},
    {"it is not current", LB_GETCURSEL, 0, nullptr, LB_ERR},
    {"second line", LB_ADDSTRING, 0, "a second line", 1},
    {"empty line", LB_ADDSTRING, 0, "", 2},
    {"count", LB_GETCOUNT, 0, nullptr, 3},
    {"make the last current", LB_SETCURSEL, 2, nullptr, 2},
    {"it is", LB_GETCURSEL, 0, nullptr, 2},
    {"delete the current line", LB_DELETESTRING, 2, nullptr, 2},
    {"none is current then", LB_GETCURSEL, 0, nullptr, LB_ERR},
    {"same text again", LB_ADDSTRING, 0, "first", 2},
    {"make it current", LB_SETCURSEL, 2, nullptr, 2},
    {"delete one before it", LB_DELETESTRING, 0, nullptr, 2},
    {"the current one has moved", LB_GETCURSEL, 0, nullptr, 1},
    {"make the first current", LB_SETCURSEL, 0, nullptr, 0},
    {"delete one behind it", LB_DELETESTRING, 1, nullptr, 1},
    {"it stays", LB_GETCURSEL, 0, nullptr, 0},
    {"make one current that is not there", LB_SETCURSEL, 9, nullptr, LB_ERR},
    {"the right one stays", LB_GETCURSEL, 0, nullptr, 0},
    {"delete one that is not there", LB_DELETESTRING, 1, nullptr, LB_ERR},
    {"delete number -1", LB_DELETESTRING, -1, nullptr, LB_ERR},
    {"make none current", LB_SETCURSEL, -1, nullptr, LB_ERR},
    {"none is", LB_GETCURSEL, 0, nullptr, LB_ERR},
    {"delete the only line", LB_DELETESTRING, 0, nullptr, 0},
    {"nothing is left", LB_GETCOUNT, 0, nullptr, 0}};

struct ListWork {
  HWND dialog = nullptr;
  HWND list = nullptr;
  WNDPROC previous = nullptr;
  DWORD dialog_thread = 0;
  std::vector<long long> came;
  int on_other_threads = 0;
};
ListWork* list_work = nullptr;

LRESULT CALLBACK WatchList(HWND list, UINT message, WPARAM wparam, LPARAM lparam) {
  if (GetCurrentThreadId() != list_work->dialog_thread) ++list_work->on_other_threads;
  return CallWindowProcA(list_work->previous, list, message, wparam, lparam);
}

DWORD WINAPI SendListRows(LPVOID) {
  for (const ListRow& row : kListRows) {
    list_work->came.push_back(SendMessageA(list_work->list, row.message,
                                           static_cast<WPARAM>(row.parameter),
                                           reinterpret_cast<LPARAM>(row.text)));
  }
  PostMessageA(list_work->dialog, kStep, 0, 0);
  return 0;
}

TEST(DialogContract, ListBoxFromAnotherThread) {
  Place place;
  ListWork work;
  list_work = &work;
  HANDLE thread = nullptr;
  Script dialog{[&](HWND window) {
                  work.dialog = window;
                  work.list = GetDlgItem(window, kList);
                  work.dialog_thread = GetCurrentThreadId();
                  work.previous = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(
                      work.list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WatchList)));
                  thread = CreateThread(nullptr, 0, SendListRows, nullptr, 0, nullptr);
                },
                [&](HWND window, WPARAM) { EndDialog(window, 1); }};
  RunScript(place, dialog);
  ExpectAnswer("worker ends", WAIT_OBJECT_0, WaitForSingleObject(thread, 20000));
  CloseHandle(thread);
  ASSERT_EQ(std::size(kListRows), work.came.size());
  for (std::size_t i = 0; i < std::size(kListRows); ++i) {
    ExpectAnswer(kListRows[i].name, kListRows[i].expected, work.came[i]);
  }
  ExpectAnswer("messages that another thread carried out", 0, work.on_other_threads);
  list_work = nullptr;
}

// ---- check boxes ----

TEST(DialogContract, CheckBox) {
  static constexpr struct {
    const char* name;
    int id;
    UINT message;
    WPARAM parameter;
    long long check;  // BM_GETCHECK afterwards
    const char* log;
  } kRows[] = {
      {"untouched", kCheckBox, WM_NULL, 0, BST_UNCHECKED, ""},
      {"set", kCheckBox, BM_SETCHECK, BST_CHECKED, BST_CHECKED, ""},
      {"clicked", kCheckBox, BM_CLICK, 0, BST_UNCHECKED, "command 1002/0 of a control"},
      {"clicked again", kCheckBox, BM_CLICK, 0, BST_CHECKED, "command 1002/0 of a control"},
      {"cleared", kCheckBox, BM_SETCHECK, BST_UNCHECKED, BST_UNCHECKED, ""},
      {"a state that it does not have", kCheckBox, BM_SETCHECK, 5, BST_CHECKED, ""},
      {"disabled, untouched", kDisabledCheckBox, WM_NULL, 0, BST_UNCHECKED, ""},
      {"disabled, set", kDisabledCheckBox, BM_SETCHECK, BST_CHECKED, BST_CHECKED, ""},
      {"push button, set", kButton, BM_SETCHECK, BST_CHECKED, BST_UNCHECKED, ""},
      {"push button, clicked", kButton, BM_CLICK, 0, BST_UNCHECKED, "command 7/0 of a control"}};
  AtOnce([](HWND dialog) {
    for (const auto& row : kRows) {
      script->log.clear();
      const HWND control = GetDlgItem(dialog, row.id);
      SendMessageA(control, row.message, row.parameter, 0);
      ExpectAnswer(row.name, row.check, SendMessageA(control, BM_GETCHECK, 0, 0));
      ExpectAnswer(std::string(row.name) + ", notified", row.log, Log(*script));
      ExpectAnswer(std::string(row.name) + ", state", row.check,
                   SendMessageA(control, BM_GETSTATE, 0, 0) & 3);
    }
  });
}

TEST(DialogContract, ButtonPressedByMouse) {
  AtOnce([](HWND dialog) {
    const HWND box = GetDlgItem(dialog, kCheckBox);
    script->log.clear();
    const LPARAM inside = MAKELPARAM(2, 2);
    const LPARAM outside = MAKELPARAM(2, 2000);
    SendMessageA(box, WM_LBUTTONDOWN, MK_LBUTTON, inside);
    ExpectAnswer("holds the capture", true, GetCapture() == box);
    ExpectAnswer("holds the focus", kCheckBox, FocusedId());
    ExpectAnswer("pushed", BST_PUSHED, SendMessageA(box, BM_GETSTATE, 0, 0) & BST_PUSHED);
    SendMessageA(box, WM_MOUSEMOVE, MK_LBUTTON, outside);
    ExpectAnswer("no longer pushed", 0, SendMessageA(box, BM_GETSTATE, 0, 0) & BST_PUSHED);
    SendMessageA(box, WM_LBUTTONUP, 0, outside);
    ExpectAnswer("released outside", "", Log(*script));
    ExpectAnswer("not checked", BST_UNCHECKED, SendMessageA(box, BM_GETCHECK, 0, 0));
    SendMessageA(box, WM_LBUTTONDOWN, MK_LBUTTON, inside);
    SendMessageA(box, WM_LBUTTONUP, 0, inside);
    ExpectAnswer("released inside", "command 1002/0 of a control", Log(*script));
    ExpectAnswer("checked", BST_CHECKED, SendMessageA(box, BM_GETCHECK, 0, 0));
    ExpectAnswer("no capture left", true, GetCapture() == nullptr);
  });
}

// ---- keyboard and focus ----

// Keys posted to whatever has the focus, one step each; the log gets the focus after each.
std::string PressKeys(const std::vector<WPARAM>& keys, WPARAM last_step_result = 0) {
  Place place;
  Script dialog{[](HWND window) { PostMessageA(window, kStep, 0, 0); },
                [&](HWND window, WPARAM number) {
                  script->log.push_back("at " + std::to_string(FocusedId()));
                  if (number == keys.size()) {
                    EndDialog(window, static_cast<INT_PTR>(last_step_result));
                    return;
                  }
                  PostMessageA(GetFocus(), WM_KEYDOWN, keys[number], 0);
                  PostMessageA(GetFocus(), WM_KEYUP, keys[number], 0);
                  PostMessageA(window, kStep, number + 1, 0);
                }};
  RunScript(place, dialog);
  return Log(dialog);
}

TEST(DialogContract, Keys) {
  static const struct {
    const char* name;
    std::vector<WPARAM> keys;
    const char* expected;
  } kRows[] = {
      {"first tab stop", {}, "start 4711, at 102"},
      {"Tab goes round, past what is disabled",
       {VK_TAB, VK_TAB, VK_TAB, VK_TAB},
       "start 4711, at 102, at 1002, at 7, at 2, at 102"},
      {"Escape is command 2", {VK_ESCAPE}, "start 4711, at 102, command 2/0 of a control, at 102"},
      {"Enter is command 1", {VK_RETURN}, "start 4711, at 102, command 1/0, at 102"},
      {"Enter on a button is its command",
       {VK_TAB, VK_TAB, VK_RETURN},
       "start 4711, at 102, at 1002, at 7, command 7/0 of a control, at 7"},
      {"space clicks",
       {VK_TAB, VK_SPACE},
       "start 4711, at 102, at 1002, command 1002/0 of a control, at 1002"}};
  for (const auto& row : kRows)
    ExpectAnswer(row.name, row.expected, PressKeys(row.keys));
}

TEST(DialogContract, FocusChosenAtTheStart) {
  Place place;
  Script dialog{[](HWND window) {
                  SetFocus(GetDlgItem(window, kButton));
                  PostMessageA(window, kStep, 0, 0);
                },
                [](HWND window, WPARAM) {
                  script->log.push_back("at " + std::to_string(FocusedId()));
                  EndDialog(window, 0);
                }};
  dialog.start_result = FALSE;
  RunScript(place, dialog);
  ExpectAnswer("FALSE keeps it", "start 4711, at 7", Log(dialog));
}

WNDPROC plain_button = nullptr;

LRESULT CALLBACK LogFocus(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_SETFOCUS || message == WM_KILLFOCUS) {
    const HWND other = reinterpret_cast<HWND>(wparam);
    script->log.push_back(std::to_string(GetDlgCtrlID(window)) +
                          (message == WM_SETFOCUS ? " gets it from " : " loses it to ") +
                          std::to_string(other == nullptr ? 0 : GetDlgCtrlID(other)));
  }
  return CallWindowProcA(plain_button, window, message, wparam, lparam);
}

TEST(DialogContract, FocusMoves) {
  AtOnce([](HWND dialog) {
    const HWND button = GetDlgItem(dialog, kButton);
    const HWND close = GetDlgItem(dialog, kClose);
    for (const HWND window : {button, close}) {
      plain_button = reinterpret_cast<WNDPROC>(
          SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&LogFocus)));
    }
    SetFocus(button);
    script->log.clear();
    ExpectAnswer("previous", true, SetFocus(close) == button);
    ExpectAnswer("now", true, GetFocus() == close);
    ExpectAnswer("order", "7 loses it to 2, 2 gets it from 7", Log(*script));
    script->log.clear();
    SetFocus(close);
    ExpectAnswer("focus on the same window again", "", Log(*script));
    ExpectAnswer("disabled window", true,
                 SetFocus(GetDlgItem(dialog, kDisabledCheckBox)) == nullptr);
    ExpectAnswer("changes nothing", kClose, FocusedId());
  });
}

// ---- the end ----

TEST(DialogContract, CloseBoxIsCommand2) {
  for (const UINT message : {UINT{WM_CLOSE}, UINT{WM_SYSCOMMAND}}) {
    Place place;
    Script dialog{[&](HWND window) { PostMessageA(window, message, SC_CLOSE, 0); }, nullptr,
                  [](HWND window, WORD) { EndDialog(window, 0); }};
    RunScript(place, dialog);
    ExpectAnswer("message " + std::to_string(message), "start 4711, command 2/0 of a control",
                 Log(dialog));
  }
}

// EndDialog only says that the dialog is to end: the procedure that calls it runs on, and what is
// in the dialog is still there.
TEST(DialogContract, EndIsAfterTheMessage) {
  Place place;
  HWND gone = nullptr;
  Script dialog{[](HWND window) { PostMessageA(window, kStep, 0, 0); },
                [&](HWND window, WPARAM) {
                  gone = window;
                  EndDialog(window, 3);
                  ExpectAnswer("window", "yes", Outcome(IsWindow(window)));
                  ExpectAnswer("list", 0,
                               SendDlgItemMessageA(window, kList, LB_ADDSTRING, 0,
                                                   reinterpret_cast<LPARAM>("x")));
                }};
  ExpectAnswer("result", 3, RunScript(place, dialog));
  ExpectAnswer("window afterwards", FALSE, IsWindow(gone));
  ExpectAnswer("message to it", 0, SendMessageA(gone, LB_GETCOUNT, 0, 0));
  ExpectAnswer("message posted to it", FALSE, PostMessageA(gone, kStep, 0, 0));
}

// ---- windows ----

TEST(DialogContract, WindowValues) {
  AtOnce([](HWND dialog) {
    const HWND button = GetDlgItem(dialog, kButton);
    ExpectAnswer("number", kButton, GetDlgCtrlID(button));
    ExpectAnswer("parent", true, GetParent(button) == dialog);
    ExpectAnswer("no such item", true, GetDlgItem(dialog, 999) == nullptr);
    char text[32] = "~~~~~~~~~~";
    ExpectAnswer("length of the text", 7, GetWindowTextA(button, text, sizeof text));
    ExpectAnswer("text", "&Button", text);
    GetWindowTextA(dialog, text, sizeof text);
    ExpectAnswer("caption", "Contract", text);
    ExpectAnswer("style", true, (GetWindowLongPtrA(button, GWL_STYLE) & WS_TABSTOP) != 0);
    ExpectAnswer("user data", 0, SetWindowLongPtrA(button, GWLP_USERDATA, 1234));
    ExpectAnswer("user data, previous", 1234, SetWindowLongPtrA(button, GWLP_USERDATA, 5));
    ExpectAnswer("user data, now", 5, GetWindowLongPtrA(button, GWLP_USERDATA));
    ExpectAnswer("enabled before", 0, EnableWindow(button, FALSE));
    ExpectAnswer("disabled", FALSE, IsWindowEnabled(button));
    ExpectAnswer("disabled before", true, EnableWindow(button, TRUE) != 0);
  });
}

}  // namespace
}  // namespace contract
