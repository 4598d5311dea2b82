// The dialog's own controls, each in a plain window that notes what they tell it.
#include <gtest/gtest.h>

#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include "app/controls/embossed_check_box.h"
#include "app/controls/g_label.h"
#include "app/controls/hyper_link.h"
#include "app/controls/tsp_button.h"
#include "platform/host/machine.h"
#include "platform/resources.h"

namespace hostscope {
namespace {

inline constexpr FontChoice kFont = {
    .face = "MS Sans Serif", .points = 8, .width = 0, .style = 0, .weight = 400};
inline constexpr ControlPlace kPlace = {10, 20, 60, 19};

struct Notice {
  UINT message;
  WPARAM first;
  LPARAM second;
  bool operator==(const Notice&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Notice& notice) {
  return out << std::hex << notice.message << "(" << notice.first << ", " << notice.second << ")";
}

std::vector<Notice> notices;

LRESULT CALLBACK ParentProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_COMMAND || message == WM_LBUTTONDOWN) {
    notices.push_back({message, wparam, lparam});
  }
  return DefWindowProcA(window, message, wparam, lparam);
}

class Controls : public testing::Test {
 protected:
  Controls() : use_(machine_) {
    notices.clear();
    WNDCLASSA record = {};
    record.lpfnWndProc = ParentProcedure;
    record.lpszClassName = "Parent";
    record.hInstance = GetModuleHandleA(nullptr);
    RegisterClassA(&record);
    parent_ = CreateWindowExA(0, "Parent", "", WS_POPUP | WS_VISIBLE, 0, 0, 200, 100, nullptr,
                              nullptr, record.hInstance, nullptr);
  }
  ~Controls() override {
    if (IsWindow(parent_)) DestroyWindow(parent_);
  }

  host::Desktop& desktop() { return machine_.desktop; }
  // The drawing of a control since the last asking.
  std::vector<host::DrawingCall> Drawing(HWND window) {
    UpdateWindow(window);
    return desktop().TakeDrawing(window);
  }
  std::vector<host::DrawingCall> PaintedAnew(HWND window) {
    Drawing(window);
    InvalidateRect(window, nullptr, FALSE);
    return Drawing(window);
  }
  HWND MakeSibling() {
    return CreateWindowExA(0, "BUTTON", "", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 100, 20, 30, 20,
                           parent_, reinterpret_cast<HMENU>(7), GetModuleHandleA(nullptr), nullptr);
  }

  host::Machine machine_;
  host::UseMachine use_;
  HWND parent_ = nullptr;
};

// What a text drawing says: "text at left,top to right,bottom format colour".
std::string Show(const host::DrawingCall& call) {
  char line[200];
  std::snprintf(line, sizeof line, "%s '%s' %d,%d-%d,%d %x %06x", call.function.c_str(),
                call.text.c_str(), call.rectangle.left, call.rectangle.top, call.rectangle.right,
                call.rectangle.bottom, call.flags | call.kind << 16,
                call.text.empty() ? 0 : call.text_color);
  return line;
}

std::vector<std::string> Show(const std::vector<host::DrawingCall>& calls) {
  std::vector<std::string> lines;
  for (const host::DrawingCall& call : calls)
    lines.push_back(Show(call));
  return lines;
}

using Lines = std::vector<std::string>;

TEST_F(Controls, LabelDrawsTheLayersThatItHas) {
  struct Row {
    COLORREF down_right;
    COLORREF up_left;
    Lines expected;
  };
  const Row rows[] = {
      {kNoLayer, kNoLayer, {"DrawTextA 'Text' 0,0-60,19 120 0000ff"}},
      {0x112233,
       kNoLayer,
       {"DrawTextA 'Text' 1,1-61,20 120 112233", "DrawTextA 'Text' 0,0-60,19 120 0000ff"}},
      {0x112233,
       0x445566,
       {"DrawTextA 'Text' -1,-1-59,18 120 445566", "DrawTextA 'Text' 1,1-61,20 120 112233",
        "DrawTextA 'Text' 0,0-60,19 120 0000ff"}},
  };
  for (const Row& row : rows) {
    GLabel label;
    FontChoice font = kFont;
    font.points = 14;
    font.width = 5;
    font.style = 5;
    ASSERT_TRUE(label.Create(parent_, {.text = "Text",
                                       .place = kPlace,
                                       .font = font,
                                       .format = 0x120,
                                       .text_color = 0xFF,
                                       .down_right_color = row.down_right,
                                       .up_left_color = row.up_left}));
    const auto drawing = PaintedAnew(label.window());
    ASSERT_EQ(Show(drawing), row.expected);
    EXPECT_EQ(drawing[0].background_mode, TRANSPARENT);
    const LOGFONTA& used = drawing[0].font;
    EXPECT_EQ(used.lfHeight, -19);
    EXPECT_EQ(used.lfWidth, 5);
    EXPECT_EQ(used.lfWeight, 400);
    EXPECT_TRUE(used.lfItalic && !used.lfUnderline && used.lfStrikeOut);
    EXPECT_EQ(used.lfCharSet, 0xFF);
    EXPECT_EQ(used.lfOutPrecision, 4);
    EXPECT_EQ(used.lfQuality, 1);
    EXPECT_STREQ(used.lfFaceName, "MS Sans Serif");
    DestroyWindow(label.window());
  }
}

TEST_F(Controls, LabelHandsAPressToItsParent) {
  GLabel label;
  ASSERT_TRUE(label.Create(parent_, {.text = std::string(300, 'x').c_str(),
                                     .place = kPlace,
                                     .font = kFont,
                                     .format = 0,
                                     .text_color = 0,
                                     .down_right_color = kNoLayer,
                                     .up_left_color = kNoLayer}));
  desktop().MouseDown(label.window(), 3, 4);
  EXPECT_EQ(notices, (std::vector<Notice>{{WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 4)}}));
  EXPECT_EQ(PaintedAnew(label.window())[0].text, std::string(255, 'x'));
}

