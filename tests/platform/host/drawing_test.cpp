// Painting and GDI objects: when windows are painted, and what is on record of it.
#include <gtest/gtest.h>

#include "tests/platform/host/dialog_run.h"

namespace host {
namespace {

// Plain windows on the test's own thread that note their painting.
class DrawingTest : public testing::Test {
 protected:
  DrawingTest() : use_(machine_) {
    notes().clear();
    Register("Plain", nullptr);
    Register("Grey", reinterpret_cast<HBRUSH>(static_cast<std::uintptr_t>(COLOR_BTNFACE + 1)));
    outer_ = Make("Grey", nullptr, 1, 0, {100, 100, 300, 300});
    inner_ = Make("Plain", outer_, 2, 0, {10, 20, 60, 50});
    Settle();
  }

  void Register(const char* name, HBRUSH background) {
    WNDCLASSA record = {};
    record.lpszClassName = name;
    record.hbrBackground = background;
    record.lpfnWndProc = Procedure;
    EXPECT_NE(RegisterClassA(&record), 0);
  }
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message != WM_PAINT) return DefWindowProcA(window, message, wparam, lparam);
    RECT update = {};
    EXPECT_TRUE(GetUpdateRect(window, &update, FALSE));
    PAINTSTRUCT paint = {};
    BeginPaint(window, &paint);
    EXPECT_FALSE(GetUpdateRect(window, nullptr, FALSE));
    const RECT& part = paint.rcPaint;
    notes() += std::to_string(GetDlgCtrlID(window)) + ":" + std::to_string(part.left) + "," +
               std::to_string(part.top) + "-" + std::to_string(part.right) + "," +
               std::to_string(part.bottom) + " ";
    EndPaint(window, &paint);
    return 0;
  }
  HWND Make(const char* name, HWND parent, int id, DWORD style, RECT place) {
    const DWORD kind = parent != nullptr ? WS_CHILD : WS_POPUP;
    const HWND made = CreateWindowExA(0, name, "", kind | WS_VISIBLE | style, place.left, place.top,
                                      place.right - place.left, place.bottom - place.top, parent,
                                      nullptr, nullptr, nullptr);
    SetWindowLongPtrA(made, GWLP_ID, id);
    return made;
  }
  // Works the messages off; what has been painted.
  std::string Settle() {
    MSG message = {};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
      DispatchMessageA(&message);
    return std::exchange(notes(), std::string());
  }
  static std::string& notes() {
    static std::string notes;
    return notes;
  }

  Machine machine_;
  UseMachine use_;
  HWND outer_ = nullptr;
  HWND inner_ = nullptr;
};

TEST_F(DrawingTest, PaintsWhatIsOutOfDate) {
  const struct {
    const char* name;
    std::function<void(HWND outer, HWND inner)> act;
    const char* painted;
  } kRows[] = {
      {"nothing", [](HWND, HWND) {}, ""},
      {"inside", [](HWND, HWND inner) { InvalidateRect(inner, nullptr, FALSE); }, "2:0,0-50,30 "},
      {"what stands in it too", [](HWND outer, HWND) { InvalidateRect(outer, nullptr, FALSE); },
       "1:0,0-200,200 2:0,0-50,30 "},
      {"a part",
       [](HWND outer, HWND) {
         const RECT part = {0, 0, 20, 40};
         InvalidateRect(outer, &part, FALSE);
       },
       "1:0,0-20,40 2:0,0-10,20 "},
      {"parts join",
       [](HWND, HWND inner) {
         const RECT parts[] = {{1, 2, 3, 4}, {10, 11, 12, 999}};
         for (const RECT& part : parts)
           InvalidateRect(inner, &part, FALSE);
       },
       "2:1,2-12,30 "},
      {"outside of it",
       [](HWND, HWND inner) {
         const RECT part = {50, 0, 60, 10};
         InvalidateRect(inner, &part, FALSE);
       },
       ""},
      {"validated",
       [](HWND, HWND inner) {
         InvalidateRect(inner, nullptr, FALSE);
         ValidateRect(inner, nullptr);
       },
       ""},
      {"hidden",
       [](HWND, HWND inner) {
         ShowWindow(inner, SW_HIDE);
         InvalidateRect(inner, nullptr, FALSE);
       },
       "1:10,20-60,50 "},
      {"shown", [](HWND, HWND inner) { ShowWindow(inner, SW_SHOW); }, "2:0,0-50,30 "},
      {"at once",
       [](HWND outer, HWND) {
         InvalidateRect(outer, nullptr, FALSE);
         UpdateWindow(outer);
         notes() += "| ";
       },
       "1:0,0-200,200 2:0,0-50,30 | "},
  };
  for (const auto& row : kRows) {
    row.act(outer_, inner_);
    EXPECT_EQ(Settle(), row.painted) << row.name;
  }
}

