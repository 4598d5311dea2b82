// Windows, messages, dialogs, controls and drawing in windows (USER32), as far as the program uses
// them, with the platform's own names and values. The desktop behind it is platform/host/desktop.h.
//
// Calls on a handle that is not an open window answer as on Windows: 0, FALSE or a null handle,
// with the last error 1400.
#pragma once

#include "platform/host/gdi32.h"
#include "platform/host/user32_text.h"
#include "platform/host/windows_types.h"

using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using DLGPROC = INT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);

struct MSG {
  HWND hwnd;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
  DWORD time;
  POINT pt;
};
using LPMSG = MSG*;

struct WNDCLASSA {
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HICON hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;
  LPCSTR lpszMenuName;
  LPCSTR lpszClassName;
};
using LPWNDCLASSA = WNDCLASSA*;

struct WNDCLASSEXA {
  UINT cbSize;
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HICON hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;
  LPCSTR lpszMenuName;
  LPCSTR lpszClassName;
  HICON hIconSm;
};
using LPWNDCLASSEXA = WNDCLASSEXA*;

struct CREATESTRUCTA {
  LPVOID lpCreateParams;
  HINSTANCE hInstance;
  HMENU hMenu;
  HWND hwndParent;
  int cy;
  int cx;
  int y;
  int x;
  LONG style;
  LPCSTR lpszName;
  LPCSTR lpszClass;
  DWORD dwExStyle;
};
using LPCREATESTRUCTA = CREATESTRUCTA*;

struct PAINTSTRUCT {
  HDC hdc;
  BOOL fErase;
  RECT rcPaint;
  BOOL fRestore;
  BOOL fIncUpdate;
  BYTE rgbReserved[32];
};
using LPPAINTSTRUCT = PAINTSTRUCT*;

// A resource named by its number instead of a text.
inline LPSTR MAKEINTRESOURCEA(ULONG_PTR number) {
  return reinterpret_cast<LPSTR>(static_cast<ULONG_PTR>(static_cast<WORD>(number)));
}
constexpr WPARAM MAKEWPARAM(ULONG_PTR low, ULONG_PTR high) {
  return static_cast<DWORD>(MAKELONG(low, high));
}

#define IDC_ARROW MAKEINTRESOURCEA(32512)
#define IDC_HAND MAKEINTRESOURCEA(32649)
#define IDI_APPLICATION MAKEINTRESOURCEA(32512)

inline constexpr UINT WM_NULL = 0x0000;
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_MOVE = 0x0003;
inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT WM_ACTIVATE = 0x0006;
inline constexpr UINT WM_SETFOCUS = 0x0007;
inline constexpr UINT WM_KILLFOCUS = 0x0008;
inline constexpr UINT WM_ENABLE = 0x000A;
inline constexpr UINT WM_SETREDRAW = 0x000B;
inline constexpr UINT WM_SETTEXT = 0x000C;
inline constexpr UINT WM_GETTEXT = 0x000D;
inline constexpr UINT WM_GETTEXTLENGTH = 0x000E;
inline constexpr UINT WM_PAINT = 0x000F;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_QUIT = 0x0012;
inline constexpr UINT WM_ERASEBKGND = 0x0014;
inline constexpr UINT WM_SHOWWINDOW = 0x0018;
inline constexpr UINT WM_NEXTDLGCTL = 0x0028;
inline constexpr UINT WM_SETFONT = 0x0030;
inline constexpr UINT WM_GETFONT = 0x0031;
inline constexpr UINT WM_NCCREATE = 0x0081;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_GETDLGCODE = 0x0087;
inline constexpr UINT WM_KEYDOWN = 0x0100;
inline constexpr UINT WM_KEYUP = 0x0101;
inline constexpr UINT WM_CHAR = 0x0102;
inline constexpr UINT WM_SYSKEYDOWN = 0x0104;
inline constexpr UINT WM_SYSKEYUP = 0x0105;
inline constexpr UINT WM_SYSCHAR = 0x0106;
inline constexpr UINT WM_INITDIALOG = 0x0110;
inline constexpr UINT WM_COMMAND = 0x0111;
inline constexpr UINT WM_SYSCOMMAND = 0x0112;
inline constexpr UINT WM_CTLCOLORLISTBOX = 0x0134;
inline constexpr UINT WM_CTLCOLORBTN = 0x0135;
inline constexpr UINT WM_CTLCOLORDLG = 0x0136;
inline constexpr UINT WM_CTLCOLORSTATIC = 0x0138;
inline constexpr UINT WM_MOUSEMOVE = 0x0200;
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_LBUTTONUP = 0x0202;
inline constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
inline constexpr UINT WM_CAPTURECHANGED = 0x0215;
inline constexpr UINT WM_USER = 0x0400;
inline constexpr UINT DM_GETDEFID = WM_USER + 0;
inline constexpr UINT DM_SETDEFID = WM_USER + 1;
inline constexpr WORD DC_HASDEFID = 0x534B;