TEST_F(Controls, LinkChangesColourUnderTheMouseAndOpensItsTarget) {
  HyperLink link;
  ASSERT_TRUE(link.Create(parent_, {.target = "http://where.test",
                                    .caption_id = kWebAddressId,
                                    .place = kPlace,
                                    .font = kFont,
                                    .format = 0x122,
                                    .normal_color = 0x111111,
                                    .hover_color = 0x222222,
                                    .pressed_color = 0x333333}));
  const HWND window = link.window();
  const auto color = [&] {
    const auto drawing = Drawing(window);
    return drawing.empty() ? 0 : drawing.back().text_color;
  };
  const auto first = Drawing(window);
  ASSERT_EQ(first.size(), 1u);
  EXPECT_EQ(first[0].text_color, 0x111111u);
  EXPECT_EQ(first[0].flags, 0x122u);
  EXPECT_TRUE(first[0].text.starts_with("http://"));

  desktop().MouseMove(window, 5, 5);
  EXPECT_EQ(color(), 0x222222u);
  EXPECT_EQ(desktop().Capture(), window);
  desktop().MouseMove(window, 6, 6);
  EXPECT_EQ(color(), 0u) << "nothing to draw within the link";
  desktop().MouseMove(window, -5, 5);
  EXPECT_EQ(color(), 0x111111u);
  EXPECT_EQ(desktop().Capture(), nullptr);

  desktop().MouseDown(window, 5, 5);
  EXPECT_EQ(color(), 0x333333u);
  EXPECT_TRUE(machine_.opened_targets.empty());
  desktop().MouseUp(window, 5, 5);
  EXPECT_EQ(color(), 0x111111u);
  EXPECT_EQ(machine_.opened_targets, std::vector<std::string>{"http://where.test"});
  EXPECT_EQ(desktop().CursorAt(window), LoadCursorA(GetModuleHandleA(nullptr), IDC_HAND));
}

TEST_F(Controls, LinkAndButtonDeleteTheirFonts) {
  const auto fonts = [&] { return machine_.handles.OpenObjects()["font"]; };
  const int before = fonts();
  HyperLink link;
  TspButton button;
  link.Create(parent_, {.target = "",
                        .caption_id = kWebAddressId,
                        .place = kPlace,
                        .font = kFont,
                        .format = 0,
                        .normal_color = 0,
                        .hover_color = 0,
                        .pressed_color = 0});
  button.Create(parent_, {.caption_id = kCloseTextId, .place = kPlace, .font = kFont, .id = 2});
  Drawing(link.window());
  Drawing(button.window());
  EXPECT_EQ(fonts(), before + 3);
  link.Release();
  button.Release();
  EXPECT_EQ(fonts(), before);
}

