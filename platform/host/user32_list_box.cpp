// The list box: lines that are not sorted, a single selection, no scroll bar.

#include <algorithm>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

// What the functions below work on: the list box of a window with the desktop locked.
struct Access {
  LockedDesktop desktop;
  WindowPointer window;
  ListBox* list = nullptr;

  explicit Access(HWND handle) : window(desktop->Find(handle)) {
    if (window) list = window->As<ListBox>();
  }
  int Count() const { return static_cast<int>(list->lines.size()); }
  bool Holds(LRESULT index) const { return index >= 0 && index < Count(); }
  int ItemHeight() const { return LineHeight(FontRecord(window->font)); }
  int PageLines() const {
    return std::max<int>(1, desktop->ClientRectangle(*window).bottom / ItemHeight());
  }
  void ScrollTo(int line) { list->top = std::clamp(line, 0, std::max(0, Count() - PageLines())); }
  void Changed() {
    if (list->redraw) desktop->Invalidate(*window, nullptr, true, false);
    desktop->Changed();
  }
};

void TellListener(HWND list, bool added, const std::string& text) {
  std::function<void(const ListChange&)> listener;
  {
    const LockedDesktop desktop;
    listener = desktop->list_listener;
  }
  if (listener) listener({list, added, text});
}

LRESULT Add(HWND handle, LPCSTR text) {
  const std::string line = text != nullptr ? text : "";
  int place = 0;
  {
    Access access(handle);
    place = access.Count();
    access.list->lines.push_back(line);
    access.Changed();
  }
  TellListener(handle, true, line);
  return place;
}

LRESULT Delete(HWND handle, LRESULT index) {
  std::string line;
  LRESULT left = 0;
  {
    Access access(handle);
    if (!access.Holds(index)) return LB_ERR;
    ListBox& list = *access.list;
    const auto place = list.lines.begin() + index;
    line = std::move(*place);
    list.lines.erase(place);
    if (list.current == index) {
      list.current = -1;
    } else if (list.current > index) {
      --list.current;
    }
    access.ScrollTo(list.top);
    access.Changed();
    left = access.Count();
  }
  if (left == index) TellListener(handle, false, line);
  return left;
}

LRESULT Select(HWND handle, LRESULT index) {
  Access access(handle);
  if (index != -1 && !access.Holds(index)) return LB_ERR;
  ListBox& list = *access.list;
  list.current = static_cast<int>(index);
  if (index == -1) {
    access.Changed();
    return LB_ERR;
  }
  const int page = access.PageLines();
  if (list.current < list.top) access.ScrollTo(list.current);
  if (list.current >= list.top + page) access.ScrollTo(list.current - page + 1);
  access.Changed();
  return list.current;
}

LRESULT SetTop(HWND handle, LRESULT index) {
  Access access(handle);
  if (!access.Holds(index)) return LB_ERR;
  access.ScrollTo(static_cast<int>(index));
  access.Changed();
  return LB_OKAY;
}

LRESULT Ask(HWND handle, UINT message) {
  const Access access(handle);
  switch (message) {
    case LB_GETCURSEL:
      return access.list->current;
    case LB_GETTOPINDEX:
      return access.list->top;
    case LB_GETITEMHEIGHT:
      return access.ItemHeight();
    default:
      return access.Count();
  }
}

struct ListMessage {
  UINT number;
  const char* name;
  LRESULT failure;
};

// A test can make the list refuse a message as it makes a function fail.
constexpr ListMessage kListMessages[] = {
    {LB_ADDSTRING, "LB_ADDSTRING", LB_ERRSPACE}, {LB_DELETESTRING, "LB_DELETESTRING", LB_ERR},
    {LB_SETCURSEL, "LB_SETCURSEL", LB_ERR},      {LB_SETTOPINDEX, "LB_SETTOPINDEX", LB_ERR},
    {LB_GETCURSEL, "LB_GETCURSEL", LB_ERR},      {LB_GETCOUNT, "LB_GETCOUNT", LB_ERR},
    {LB_GETTOPINDEX, "LB_GETTOPINDEX", 0},       {LB_GETITEMHEIGHT, "LB_GETITEMHEIGHT", LB_ERR},
};