inline constexpr UINT LB_ADDSTRING = 0x0180;
inline constexpr UINT LB_DELETESTRING = 0x0182;
inline constexpr UINT LB_SETCURSEL = 0x0186;
inline constexpr UINT LB_GETCURSEL = 0x0188;
inline constexpr UINT LB_GETCOUNT = 0x018B;
inline constexpr UINT LB_GETTOPINDEX = 0x018E;
inline constexpr UINT LB_SETTOPINDEX = 0x0197;
inline constexpr UINT LB_GETITEMHEIGHT = 0x01A1;
inline constexpr LRESULT LB_OKAY = 0;
inline constexpr LRESULT LB_ERR = -1;
inline constexpr LRESULT LB_ERRSPACE = -2;
inline constexpr DWORD LBS_NOTIFY = 0x0001;
inline constexpr DWORD LBS_NOINTEGRALHEIGHT = 0x0100;
inline constexpr DWORD LBS_NOSEL = 0x4000;

inline constexpr UINT BM_GETCHECK = 0x00F0;
inline constexpr UINT BM_SETCHECK = 0x00F1;
inline constexpr UINT BM_GETSTATE = 0x00F2;
inline constexpr UINT BM_SETSTATE = 0x00F3;
inline constexpr UINT BM_SETSTYLE = 0x00F4;
inline constexpr UINT BM_CLICK = 0x00F5;
inline constexpr WPARAM BST_UNCHECKED = 0;
inline constexpr WPARAM BST_CHECKED = 1;
inline constexpr WPARAM BST_INDETERMINATE = 2;
inline constexpr WPARAM BST_PUSHED = 4;
inline constexpr WPARAM BST_FOCUS = 8;
inline constexpr UINT BN_CLICKED = 0;
inline constexpr DWORD BS_PUSHBUTTON = 0x0;
inline constexpr DWORD BS_DEFPUSHBUTTON = 0x1;
inline constexpr DWORD BS_CHECKBOX = 0x2;
inline constexpr DWORD BS_AUTOCHECKBOX = 0x3;
inline constexpr DWORD BS_RADIOBUTTON = 0x4;
inline constexpr DWORD BS_3STATE = 0x5;
inline constexpr DWORD BS_AUTO3STATE = 0x6;
inline constexpr DWORD BS_GROUPBOX = 0x7;
inline constexpr DWORD BS_AUTORADIOBUTTON = 0x9;
inline constexpr DWORD BS_TYPEMASK = 0xF;
inline constexpr DWORD BS_LEFT = 0x100;
inline constexpr DWORD BS_RIGHT = 0x200;
inline constexpr DWORD BS_CENTER = 0x300;
inline constexpr DWORD BS_TOP = 0x400;
inline constexpr DWORD BS_BOTTOM = 0x800;
inline constexpr DWORD BS_VCENTER = 0xC00;
inline constexpr DWORD BS_PUSHLIKE = 0x1000;
inline constexpr DWORD BS_MULTILINE = 0x2000;
inline constexpr DWORD BS_NOTIFY = 0x4000;
inline constexpr DWORD BS_FLAT = 0x8000;

inline constexpr DWORD WS_OVERLAPPED = 0x00000000;
inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_CHILD = 0x40000000;
inline constexpr DWORD WS_MINIMIZE = 0x20000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_DISABLED = 0x08000000;
inline constexpr DWORD WS_CLIPSIBLINGS = 0x04000000;
inline constexpr DWORD WS_CLIPCHILDREN = 0x02000000;
inline constexpr DWORD WS_CAPTION = 0x00C00000;
inline constexpr DWORD WS_BORDER = 0x00800000;
inline constexpr DWORD WS_DLGFRAME = 0x00400000;
inline constexpr DWORD WS_VSCROLL = 0x00200000;
inline constexpr DWORD WS_SYSMENU = 0x00080000;
inline constexpr DWORD WS_THICKFRAME = 0x00040000;
inline constexpr DWORD WS_GROUP = 0x00020000;
inline constexpr DWORD WS_MINIMIZEBOX = 0x00020000;
inline constexpr DWORD WS_TABSTOP = 0x00010000;
inline constexpr DWORD WS_EX_CLIENTEDGE = 0x00000200;
inline constexpr DWORD WS_EX_CONTROLPARENT = 0x00010000;
inline constexpr DWORD DS_3DLOOK = 0x0004;
inline constexpr DWORD DS_SETFONT = 0x0040;
inline constexpr DWORD DS_MODALFRAME = 0x0080;
inline constexpr int CW_USEDEFAULT = static_cast<int>(0x80000000);