class Button : public Controls {
 protected:
  Button() {
    button_.Create(parent_, {.caption_id = kCloseTextId, .place = kPlace, .font = kFont, .id = 9});
    window_ = button_.window();
    sibling_ = MakeSibling();
    SetFocus(sibling_);
    Look();
  }

  struct Seen {
    bool focus_shows;  // drawn an odd number of times so far
    UINT edge;
    COLORREF color;
    bool operator==(const Seen&) const = default;
  };
  // How the button looks after all that was drawn since the beginning.
  Seen Look() {
    for (const host::DrawingCall& call : Drawing(window_)) {
      if (call.function == "DrawFocusRect") seen_.focus_shows = !seen_.focus_shows;
      if (call.function == "DrawEdge") seen_.edge = call.kind;
      if (call.function == "DrawTextA") seen_.color = call.text_color;
    }
    return seen_;
  }
  static constexpr Seen kNormal = {false, 5, 0};
  static constexpr Seen kFocused = {true, 5, 0};
  static constexpr Seen kPressed = {true, 10, 0x404040};

  TspButton button_;
  HWND window_ = nullptr;
  HWND sibling_ = nullptr;
  Seen seen_ = {};
};

TEST_F(Button, DrawsEdgeFocusAndCaption) {
  EXPECT_EQ(Show(PaintedAnew(window_)), (Lines{"DrawEdge '' 0,0-60,19 5000f 000000",
                                               "DrawTextA 'Close' 0,0-60,19 125 000000"}));
  SetFocus(window_);
  EXPECT_EQ(Show(Drawing(window_)),
            (Lines{"DrawFocusRect '' 3,3-57,16 0 000000", "DrawEdge '' 0,0-60,19 5000f 000000",
                   "DrawTextA 'Close' 0,0-60,19 125 000000"}));
  desktop().KeyDown(VK_SPACE);
  const auto pressed = Drawing(window_);
  EXPECT_EQ(Show(pressed), (Lines{"DrawEdge '' 0,0-60,19 a000f 000000",
                                  "DrawTextA 'Close' 0,0-60,19 125 404040"}));
  EXPECT_EQ(pressed[1].font.lfQuality, 2);
  EXPECT_EQ(pressed[1].font.lfHeight, -11);
}

TEST_F(Button, IsPressedByKeysAndMouse) {
  struct Row {
    const char* what;
    void (*press)(host::Desktop&, HWND);
    void (*release)(host::Desktop&, HWND);
    std::vector<Notice> notices;
  };
  const Row rows[] = {
      {"Space",
       [](host::Desktop& desktop, HWND) { desktop.KeyDown(VK_SPACE); },
       [](host::Desktop& desktop, HWND) { desktop.KeyUp(VK_SPACE); },
       {{WM_COMMAND, 9, VK_SPACE}}},
      {"Enter, held for long",
       [](host::Desktop& desktop, HWND) {
         desktop.KeyDown(VK_RETURN);
         desktop.KeyDown(VK_RETURN);
       },
       [](host::Desktop& desktop, HWND) { desktop.KeyUp(VK_RETURN); },
       {{WM_COMMAND, 9, VK_RETURN}}},
      {"the mouse",
       [](host::Desktop& desktop, HWND button) { desktop.MouseDown(button, 5, 5); },
       [](host::Desktop& desktop, HWND button) { desktop.MouseUp(button, 6, 6); },
       {{WM_COMMAND, 9, 0}}},
      {"the mouse, dragged off",
       [](host::Desktop& desktop, HWND button) {
         desktop.MouseDown(button, 5, 5);
         desktop.MouseMove(button, 8, 8);
       },
       [](host::Desktop& desktop, HWND button) {
         desktop.MouseMove(button, 61, 8);
         desktop.MouseUp(button, 61, 8);
       },
       {{WM_COMMAND, 9, 0}}},
  };
  for (const Row& row : rows) {
    notices.clear();
    SetFocus(window_);
    EXPECT_EQ(Look(), kFocused) << row.what;
    row.press(desktop(), window_);
    EXPECT_EQ(Look(), kPressed) << row.what;
    EXPECT_TRUE(notices.empty()) << row.what;
    row.release(desktop(), window_);
    EXPECT_EQ(Look(), kFocused) << row.what;
    EXPECT_EQ(notices, row.notices) << row.what;
    EXPECT_EQ(desktop().Capture(), nullptr) << row.what;
    SetFocus(sibling_);
    EXPECT_EQ(Look(), kNormal) << row.what;
    InvalidateRect(window_, nullptr, FALSE);
    EXPECT_EQ(Look(), kNormal) << row.what;
  }
}

