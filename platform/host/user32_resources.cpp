// The program's resources and the few of the system.

#include "platform/resources.h"

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

struct StringResource {
  UINT id;
  const char* text;
};

constexpr StringResource kStrings[] = {
#define STRING_ROW(id, text) {id, text},
    HOSTSCOPE_STRINGS(STRING_ROW)
#undef STRING_ROW
};

bool IsNumber(LPCSTR name, int number) {
  return reinterpret_cast<ULONG_PTR>(name) == static_cast<ULONG_PTR>(number);
}

template <typename Handle>
Handle Shared(std::uintptr_t value) {
  if (value == 0) SetLastError(kNoSuchResourceName);
  return reinterpret_cast<Handle>(value);
}

}  // namespace

std::map<int, DialogTemplate> ProgramDialogs() {
  std::vector<DialogItem> items;
#define ITEM_ROW(window_class, text, id, x, y, width, height, style, extended_style) \
  items.push_back({window_class, text, id, x, y, width, height, style, extended_style});
  HOSTSCOPE_DIALOG_ITEMS(ITEM_ROW)
#undef ITEM_ROW
  std::map<int, DialogTemplate> dialogs;
#define DIALOG_ROW(id, x, y, width, height, style, extended_style, caption, face, points) \
  dialogs[id] = {x, y, width, height, style, extended_style, caption, face, points, items};
  HOSTSCOPE_DIALOG(DIALOG_ROW)
#undef DIALOG_ROW
  return dialogs;
}

}  // namespace host

using host::CallFails;

int LoadStringA(HINSTANCE, UINT id, LPSTR text, int size) {
  if (CallFails("LoadStringA")) return 0;
  for (const host::StringResource& row : host::kStrings) {
    if (row.id == id) return host::CopyOut(row.text, text, size);
  }
  host::CopyOut("", text, size);
  SetLastError(host::kNoSuchResourceName);
  return 0;
}

HICON LoadIconA(HINSTANCE instance, LPCSTR name) {
  if (CallFails("LoadIconA")) return nullptr;
  std::uintptr_t icon = 0;
  if (instance == nullptr) {
    if (name == IDI_APPLICATION) icon = host::kSystemApplicationIcon;
  } else if (host::IsNumber(name, HOSTSCOPE_ICON_ID)) {
    icon = host::kProgramIcon;
  }
  return host::Shared<HICON>(icon);
}

HCURSOR LoadCursorA(HINSTANCE instance, LPCSTR name) {
  if (CallFails("LoadCursorA")) return nullptr;
  std::uintptr_t cursor = 0;
  if (instance == nullptr) {
    if (name == IDC_ARROW) cursor = host::kSystemArrow;
  } else if (host::IsNumber(name, HOSTSCOPE_HAND_CURSOR_ID)) {
    cursor = host::kProgramHand;
  }
  return host::Shared<HCURSOR>(cursor);
}

HBITMAP LoadBitmapA(HINSTANCE, LPCSTR name) {
  if (CallFails("LoadBitmapA")) return nullptr;
  if (!host::IsNumber(name, HOSTSCOPE_BACKGROUND_ID)) return host::Shared<HBITMAP>(0);
  // Loading turns a bitmap into one of the screen's own format; its rows are whole 16-bit words.
  host::Machine& machine = host::CurrentMachine();
  const int bits = machine.desktop.bits_per_pixel;
  const int row = (HOSTSCOPE_BACKGROUND_WIDTH * bits + 15) / 16 * 2;
  const BITMAP record = {0,
                         HOSTSCOPE_BACKGROUND_WIDTH,
                         HOSTSCOPE_BACKGROUND_HEIGHT,
                         row,
                         1,
                         static_cast<WORD>(bits),
                         nullptr};
  return reinterpret_cast<HBITMAP>(machine.handles.Open(std::make_shared<host::Bitmap>(record)));
}