TEST_F(DrawingTest, LeavesChildrenThatAreClippedAlone) {
  SetWindowLongPtrA(outer_, GWL_STYLE, GetWindowLongPtrA(outer_, GWL_STYLE) | WS_CLIPCHILDREN);
  InvalidateRect(outer_, nullptr, FALSE);
  EXPECT_EQ(Settle(), "1:0,0-200,200 ");
}

TEST_F(DrawingTest, ErasesByTheBrushOfTheClass) {
  machine_.desktop.TakeDrawing(outer_);
  for (const BOOL erase : {FALSE, TRUE}) {
    InvalidateRect(outer_, nullptr, erase);
    Settle();
    const std::vector<DrawingCall> calls = machine_.desktop.TakeDrawing(outer_);
    ASSERT_EQ(calls.size(), erase ? 1u : 0u);
    if (!erase) continue;
    EXPECT_EQ(calls[0].function, "FillRect");
    EXPECT_EQ(calls[0].fill_color, 0xC0C0C0u);
  }
  EXPECT_TRUE(machine_.desktop.TakeDrawing(inner_).empty()) << "without a brush nothing erases";
}

TEST_F(DrawingTest, RecordsTheCallsWithTheStateOfTheDevice) {
  const HDC dc = GetDC(inner_);
  const HFONT font = CreateFontA(-11, 0, 0, 0, 700, 0, 1, 0, 255, 4, 0, 1, 0, "Lucida Console");
  EXPECT_EQ(SelectObject(dc, font), GetStockObject(SYSTEM_FONT));
  EXPECT_EQ(SetTextColor(dc, 0x123456), 0u);
  EXPECT_EQ(SetBkColor(dc, 0x654321), 0xFFFFFFu);
  EXPECT_EQ(SetBkMode(dc, TRANSPARENT), OPAQUE);
  RECT rectangle = {1, 2, 30, 20};
  EXPECT_EQ(DrawTextA(dc, "text and more", 4, &rectangle, DT_CENTER), 11);
  EXPECT_TRUE(DrawEdge(dc, &rectangle, EDGE_SUNKEN, BF_RECT | BF_ADJUST));
  EXPECT_TRUE(DrawFrameControl(dc, &rectangle, DFC_BUTTON, DFCS_BUTTONPUSH | DFCS_ADJUSTRECT));
  EXPECT_TRUE(DrawFocusRect(dc, &rectangle));
  const auto calls = machine_.desktop.TakeDrawing(inner_);
  ASSERT_EQ(calls.size(), 4u);
  EXPECT_EQ(calls[0].function, "DrawTextA");
  EXPECT_EQ(calls[0].text, "text");
  EXPECT_EQ(calls[0].flags, DT_CENTER);
  EXPECT_EQ(calls[0].text_color, 0x123456u);
  EXPECT_EQ(calls[0].background_color, 0x654321u);
  EXPECT_EQ(calls[0].background_mode, TRANSPARENT);
  EXPECT_STREQ(calls[0].font.lfFaceName, "Lucida Console");
  EXPECT_EQ(calls[0].font.lfUnderline, 1);
  EXPECT_EQ(calls[1].kind, EDGE_SUNKEN);
  EXPECT_EQ(calls[2].rectangle.left, 3) << "within the edge";
  EXPECT_EQ(calls[3].rectangle.right, 26) << "within the button";
  EXPECT_FALSE(DeleteObject(font)) << "while it is selected";
  EXPECT_EQ(ReleaseDC(inner_, dc), 1);
  EXPECT_TRUE(DeleteObject(font));
  EXPECT_EQ(SetTextColor(dc, 0), CLR_INVALID);
}

