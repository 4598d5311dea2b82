// The program's resources, stated once: the resource script (platform/windows/hscope.rc) compiles
// them into the exe, and the program and the host layer read the same numbers and texts. The
// resource compiler knows neither number suffixes nor C++, so the tables are macros over plain
// numbers, and every style is written as its value.
#pragma once

#define HOSTSCOPE_PROGRESS_DIALOG_ID 101
#define HOSTSCOPE_PROGRESS_LIST_ID 102
#define HOSTSCOPE_EMAIL_CHECK_BOX_ID 1002
#define HOSTSCOPE_CLOSE_BUTTON_ID 2  // no template item: the dialog creates the button itself
#define HOSTSCOPE_ICON_ID 101
#define HOSTSCOPE_BACKGROUND_ID 101
#define HOSTSCOPE_HAND_CURSOR_ID 32649  // the number behind IDC_HAND, which names it in the code

#define HOSTSCOPE_WEB_ADDRESS_ID 1
#define HOSTSCOPE_CLOSE_TEXT_ID 2
#define HOSTSCOPE_CAPTION_ID 3

// STRING(id, text)
#define HOSTSCOPE_STRINGS(STRING)                           \
  STRING(HOSTSCOPE_WEB_ADDRESS_ID, "http://hostscope.test") \
  STRING(HOSTSCOPE_CLOSE_TEXT_ID, "Close")                  \
  STRING(HOSTSCOPE_CAPTION_ID, "Hostscope v.0.93b")

// DIALOG_ROW(id, x, y, width, height, style, extended style, caption, font face, font points)
// Style: popup, caption, system menu, minimise box, 3-D look, font given. Extended: control parent.
// Positions and sizes of the dialog and of its items are dialog units.
#define HOSTSCOPE_DIALOG(DIALOG_ROW)                                                         \
  DIALOG_ROW(HOSTSCOPE_PROGRESS_DIALOG_ID, 0, 0, 158, 164, 0x80CA0044, 0x10000, "Hostscope", \
             "MS Sans Serif", 8)

// ITEM(class, text, id, x, y, width, height, style, extended style)
// Progress list: child, visible, tab stop, no selection highlight, no integral height; sunken
// client edge. Check box: child, visible, tab stop, automatic check box, text left and top.
#define HOSTSCOPE_DIALOG_ITEMS(ITEM)                                                     \
  ITEM("LISTBOX", "", HOSTSCOPE_PROGRESS_LIST_ID, 4, 36, 150, 111, 0x50014100, 0x200)    \
  ITEM("BUTTON", "&Send e-mail after exit", HOSTSCOPE_EMAIL_CHECK_BOX_ID, 4, 152, 84, 9, \
       0x50010503, 0)

// The background tile, in pixels.
#define HOSTSCOPE_BACKGROUND_WIDTH 64
#define HOSTSCOPE_BACKGROUND_HEIGHT 64

// Version record of the exe. NUMBER(major, minor, revision, build); VALUE(name, text)
#define HOSTSCOPE_VERSION_NUMBER(NUMBER) NUMBER(0, 9, 3, 0)
#define HOSTSCOPE_VERSION_VALUES(VALUE)                                         \
  VALUE("CompanyName", "The Hostscope developers")                              \
  VALUE("FileDescription", "Writes a text report about the machine it runs on") \
  VALUE("FileVersion", "0.9.3.0")                                               \
  VALUE("InternalName", "Hostscope")                                            \
  VALUE("LegalCopyright", "Copyright by the Hostscope developers")              \
  VALUE("OriginalFilename", "hscope.exe")                                       \
  VALUE("ProductName", "Hostscope Utility")                                     \
  VALUE("ProductVersion", "0.93b")

#ifndef RC_INVOKED

namespace hostscope {

inline constexpr int kProgressDialogId = HOSTSCOPE_PROGRESS_DIALOG_ID;
inline constexpr int kProgressListId = HOSTSCOPE_PROGRESS_LIST_ID;
inline constexpr int kEmailCheckBoxId = HOSTSCOPE_EMAIL_CHECK_BOX_ID;
inline constexpr int kCloseButtonId = HOSTSCOPE_CLOSE_BUTTON_ID;
inline constexpr int kIconId = HOSTSCOPE_ICON_ID;
inline constexpr int kBackgroundId = HOSTSCOPE_BACKGROUND_ID;
inline constexpr int kHandCursorId = HOSTSCOPE_HAND_CURSOR_ID;
inline constexpr int kWebAddressId = HOSTSCOPE_WEB_ADDRESS_ID;
inline constexpr int kCloseTextId = HOSTSCOPE_CLOSE_TEXT_ID;
inline constexpr int kCaptionId = HOSTSCOPE_CAPTION_ID;
inline constexpr int kBackgroundWidth = HOSTSCOPE_BACKGROUND_WIDTH;
inline constexpr int kBackgroundHeight = HOSTSCOPE_BACKGROUND_HEIGHT;

}  // namespace hostscope

#endif
