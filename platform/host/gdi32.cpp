#include "platform/host/gdi32.h"

#include <cstring>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/libraries.h"
#include "platform/host/machine.h"

namespace host {
namespace {

const LayerLibrary kLibrary({.name = "GDI32.DLL", .loaded_at_start = true});

constexpr std::size_t kKeptDrawingCalls = 4096;
constexpr int kStockObjectCount = 20;

std::uintptr_t ValueOf(const void* handle) {
  return reinterpret_cast<std::uintptr_t>(handle);
}

template <typename Kind>
std::shared_ptr<Kind> Find(const void* handle) {
  return CurrentMachine().handles.FindAs<Kind>(ValueOf(handle));
}

int StockIndex(HGDIOBJ object) {
  const std::uintptr_t value = ValueOf(object);
  const bool stock = value >= kStockObjects && value < kStockObjects + kStockObjectCount;
  return stock ? static_cast<int>(value - kStockObjects) : -1;
}

bool IsStockFont(int index) {
  return index >= 10 && index <= 17 && index != 15;
}
bool IsStockBrush(int index) {
  return index >= WHITE_BRUSH && index <= NULL_BRUSH;
}

bool IsFont(HGDIOBJ object) {
  return IsStockFont(StockIndex(object)) || Find<Font>(object) != nullptr;
}

bool IsBrush(HGDIOBJ object) {
  const std::uintptr_t value = ValueOf(object);
  return IsStockBrush(StockIndex(object)) ||
         (value >= kSystemColorBrushes && value <= kSystemColorBrushes + kHighestBackgroundColor);
}

LOGFONTA SystemFontRecord() {
  LOGFONTA record = {};
  record.lfHeight = CurrentMachine().display.system_font_height;
  record.lfWeight = FW_BOLD;
  CopyOut("System", record.lfFaceName, LF_FACESIZE);
  return record;
}

// Fonts and bitmaps know how many device contexts hold them.
void CountSelected(HGDIOBJ object, int change) {
  if (const auto font = Find<Font>(object)) font->selected += change;
  if (const auto bitmap = Find<Bitmap>(object)) bitmap->selected += change;
}

bool IsSelected(HGDIOBJ object) {
  const auto font = Find<Font>(object);
  const auto bitmap = Find<Bitmap>(object);
  return (font && font->selected > 0) || (bitmap && bitmap->selected > 0);
}

HGDIOBJ* PlaceFor(DeviceContext& dc, HGDIOBJ object) {
  if (IsFont(object)) return &dc.font;
  if (IsBrush(object)) return &dc.brush;
  const auto bitmap = Find<Bitmap>(object);
  // A bitmap goes into one memory device at a time; the one that a memory device is made with is
  // the number 1, which stands for no object of the table.
  const bool fits = bitmap ? bitmap->selected == 0 : ValueOf(object) == 1;
  return fits && dc.memory ? &dc.bitmap : nullptr;
}

template <typename Record>
int CopyRecord(const Record& record, int size, LPVOID buffer) {
  if (buffer == nullptr) return sizeof(Record);
  if (size < static_cast<int>(sizeof(Record))) return 0;
  std::memcpy(buffer, &record, sizeof(Record));
  return sizeof(Record);
}

template <typename Value>
Value Replace(HDC dc, Value DeviceContext::*member, Value value, Value failure) {
  const auto found = FindDc(dc);
  if (found) return std::exchange((*found).*member, value);
  SetLastError(ERROR_INVALID_HANDLE);
  return failure;
}

}  // namespace

std::shared_ptr<DeviceContext> FindDc(HDC dc) {
  return Find<DeviceContext>(dc);
}

HDC OpenDc(HWND window) {
  auto dc = std::make_shared<DeviceContext>(window);
  dc->font = StockObject(SYSTEM_FONT);
  dc->brush = StockObject(WHITE_BRUSH);
  return reinterpret_cast<HDC>(CurrentMachine().handles.Open(dc));
}

bool CloseDc(HDC dc) {
  const auto found = FindDc(dc);
  if (!found) return false;
  CountSelected(found->font, -1);
  CountSelected(found->bitmap, -1);
  return CurrentMachine().handles.Close(ValueOf(dc));
}

HFONT OpenFont(const LOGFONTA& record, const char* kind) {
  return reinterpret_cast<HFONT>(
      CurrentMachine().handles.Open(std::make_shared<Font>(record, kind)));
}

LOGFONTA FontRecord(HGDIOBJ font) {
  const auto found = Find<Font>(font);
  return found ? found->record : SystemFontRecord();
}

int LineHeight(const LOGFONTA& font) {
  if (font.lfHeight >= 0) return font.lfHeight != 0 ? font.lfHeight : 16;
  // A negative height is that of the letters without the space above accents, which is part of the
  // letters' own height in the fixed-pitch console face.
  const int letters = -font.lfHeight;
  return EqualNoCase(font.lfFaceName, "Lucida Console") ? letters : (letters * 6 + 3) / 5;
}

std::optional<COLORREF> BrushColor(HBRUSH brush) {
  const std::uintptr_t value = ValueOf(brush);
  if (value >= 1 && value <= kHighestBackgroundColor) {
    return SystemColor(static_cast<int>(value) - 1);
  }
  if (value >= kSystemColorBrushes && value <= kSystemColorBrushes + kHighestBackgroundColor) {
    return SystemColor(static_cast<int>(value - kSystemColorBrushes));
  }
  constexpr COLORREF kStockColors[] = {0xFFFFFF, 0xC0C0C0, 0x808080, 0x404040, 0x000000};
  const int index = StockIndex(brush);
  if (index < WHITE_BRUSH || index > BLACK_BRUSH) return {};
  return kStockColors[index];
}

HGDIOBJ StockObject(int index) {
  if (index < 0 || index >= kStockObjectCount || index == 9) return nullptr;
  return reinterpret_cast<HGDIOBJ>(kStockObjects + static_cast<std::uintptr_t>(index));
}

HGDIOBJ SelectInto(HDC dc, HGDIOBJ object) {
  const auto found = FindDc(dc);
  HGDIOBJ* const place = found ? PlaceFor(*found, object) : nullptr;
  if (place == nullptr) {
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
  }
  CountSelected(*place, -1);
  CountSelected(object, 1);
  return std::exchange(*place, object);
}

void Record(HDC dc, DrawingCall call) {
  const auto found = FindDc(dc);
  if (!found) return;
  call.text_color = found->text_color;
  call.background_color = found->background_color;
  call.background_mode = found->background_mode;
  call.font = FontRecord(found->font);
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(found->window);
  if (!window) return;
  window->drawing.push_back(std::move(call));
  if (window->drawing.size() > kKeptDrawingCalls) window->drawing.pop_front();
}

}  // namespace host