inline constexpr UINT DLGC_WANTARROWS = 0x0001;
inline constexpr UINT DLGC_WANTTAB = 0x0002;
inline constexpr UINT DLGC_WANTALLKEYS = 0x0004;
inline constexpr UINT DLGC_WANTMESSAGE = 0x0004;
inline constexpr UINT DLGC_HASSETSEL = 0x0008;
inline constexpr UINT DLGC_DEFPUSHBUTTON = 0x0010;
inline constexpr UINT DLGC_UNDEFPUSHBUTTON = 0x0020;
inline constexpr UINT DLGC_RADIOBUTTON = 0x0040;
inline constexpr UINT DLGC_WANTCHARS = 0x0080;
inline constexpr UINT DLGC_STATIC = 0x0100;
inline constexpr UINT DLGC_BUTTON = 0x2000;

inline constexpr int GWL_STYLE = -16;
inline constexpr int GWL_EXSTYLE = -20;
inline constexpr int GWL_ID = -12;
inline constexpr int GWLP_WNDPROC = -4;
inline constexpr int GWLP_HINSTANCE = -6;
inline constexpr int GWLP_ID = -12;
inline constexpr int GWLP_USERDATA = -21;
inline constexpr int DWLP_MSGRESULT = 0;
inline constexpr int DWLP_DLGPROC = static_cast<int>(sizeof(LRESULT));
inline constexpr int DWLP_USER = static_cast<int>(2 * sizeof(LRESULT));
inline constexpr int GCLP_HBRBACKGROUND = -10;
inline constexpr int GCLP_HCURSOR = -12;
inline constexpr int GCLP_HICON = -14;
inline constexpr int GCLP_HMODULE = -16;
inline constexpr int GCLP_WNDPROC = -24;
inline constexpr int GCLP_HICONSM = -34;

inline constexpr WPARAM VK_CANCEL = 0x03;
inline constexpr WPARAM VK_BACK = 0x08;
inline constexpr WPARAM VK_TAB = 0x09;
inline constexpr WPARAM VK_RETURN = 0x0D;
inline constexpr WPARAM VK_SHIFT = 0x10;
inline constexpr WPARAM VK_CONTROL = 0x11;
inline constexpr WPARAM VK_MENU = 0x12;
inline constexpr WPARAM VK_ESCAPE = 0x1B;
inline constexpr WPARAM VK_SPACE = 0x20;
inline constexpr WPARAM VK_PRIOR = 0x21;
inline constexpr WPARAM VK_NEXT = 0x22;
inline constexpr WPARAM VK_END = 0x23;
inline constexpr WPARAM VK_HOME = 0x24;
inline constexpr WPARAM VK_LEFT = 0x25;
inline constexpr WPARAM VK_UP = 0x26;
inline constexpr WPARAM VK_RIGHT = 0x27;
inline constexpr WPARAM VK_DOWN = 0x28;
inline constexpr WPARAM VK_DELETE = 0x2E;
inline constexpr WPARAM MK_LBUTTON = 0x0001;
inline constexpr UINT PM_REMOVE = 0x0001;
inline constexpr WPARAM SC_CLOSE = 0xF060;
inline constexpr WPARAM WA_INACTIVE = 0;
inline constexpr WPARAM WA_ACTIVE = 1;

inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDABORT = 3;
inline constexpr int IDRETRY = 4;
inline constexpr int IDIGNORE = 5;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;
inline constexpr UINT MB_OK = 0x00;
inline constexpr UINT MB_OKCANCEL = 0x01;
inline constexpr UINT MB_ABORTRETRYIGNORE = 0x02;
inline constexpr UINT MB_YESNOCANCEL = 0x03;
inline constexpr UINT MB_YESNO = 0x04;
inline constexpr UINT MB_RETRYCANCEL = 0x05;
inline constexpr UINT MB_TYPEMASK = 0x0F;
inline constexpr UINT MB_ICONEXCLAMATION = 0x30;
inline constexpr UINT MB_ICONINFORMATION = 0x40;
inline constexpr UINT MB_ICONMASK = 0xF0;
inline constexpr UINT MB_DEFBUTTON2 = 0x100;
inline constexpr UINT MB_DEFMASK = 0xF00;

inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOWNORMAL = 1;
inline constexpr int SW_SHOWMAXIMIZED = 3;
inline constexpr int SW_MAXIMIZE = 3;
inline constexpr int SW_SHOW = 5;

inline constexpr int SM_CXSCREEN = 0;
inline constexpr int SM_CYSCREEN = 1;
inline constexpr int SM_CYCAPTION = 4;
inline constexpr int SM_CXBORDER = 5;
inline constexpr int SM_CYBORDER = 6;
inline constexpr int SM_CXDLGFRAME = 7;
inline constexpr int SM_CYDLGFRAME = 8;
inline constexpr int SM_CXICON = 11;
inline constexpr int SM_CYICON = 12;
inline constexpr int SM_CXEDGE = 45;
inline constexpr int SM_CYEDGE = 46;

inline constexpr int COLOR_WINDOW = 5;
inline constexpr int COLOR_WINDOWTEXT = 8;
inline constexpr int COLOR_BTNFACE = 15;
inline constexpr int COLOR_GRAYTEXT = 17;
inline constexpr int COLOR_BTNTEXT = 18;
inline constexpr int COLOR_BTNHIGHLIGHT = 20;

inline constexpr UINT DT_TOP = 0x00;
inline constexpr UINT DT_LEFT = 0x00;
inline constexpr UINT DT_CENTER = 0x01;
inline constexpr UINT DT_RIGHT = 0x02;
inline constexpr UINT DT_VCENTER = 0x04;
inline constexpr UINT DT_BOTTOM = 0x08;
inline constexpr UINT DT_WORDBREAK = 0x10;
inline constexpr UINT DT_SINGLELINE = 0x20;
inline constexpr UINT DT_NOCLIP = 0x100;

inline constexpr UINT BDR_RAISEDOUTER = 0x1;
inline constexpr UINT BDR_SUNKENOUTER = 0x2;
inline constexpr UINT BDR_RAISEDINNER = 0x4;
inline constexpr UINT BDR_SUNKENINNER = 0x8;
inline constexpr UINT EDGE_RAISED = BDR_RAISEDOUTER | BDR_RAISEDINNER;
inline constexpr UINT EDGE_SUNKEN = BDR_SUNKENOUTER | BDR_SUNKENINNER;
inline constexpr UINT BF_LEFT = 0x1;
inline constexpr UINT BF_TOP = 0x2;
inline constexpr UINT BF_RIGHT = 0x4;
inline constexpr UINT BF_BOTTOM = 0x8;
inline constexpr UINT BF_RECT = BF_LEFT | BF_TOP | BF_RIGHT | BF_BOTTOM;
inline constexpr UINT BF_ADJUST = 0x2000;

inline constexpr UINT DFC_BUTTON = 4;
inline constexpr UINT DFCS_BUTTONCHECK = 0x0000;
inline constexpr UINT DFCS_BUTTONRADIO = 0x0004;
inline constexpr UINT DFCS_BUTTON3STATE = 0x0008;
inline constexpr UINT DFCS_BUTTONPUSH = 0x0010;
inline constexpr UINT DFCS_INACTIVE = 0x0100;
inline constexpr UINT DFCS_PUSHED = 0x0200;
inline constexpr UINT DFCS_CHECKED = 0x0400;
inline constexpr UINT DFCS_ADJUSTRECT = 0x2000;
inline constexpr UINT DFCS_FLAT = 0x4000;

// Classes
ATOM WINAPI RegisterClassA(const WNDCLASSA* window_class);
ATOM WINAPI RegisterClassExA(const WNDCLASSEXA* window_class);
BOOL WINAPI GetClassInfoA(HINSTANCE instance, LPCSTR name, LPWNDCLASSA window_class);
BOOL WINAPI GetClassInfoExA(HINSTANCE instance, LPCSTR name, LPWNDCLASSEXA window_class);
ULONG_PTR WINAPI GetClassLongPtrA(HWND window, int index);
ULONG_PTR WINAPI SetClassLongPtrA(HWND window, int index, LONG_PTR value);

// Windows
HWND WINAPI CreateWindowExA(DWORD extended_style, LPCSTR class_name, LPCSTR title, DWORD style,
                            int x, int y, int width, int height, HWND parent, HMENU menu_or_id,
                            HINSTANCE instance, LPVOID creation_data);