TEST_F(DrawingTest, CopiesFromAMemoryDevice) {
  const HDC dc = GetDC(outer_);
  const HDC memory = CreateCompatibleDC(dc);
  const HBITMAP tile = LoadBitmapA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(101));
  BITMAP record = {};
  ASSERT_EQ(GetObjectA(tile, sizeof record, &record), static_cast<int>(sizeof record));
  EXPECT_EQ(record.bmWidth, 64);
  EXPECT_EQ(record.bmHeight, 64);
  EXPECT_EQ(SelectObject(dc, tile), nullptr) << "not into a window's device";
  const HGDIOBJ before = SelectObject(memory, tile);
  EXPECT_NE(before, nullptr);
  machine_.desktop.TakeDrawing(outer_);
  EXPECT_TRUE(BitBlt(dc, 64, 0, 30, 40, memory, 1, 2, SRCCOPY));
  const auto calls = machine_.desktop.TakeDrawing(outer_);
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].rectangle.right, 94);
  EXPECT_EQ(calls[0].source.y, 2);
  EXPECT_EQ(calls[0].source_size.cx, 64);
  EXPECT_EQ(calls[0].flags, SRCCOPY);
  EXPECT_FALSE(DeleteObject(tile));
  EXPECT_EQ(SelectObject(memory, before), tile);
  EXPECT_TRUE(DeleteObject(tile));
  EXPECT_FALSE(DeleteObject(tile));
  EXPECT_FALSE(DeleteDC(dc)) << "of a window";
  EXPECT_TRUE(DeleteDC(memory));
  EXPECT_EQ(ReleaseDC(outer_, dc), 1);
  EXPECT_FALSE(BitBlt(dc, 0, 0, 1, 1, memory, 0, 0, SRCCOPY));
  EXPECT_EQ(machine_.handles.OpenObjects(), (std::map<std::string, int>{{"window", 2}}));
}

TEST(DrawingOfControls, ListBoxAsksItsParentForColours) {
  DialogRun run([](HWND, UINT message, WPARAM wparam, LPARAM) -> INT_PTR {
    if (message != WM_CTLCOLORLISTBOX) return FALSE;
    const HDC dc = reinterpret_cast<HDC>(wparam);
    SetTextColor(dc, 0x00F000);
    SetBkColor(dc, 0);
    return reinterpret_cast<INT_PTR>(GetStockObject(BLACK_BRUSH));
  });
  run.Start();
  const HWND list = run.Item(kList);
  for (const char* line : {"one", "two", "three"}) {
    SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line));
  }
  SendMessageA(list, LB_SETCURSEL, 2, 0);
  run.desktop().WaitForRest(run.dialog());
  std::vector<DrawingCall> calls = run.desktop().TakeDrawing(list);
  ASSERT_GE(calls.size(), 3u);
  calls.erase(calls.begin(), calls.end() - 3);
  EXPECT_EQ(calls[0].function, "FillRect");
  EXPECT_EQ(calls[0].fill_color, 0u);
  EXPECT_EQ(calls[1].text, "two");
  EXPECT_EQ(calls[2].text, "three");
  EXPECT_EQ(calls[2].text_color, 0x00F000u);
  EXPECT_EQ(calls[2].rectangle.top, 13);
}

TEST(WrongHandles, AreAnsweredAsSuch) {
  Machine machine;
  const UseMachine use(machine);
  const HWND none = reinterpret_cast<HWND>(0x123458);
  RECT rectangle = {};
  PAINTSTRUCT paint = {};
  POINT point = {};
  const struct {
    const char* name;
    bool refused;
  } kRows[] = {
      {"SendMessageA", SendMessageA(none, WM_GETTEXTLENGTH, 0, 0) == 0},
      {"PostMessageA", !PostMessageA(none, WM_NULL, 0, 0)},
      {"GetClientRect", !GetClientRect(none, &rectangle)},
      {"GetWindowRect", !GetWindowRect(none, &rectangle)},
      {"ScreenToClient", !ScreenToClient(none, &point)},
      {"InvalidateRect", !InvalidateRect(none, nullptr, TRUE)},
      {"BeginPaint", BeginPaint(none, &paint) == nullptr},
      {"GetDC", GetDC(none) == nullptr},
      {"SetFocus", SetFocus(none) == nullptr},
      {"SetCapture", SetCapture(none) == nullptr},
      {"EndDialog", !EndDialog(none, 0)},
      {"GetDlgItem", GetDlgItem(none, 1) == nullptr},
      {"DestroyWindow", !DestroyWindow(none)},
      {"MessageBoxA", MessageBoxA(none, "", "", MB_OK) == 0},
      {"SetWindowLongPtrA", SetWindowLongPtrA(none, GWLP_USERDATA, 1) == 0},
  };
  for (const auto& row : kRows)
    EXPECT_TRUE(row.refused) << row.name;
  EXPECT_EQ(GetLastError(), 1400u);
  EXPECT_TRUE(machine.handles.OpenObjects().empty());
}

}  // namespace
}  // namespace host