using host::CallFails;

HFONT CreateFontA(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                  DWORD underline, DWORD strike_out, DWORD character_set, DWORD output_precision,
                  DWORD clip_precision, DWORD quality, DWORD pitch_and_family, LPCSTR face) {
  if (CallFails("CreateFontA")) return nullptr;
  const auto flag = [](DWORD value) { return static_cast<BYTE>(value != 0); };
  const auto byte = [](DWORD value) { return static_cast<BYTE>(value); };
  LOGFONTA record = {height,
                     width,
                     escapement,
                     orientation,
                     weight,
                     flag(italic),
                     flag(underline),
                     flag(strike_out),
                     byte(character_set),
                     byte(output_precision),
                     byte(clip_precision),
                     byte(quality),
                     byte(pitch_and_family),
                     {}};
  host::CopyOut(face != nullptr ? face : "", record.lfFaceName, LF_FACESIZE);
  return host::OpenFont(record, "font");
}

HFONT CreateFontIndirectA(const LOGFONTA* font) {
  if (CallFails("CreateFontIndirectA") || font == nullptr) return nullptr;
  return host::OpenFont(*font, "font");
}

HGDIOBJ GetStockObject(int index) {
  if (CallFails("GetStockObject")) return nullptr;
  return host::StockObject(index);
}

BOOL DeleteObject(HGDIOBJ object) {
  if (CallFails("DeleteObject")) return FALSE;
  if (host::StockIndex(object) >= 0 || host::IsBrush(object)) return TRUE;
  const bool known = host::Find<host::Font>(object) || host::Find<host::Bitmap>(object);
  if (!known || host::IsSelected(object)) return FALSE;
  return host::CurrentMachine().handles.Close(host::ValueOf(object));
}

int GetObjectA(HGDIOBJ object, int size, LPVOID buffer) {
  if (CallFails("GetObjectA")) return 0;
  if (const auto bitmap = host::Find<host::Bitmap>(object)) {
    return host::CopyRecord(bitmap->record, size, buffer);
  }
  if (host::IsFont(object)) return host::CopyRecord(host::FontRecord(object), size, buffer);
  SetLastError(ERROR_INVALID_HANDLE);
  return 0;
}

HDC CreateCompatibleDC(HDC dc) {
  if (CallFails("CreateCompatibleDC")) return nullptr;
  if (dc != nullptr && !host::FindDc(dc)) {
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
  }
  const HDC made = host::OpenDc(nullptr);
  const auto memory = host::FindDc(made);
  memory->memory = true;
  memory->bitmap = reinterpret_cast<HGDIOBJ>(std::uintptr_t{1});
  return made;
}

BOOL DeleteDC(HDC dc) {
  if (CallFails("DeleteDC")) return FALSE;
  const auto found = host::FindDc(dc);
  return found && found->IsCreated() && host::CloseDc(dc);
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
  if (CallFails("SelectObject")) return nullptr;
  return host::SelectInto(dc, object);
}

BOOL BitBlt(HDC target, int x, int y, int width, int height, HDC source, int source_x, int source_y,
            DWORD operation) {
  if (CallFails("BitBlt")) return FALSE;
  const auto from = host::FindDc(source);
  if (!host::FindDc(target) || !from) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  host::DrawingCall call = {.function = "BitBlt",
                            .rectangle = {x, y, x + width, y + height},
                            .flags = operation,
                            .source = {source_x, source_y}};
  if (const auto bitmap = host::Find<host::Bitmap>(from->bitmap)) {
    call.source_size = {bitmap->record.bmWidth, bitmap->record.bmHeight};
  }
  host::Record(target, std::move(call));
  return TRUE;
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
  if (CallFails("SetTextColor")) return CLR_INVALID;
  return host::Replace(dc, &host::DeviceContext::text_color, color, CLR_INVALID);
}

COLORREF SetBkColor(HDC dc, COLORREF color) {
  if (CallFails("SetBkColor")) return CLR_INVALID;
  return host::Replace(dc, &host::DeviceContext::background_color, color, CLR_INVALID);
}

int SetBkMode(HDC dc, int mode) {
  if (CallFails("SetBkMode")) return 0;
  return host::Replace(dc, &host::DeviceContext::background_mode, mode, 0);
}