TEST_F(Button, KeepsItsFocusedLookWhenAnotherWindowComesToTheFront) {
  SetFocus(window_);
  EXPECT_EQ(Look(), kFocused);
  // One that belongs to the parent, as a message box does, and one that stands for itself.
  for (const HWND owner : {parent_, HWND{nullptr}}) {
    const HWND other = CreateWindowExA(0, "Parent", "", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, owner,
                                       nullptr, GetModuleHandleA(nullptr), nullptr);
    SetFocus(other);
    EXPECT_EQ(desktop().Focus(), other);
    EXPECT_EQ(Look(), kFocused);
    SetFocus(window_);
    EXPECT_EQ(Look(), kFocused);
    DestroyWindow(other);
    SetFocus(window_);
  }
}

TEST_F(Controls, ClassesAreRegisteredOnceOnEverySystem) {
  for (const bool has_extended_functions : {true, false}) {
    host::Machine machine;
    const host::UseMachine use(machine);
    if (!has_extended_functions) machine.libraries.RemoveExport("USER32.DLL", "RegisterClassExA");
    const HWND parent = CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 90, 90,
                                        nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    TspButton first, second;
    const TspButtonChoice choice = {
        .caption_id = kCloseTextId, .place = kPlace, .font = kFont, .id = 9};
    EXPECT_TRUE(first.Create(parent, choice));
    EXPECT_TRUE(second.Create(parent, choice));
    EXPECT_EQ(machine.faults.CallCount("RegisterClassExA"), has_extended_functions ? 1u : 0u);
    EXPECT_EQ(machine.faults.CallCount("RegisterClassA"), has_extended_functions ? 0u : 1u);
    EXPECT_EQ(GetDlgCtrlID(first.window()), 9);
    EXPECT_EQ(GetWindowLongPtrA(first.window(), GWL_STYLE), 0x50010000);
    DestroyWindow(parent);
  }
}

class CheckBox : public Controls {
 protected:
  CheckBox() {
    window_ = CreateWindowExA(0, "BUTTON", "&Send", 0x50010503, 10, 50, 120, 15, parent_,
                              reinterpret_cast<HMENU>(5), GetModuleHandleA(nullptr), nullptr);
    sibling_ = MakeSibling();
    check_box_.SetColors(0xFF5A5A5A, 0x0000AA, 0xFF000000);
    EXPECT_TRUE(check_box_.Attach(window_));
    SetFocus(sibling_);
  }

  EmbossedCheckBox check_box_;
  HWND window_ = nullptr;
  HWND sibling_ = nullptr;
};

TEST_F(CheckBox, DrawsItselfEmbossedOrDisabled) {
  EXPECT_EQ(Show(PaintedAnew(window_)), (Lines{"DrawFrameControl '' 0,0-13,15 40000 000000",
                                               "DrawTextA '&Send' 16,0-113,14 20 0000aa",
                                               "DrawTextA '&Send' 17,1-114,15 20 5a5a5a"}));
  check_box_.SetColors(0x5A5A5A, kNoCheckBoxLayer, 0xBB0000);
  EXPECT_EQ(Show(PaintedAnew(window_)), (Lines{"DrawFrameControl '' 0,0-13,15 40000 000000",
                                               "DrawTextA '&Send' 18,2-115,16 20 bb0000",
                                               "DrawTextA '&Send' 17,1-114,15 20 5a5a5a"}));
  check_box_.SetCheck(1);
  Drawing(window_);
  EXPECT_TRUE(check_box_.Enable(false));
  EXPECT_EQ(Show(Drawing(window_)), (Lines{"DrawFrameControl '' 0,0-13,15 40500 000000",
                                           "DrawTextA '&Send' 18,2-115,16 20 ffffff",
                                           "DrawTextA '&Send' 17,1-114,15 20 808080"}));
  EXPECT_FALSE(IsWindowEnabled(window_));
  EXPECT_TRUE(check_box_.Enable(true));
  EXPECT_TRUE(IsWindowEnabled(window_));
}