BOOL WINAPI DestroyWindow(HWND window);
BOOL WINAPI IsWindow(HWND window);
BOOL WINAPI IsWindowEnabled(HWND window);
BOOL WINAPI EnableWindow(HWND window, BOOL enable);
BOOL WINAPI ShowWindow(HWND window, int command);
BOOL WINAPI MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
BOOL WINAPI GetClientRect(HWND window, LPRECT rectangle);
BOOL WINAPI GetWindowRect(HWND window, LPRECT rectangle);
HWND WINAPI GetParent(HWND window);
BOOL WINAPI IsChild(HWND parent, HWND window);
LONG_PTR WINAPI GetWindowLongPtrA(HWND window, int index);
LONG_PTR WINAPI SetWindowLongPtrA(HWND window, int index, LONG_PTR value);
int WINAPI GetWindowTextA(HWND window, LPSTR text, int size);
BOOL WINAPI SetWindowTextA(HWND window, LPCSTR text);

// Messages
LRESULT WINAPI DefWindowProcA(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT WINAPI CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wparam,
                               LPARAM lparam);
LRESULT WINAPI SendMessageA(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
BOOL WINAPI PostMessageA(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
BOOL WINAPI GetMessageA(LPMSG message, HWND window, UINT first, UINT last);
BOOL WINAPI PeekMessageA(LPMSG message, HWND window, UINT first, UINT last, UINT options);
BOOL WINAPI TranslateMessage(const MSG* message);
LRESULT WINAPI DispatchMessageA(const MSG* message);

// Focus, capture, keyboard
HWND WINAPI SetFocus(HWND window);
HWND WINAPI GetFocus();
HWND WINAPI SetCapture(HWND window);
HWND WINAPI GetCapture();
BOOL WINAPI ReleaseCapture();

// Dialogs and message boxes
INT_PTR WINAPI DialogBoxParamA(HINSTANCE instance, LPCSTR dialog, HWND owner, DLGPROC procedure,
                               LPARAM parameter);
BOOL WINAPI EndDialog(HWND dialog, INT_PTR result);
HWND WINAPI GetDlgItem(HWND dialog, int id);
int WINAPI GetDlgCtrlID(HWND window);
LRESULT WINAPI SendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wparam, LPARAM lparam);
int WINAPI MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT style);

// Painting
BOOL WINAPI InvalidateRect(HWND window, const RECT* rectangle, BOOL erase);
BOOL WINAPI UpdateWindow(HWND window);
BOOL WINAPI GetUpdateRect(HWND window, LPRECT rectangle, BOOL erase);
HDC WINAPI BeginPaint(HWND window, LPPAINTSTRUCT paint);
BOOL WINAPI EndPaint(HWND window, const PAINTSTRUCT* paint);
HDC WINAPI GetDC(HWND window);
// Of the whole window. The desktop's own window is known to this function alone.
HDC WINAPI GetWindowDC(HWND window);
HWND WINAPI GetDesktopWindow();
int WINAPI ReleaseDC(HWND window, HDC dc);
int WINAPI DrawTextA(HDC dc, LPCSTR text, int length, LPRECT rectangle, UINT format);
BOOL WINAPI DrawEdge(HDC dc, LPRECT rectangle, UINT edge, UINT flags);
BOOL WINAPI DrawFrameControl(HDC dc, LPRECT rectangle, UINT kind, UINT state);
BOOL WINAPI DrawFocusRect(HDC dc, const RECT* rectangle);
int WINAPI FillRect(HDC dc, const RECT* rectangle, HBRUSH brush);
DWORD WINAPI GetSysColor(int index);
int WINAPI GetSystemMetrics(int index);
// Bound at run time. The modes of the current display (a null device), counted from 0; the numbers
// that stand for the current mode are not known.
BOOL WINAPI EnumDisplaySettingsA(LPCSTR device, DWORD index, LPDEVMODEA mode);

BOOL WINAPI OffsetRect(LPRECT rectangle, int x, int y);
BOOL WINAPI InflateRect(LPRECT rectangle, int x, int y);
BOOL WINAPI PtInRect(const RECT* rectangle, POINT point);

// Resources: the program's own, from platform/resources.h, whatever instance is given; the icons
// and cursors of the system with a null instance.
int WINAPI LoadStringA(HINSTANCE instance, UINT id, LPSTR text, int size);
HICON WINAPI LoadIconA(HINSTANCE instance, LPCSTR name);
HCURSOR WINAPI LoadCursorA(HINSTANCE instance, LPCSTR name);
HBITMAP WINAPI LoadBitmapA(HINSTANCE instance, LPCSTR name);