LRESULT CarryOut(const ListMessage& message, HWND handle, WPARAM wparam, LPARAM lparam) {
  if (CallFails(message.name)) return message.failure;
  const LRESULT index = static_cast<LONG>(wparam);
  switch (message.number) {
    case LB_ADDSTRING:
      return Add(handle, reinterpret_cast<LPCSTR>(lparam));
    case LB_DELETESTRING:
      return Delete(handle, index);
    case LB_SETCURSEL:
      return Select(handle, index);
    case LB_SETTOPINDEX:
      return SetTop(handle, index);
    default:
      return Ask(handle, message.number);
  }
}

struct VisibleLine {
  std::string text;
  RECT rectangle;
};

std::vector<VisibleLine> VisibleLines(HWND handle, RECT& client) {
  const Access access(handle);
  client = access.desktop->ClientRectangle(*access.window);
  const int height = access.ItemHeight();
  std::vector<VisibleLine> lines;
  for (int line = access.list->top; line < access.Count(); ++line) {
    const int y = (line - access.list->top) * height;
    if (y >= client.bottom) break;
    lines.push_back(
        {access.list->lines[static_cast<std::size_t>(line)], {0, y, client.right, y + height}});
  }
  return lines;
}

void Paint(HWND handle) {
  PAINTSTRUCT paint = {};
  const HDC dc = StartPainting(handle, paint);
  if (dc == nullptr) return;
  const HBRUSH brush = AskForColors(WM_CTLCOLORLISTBOX, handle, dc);
  HFONT font = nullptr;
  {
    const Access access(handle);
    font = access.window->font;
  }
  if (font != nullptr) SelectInto(dc, font);
  RECT client = {};
  const std::vector<VisibleLine> lines = VisibleLines(handle, client);
  Fill(dc, client, brush);
  for (const VisibleLine& line : lines)
    DrawLine(dc, line.text, line.rectangle, DT_SINGLELINE);
  FinishPainting(paint);
}

void MoveByKey(HWND handle, WPARAM key) {
  int target = 0;
  {
    const Access access(handle);
    const int last = access.Count() - 1;
    const int page = access.PageLines();
    const int current = access.list->current;
    switch (key) {
      case VK_UP:
        target = current - 1;
        break;
      case VK_DOWN:
        target = current + 1;
        break;
      case VK_PRIOR:
        target = current - page + 1;
        break;
      case VK_NEXT:
        target = current + page - 1;
        break;
      case VK_HOME:
        target = 0;
        break;
      case VK_END:
        target = last;
        break;
      default:
        return;
    }
    target = std::clamp(target, 0, std::max(0, last));
  }
  Select(handle, target);
}

void SelectAt(HWND handle, int y) {
  int line = 0;
  {
    const Access access(handle);
    line = access.list->top + y / access.ItemHeight();
    if (!access.Holds(line) || access.window->Has(LBS_NOSEL)) return;
  }
  Select(handle, line);
}

LRESULT StoreFont(HWND handle, WPARAM font, bool redraw) {
  const Access access(handle);
  access.window->font = reinterpret_cast<HFONT>(font);
  if (redraw) access.desktop->Invalidate(*access.window, nullptr, true, false);
  return 0;
}

}  // namespace

LRESULT ListBoxProcedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message != WM_NCCREATE && Access(handle).list == nullptr) return 0;
  const auto* list_message =
      std::find_if(std::begin(kListMessages), std::end(kListMessages),
                   [message](const ListMessage& row) { return row.number == message; });
  if (list_message != std::end(kListMessages)) {
    return CarryOut(*list_message, handle, wparam, lparam);
  }
  switch (message) {
    case WM_NCCREATE: {
      const LockedDesktop desktop;
      desktop->Find(handle)->data = std::make_unique<ListBox>();
      return TRUE;
    }
    case WM_GETDLGCODE:
      return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_SETFONT:
      return StoreFont(handle, wparam, LOWORD(static_cast<ULONG_PTR>(lparam)) != 0);
    case WM_GETFONT:
      return reinterpret_cast<LRESULT>(Access(handle).window->font);
    case WM_SETREDRAW:
      Access(handle).list->redraw = wparam != 0;
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT:
      Paint(handle);
      return 0;
    case WM_KEYDOWN:
      MoveByKey(handle, wparam);
      return 0;
    case WM_LBUTTONDOWN:
      MoveFocus(handle);
      SelectAt(handle, static_cast<SHORT>(HIWORD(static_cast<ULONG_PTR>(lparam))));
      return 0;
    default:
      return DefaultProcedure(handle, message, wparam, lparam);
  }
}

}  // namespace host