TEST_F(CheckBox, ShowsTheFocusAroundItsLabel) {
  Drawing(window_);
  const Lines focus = {"DrawFocusRect '' 17,0-114,15 0 000000"};
  SetFocus(window_);
  EXPECT_EQ(Show(Drawing(window_)), focus);
  EXPECT_EQ(Show(PaintedAnew(window_))[1], focus[0]) << "a window that was covered shows it again";
  SetFocus(sibling_);
  EXPECT_EQ(Show(Drawing(window_)), focus) << "the second drawing takes it away";
}

TEST_F(Controls, CheckBoxWithoutAWindowRefuses) {
  EmbossedCheckBox none;
  EXPECT_FALSE(none.Attach(nullptr));
  EXPECT_FALSE(none.Enable(true));
  const HWND window = MakeSibling();
  machine_.faults.FailAlways("SetWindowLongPtrA", ERROR_INVALID_PARAMETER);
  EXPECT_FALSE(none.Attach(window));
}

TEST(CheckBoxLayout, FollowsStyleAndState) {
  struct Row {
    const char* what;
    DWORD style;
    LRESULT state;
    UINT frame;
    RECT box;
    RECT label;
    UINT format;
  };
  const RECT all = {0, 0, 100, 25}, beside = {17, 0, 94, 25}, inside = {2, 2, 98, 23};
  const RECT top = {0, 0, 13, 15}, bottom = {0, 10, 13, 25}, centre = {0, 5, 13, 20};
  const Row rows[] = {
      {"the dialog's", 0x50010503, 0, 0, top, beside, 0x20},
      {"checked", 0x503, 1, 0x400, top, beside, 0x20},
      {"pushed", 0x503, 4, 0x200, top, beside, 0x20},
      {"checked, pushed, with the focus", 0x503, 0xD, 0x600, top, beside, 0x20},
      {"disabled", 0x08000503, 1, 0x500, top, beside, 0x20},
      {"flat", 0x8502, 0, 0x4000, top, beside, 0x20},
      {"bottom right", 0xA03, 0, 0, bottom, beside, 0x2A},
      {"centred", 0xF03, 0, 0, centre, beside, 0x25},
      {"several lines", 0x2503, 0, 0, top, beside, 0x10},
      {"three states, in between", 0x506, 2, 0x408, top, beside, 0x20},
      {"three states, checked", 0x505, 1, 0x400, top, beside, 0x20},
      {"three states, unchecked", 0x505, 0, 0x8, top, beside, 0x20},
      {"radio", 0x504, 1, 0x404, top, beside, 0x20},
      {"automatic radio", 0x509, 0, 0x4, top, beside, 0x20},
      {"push button", 0x500, 0, 0x2010, all, all, 0x20},
      {"default push button, pushed", 0x501, 4, 0x2210, all, all, 0x20},
      {"push-like, checked", 0x1503, 1, 0x200, all, inside, 0x20},
      {"push-like three states, in between", 0x1506, 2, 0x208, all, inside, 0x20},
      // Without an alignment of their own, as the system does it.
      {"check box", 0x3, 0, 0, centre, beside, 0x24},
      {"push button without", 0x0, 0, 0x2010, all, all, 0x25},
  };
  const auto same = [](const RECT& one, const RECT& other) {
    return one.left == other.left && one.top == other.top && one.right == other.right &&
           one.bottom == other.bottom;
  };
  host::Machine machine;
  const host::UseMachine use(machine);
  for (const Row& row : rows) {
    const CheckBoxLayout layout = LayOutCheckBox(row.style, row.state, all);
    EXPECT_EQ(layout.frame_state, row.frame) << row.what;
    EXPECT_TRUE(same(layout.box, row.box)) << row.what;
    EXPECT_TRUE(same(layout.label, row.label)) << row.what;
    EXPECT_EQ(layout.label_format, row.format) << row.what;
    EXPECT_EQ(layout.label_within_frame, (row.style & 0xF) <= 1) << row.what;
  }
}

}  // namespace
}  // namespace hostscope
