// The list on a system whose list boxes refuse a current line when they show no selection.
#include "app/progress_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "platform/host/machine.h"
#include "report/progress_lines.h"

namespace hostscope {
namespace {

WNDPROC list_box_procedure = nullptr;
LRESULT refused_line = -1;

LRESULT CALLBACK RefusingProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case LB_SETCURSEL:
      refused_line = static_cast<LRESULT>(wparam);
      return LB_ERR;
    case LB_GETCURSEL:
      return refused_line;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      ADD_FAILURE() << "a list box that knows of the focus shows it";
      return 0;
    default:
      return CallWindowProcA(list_box_procedure, window, message, wparam, lparam);
  }
}

TEST(RefusingList, StillFollowsTheRunAndTheKeys) {
  host::Machine machine;
  const host::UseMachine use(machine);
  const HWND list_box =
      CreateWindowExA(0, "LISTBOX", "", WS_POPUP | WS_VISIBLE | LBS_NOINTEGRALHEIGHT | LBS_NOSEL, 0,
                      0, 200, 180, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
  list_box_procedure = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrA(list_box, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(RefusingProcedure)));
  const auto state = std::make_unique<RunState>();
  const auto settings = std::make_unique<ProfileSettings>();
  const WorkerThread worker(*state, *settings);
  ProgressList list(worker);
  list.Attach(list_box);

  ProgressLines lines(list_box);
  for (int i = 0; i < 40; ++i)
    lines.AddProgressLine("a line");
  const int shown = 180 / static_cast<int>(SendMessageA(list_box, LB_GETITEMHEIGHT, 0, 0));
  struct Row {
    const char* what;
    WPARAM key;  // 0: none
    int current;
    int top;
  };
  const Row rows[] = {
      {"after the run", 0, 39, 40 - shown},
      {"Up", VK_UP, 38, 40 - shown},
      {"Page Up", VK_PRIOR, 0, 0},
      {"Down", VK_DOWN, 16, 16 - shown + 1},
      {"Page Down", VK_NEXT, 39, 40 - shown},
  };
  for (const Row& row : rows) {
    if (row.key != 0) SendMessageA(list_box, WM_KEYDOWN, row.key, 0);
    EXPECT_EQ(SendMessageA(list_box, LB_GETCURSEL, 0, 0), row.current) << row.what;
    EXPECT_EQ(machine.desktop.ListTopLine(list_box), std::max(row.top, 0)) << row.what;
    EXPECT_EQ(refused_line, -1) << row.what << ": the list box would highlight it";
  }
  SetFocus(list_box);
  EXPECT_EQ(machine.desktop.Focus(), list_box);
  SetFocus(nullptr);
  SendMessageA(list_box, LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
  EXPECT_EQ(SendMessageA(list_box, LB_GETCURSEL, 0, 0), LB_ERR) << "there is none any more";
  SendMessageA(list_box, LB_SETCURSEL, 39, 0);
  lines.RemoveLastProgressLine();
  EXPECT_EQ(SendMessageA(list_box, LB_GETCURSEL, 0, 0), LB_ERR) << "its current line is gone";
  DestroyWindow(list_box);
}

}  // namespace
}  // namespace hostscope
