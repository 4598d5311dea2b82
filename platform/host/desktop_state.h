// Behind platform/host/desktop.h: what the files of USER32 and GDI32 share. Nothing else includes
// it.
//
// One lock guards everything here. It is never held while a window procedure, a dialog procedure or
// a listener runs. The functions that send messages take the lock themselves; those that say
// "locked" are called with it held. No function calls one of the platform's own entry points:
// those count calls for fault injection, and only the program's calls count.
#pragma once

#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "platform/host/code_page.h"
#include "platform/host/desktop.h"
#include "platform/host/handles.h"
#include "platform/host/process.h"
#include "platform/host/user32.h"

namespace host {

inline constexpr DWORD kInvalidWindowHandle = 1400;
inline constexpr DWORD kNoParent = 1406;
inline constexpr DWORD kNoSuchWindowClass = 1407;
inline constexpr DWORD kClassAlreadyThere = 1410;
inline constexpr DWORD kClassNotThere = 1411;
inline constexpr DWORD kInvalidIndex = 1413;
inline constexpr DWORD kNoSuchControl = 1421;
inline constexpr DWORD kNoSuchResourceName = 1814;

// Handles of what nobody opens or closes lie below those of the handle table. The lowest ones are
// window backgrounds that name a system colour, by its number plus one.
inline constexpr std::uintptr_t kHighestBackgroundColor = 31;
inline constexpr std::uintptr_t kStockObjects = 0x40;
inline constexpr std::uintptr_t kSystemColorBrushes = 0x80;
inline constexpr std::uintptr_t kDesktopWindow = 0xB0;
inline constexpr std::uintptr_t kSystemArrow = 0xC0;
inline constexpr std::uintptr_t kSystemApplicationIcon = 0xC1;
inline constexpr std::uintptr_t kProgramIcon = 0xC2;
inline constexpr std::uintptr_t kProgramHand = 0xC3;

struct WindowClass {
  std::string name;
  WNDCLASSEXA record = {};
};

// What a standard control or a dialog keeps for its window.
struct ControlData {
  virtual ~ControlData() = default;
};

struct Dialog : ControlData {
  DLGPROC procedure = nullptr;
  bool ended = false;
  INT_PTR result = 0;
  HWND saved_focus = nullptr;  // while another window is active
  WORD default_id = 0;
  LONG_PTR message_result = 0;
  LONG_PTR user = 0;
};

struct ListBox : ControlData {
  std::vector<std::string> lines;
  int current = -1;
  int top = 0;
  bool redraw = true;
};

struct Button : ControlData {
  WPARAM state = 0;  // BST_ bits
};

struct SentMessage {
  HWND window = nullptr;
  UINT message = 0;
  WPARAM wparam = 0;
  LPARAM lparam = 0;
  LRESULT result = 0;
  bool begun = false;
  bool done = false;
};

struct InputEvent {
  UINT message = 0;
  POINT point = {};  // on the screen, for the mouse
  WPARAM key = 0;
  bool shift = false;
  bool alt = false;
  bool done = false;  // the thread has dealt with it
};

// What waits for one thread.
struct MessageQueue {
  std::thread::id thread;
  std::deque<std::shared_ptr<SentMessage>> sent;
  std::deque<MSG> posted;
  std::deque<std::shared_ptr<InputEvent>> input;
  std::shared_ptr<InputEvent> in_hand;  // taken out, and no message has been asked for since
  std::optional<int> quit_code;
  int modal_loops = 0;
  bool at_rest = false;  // waits for a message, and there is none
  bool thread_ended = false;
  bool shift_down = false;
  bool button_down = false;
};

struct Window : Object {
  Window() : Object("window") {}
  HWND handle = nullptr;
  std::shared_ptr<WindowClass> window_class;
  std::shared_ptr<MessageQueue> queue;  // of the thread that made it
  HWND parent = nullptr;                // child windows
  HWND owner = nullptr;                 // the others
  std::vector<HWND> children;           // topmost, and so first in tab order, first
  DWORD style = 0;
  DWORD extended_style = 0;
  LONG_PTR id = 0;
  HINSTANCE instance = nullptr;
  LONG_PTR user_data = 0;
  WNDPROC procedure = nullptr;
  std::vector<std::byte> extra_bytes;
  std::string text;
  RECT rectangle = {};  // in the parent's client area, or on the screen
  HFONT font = nullptr;
  std::optional<RECT> update;  // in client coordinates
  bool erase_pending = false;
  bool being_destroyed = false;
  std::deque<DrawingCall> drawing;
  std::unique_ptr<ControlData> data;

  bool Has(DWORD bits) const { return (style & bits) == bits; }
  bool IsChildWindow() const { return (style & (WS_CHILD | WS_POPUP)) == WS_CHILD; }
  template <typename Data>
  Data* As() const {
    return dynamic_cast<Data*>(data.get());
  }
};
using WindowPointer = std::shared_ptr<Window>;

struct OpenBox {
  ShownMessageBox box;
  HWND window = nullptr;
  std::optional<int> answer;
};

struct DesktopState : std::enable_shared_from_this<DesktopState> {
  std::mutex mutex;
  std::condition_variable changed;
  unsigned long version = 0;
  bool given_up = false;
  std::function<void()> change_listener;
  std::function<void(const ListChange&)> list_listener;

  std::map<std::string, std::shared_ptr<WindowClass>, NoCaseLess> classes;
  std::unordered_map<HWND, WindowPointer> windows;
  std::vector<HWND> top_windows;  // topmost first
  HWND focus = nullptr;
  HWND capture = nullptr;
  HWND active = nullptr;
  std::map<std::thread::id, std::shared_ptr<MessageQueue>> queues;
  std::set<std::thread::id> senders;

  std::deque<int> stated_answers;
  std::optional<std::chrono::milliseconds> patience = Desktop::kLimit;
  std::vector<ShownMessageBox> shown_boxes;
  std::vector<std::shared_ptr<OpenBox>> open_boxes;  // innermost last
  std::vector<ShellOpening> shell_openings;

  // All of these: locked.
  void Changed();
  WindowPointer Find(HWND window) const;
  // The queue of the calling thread, made at the first asking.
  std::shared_ptr<MessageQueue> OwnQueue();
  WindowPointer RootOf(HWND window) const;          // the top window that it stands in, or is
  bool IsInside(HWND ancestor, HWND window) const;  // or the same
  bool IsVisible(const Window& window) const;
  // A point of the client area's corner on the screen; sizes without and with the frame.
  POINT ClientOrigin(const Window& window) const;
  RECT ScreenRectangle(const Window& window) const;
  RECT ClientRectangle(const Window& window) const;
  // The window that takes the mouse at the point of the screen: visible, enabled, topmost.
  HWND WindowAt(POINT point) const;
  void Invalidate(Window& window, const RECT* rectangle, bool erase, bool with_children);
  HWND WindowToPaint(const MessageQueue& queue) const;
};

DesktopState& CurrentDesktop();

// Copies as much as the size in bytes takes, and a zero; the number of characters copied.
int CopyOut(std::string_view text, LPSTR buffer, int size);

// The current desktop, locked for one call.
class LockedDesktop {
 public:
  LockedDesktop() : state_(CurrentDesktop()), lock_(state_.mutex) {}
  DesktopState* operator->() const { return &state_; }
  DesktopState& operator*() const { return state_; }
  // The window; for a handle that is none it sets the last error.
  WindowPointer Find(HWND window) const;

 private:
  DesktopState& state_;
  std::unique_lock<std::mutex> lock_;
};

// ---- user32_classes.cpp ----

// System classes for a new desktop.
void AddSystemClasses(DesktopState& state);
LRESULT DialogProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT ListBoxProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT ButtonProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT StaticProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// ---- user32_windows.cpp ----

struct WindowPlan {
  std::string window_class;
  std::string text;
  DWORD style = 0;
  DWORD extended_style = 0;
  RECT rectangle = {};  // as Window::rectangle
  HWND parent = nullptr;
  LONG_PTR id = 0;
  HINSTANCE instance = nullptr;
  LPVOID creation_data = nullptr;
  WNDPROC procedure = nullptr;  // null: that of the class
  std::unique_ptr<ControlData> data = {};
  HFONT font = nullptr;
};
// Null with the last error set when the class or the parent is not there.
HWND MakeWindow(WindowPlan plan);
bool RemoveWindow(HWND window);
void Show(HWND window, bool show);
void Enable(HWND window, bool enable);
// The width of the frame on each side of a window of the styles.
RECT FrameWidths(DWORD style, DWORD extended_style);

// ---- user32_default.cpp ----

LRESULT DefaultProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// ---- user32_messages.cpp ----

using Lock = std::unique_lock<std::mutex>;

LRESULT Send(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
bool Post(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
// Calls the window's procedure on this thread.
LRESULT Deliver(const MSG& message);
// Makes the character message of a key message.
bool Translate(const MSG& message);
// Carries out the oldest message that another thread has sent; the lock is given up meanwhile.
void CarryOutOne(DesktopState& state, MessageQueue& queue, Lock& lock);

// ---- user32_queue.cpp ----

enum class Retrieved { kMessage, kQuit, kNothing, kGivenUp };
struct MessageFilter {
  HWND window = nullptr;
  UINT first = 0;
  UINT last = 0;
};
// The next message of the calling thread: what other threads have sent is carried out on the way.
// Waits until the deadline; a deadline in the past never waits, none waits for good.
using Deadline = std::optional<std::chrono::steady_clock::time_point>;
Retrieved Retrieve(MSG& message, const MessageFilter& filter, Deadline deadline);
inline constexpr std::chrono::steady_clock::time_point kAtOnce =
    std::chrono::steady_clock::time_point::min();
// Deals with all that waits for the calling thread, as its message loop would.
void WorkOffMessages();

// Counts a modal loop of the calling thread.
class ModalLoop {
 public:
  ModalLoop();
  ~ModalLoop();
  ModalLoop(const ModalLoop&) = delete;
  ModalLoop& operator=(const ModalLoop&) = delete;

 private:
  std::shared_ptr<DesktopState> state_;
  std::shared_ptr<MessageQueue> queue_;
};

// ---- user32_focus.cpp ----

HWND MoveFocus(HWND window);  // the window that had it
void Activate(HWND window);
HWND MoveCapture(HWND window);

// ---- user32_dialog.cpp, user32_dialog_keys.cpp ----

bool IsDialog(HWND window);
HWND ControlOf(HWND dialog, int id);
HWND NextTabItem(HWND dialog, HWND control, bool previous);
bool DialogMessage(HWND dialog, const MSG& message);
bool EndTheDialog(HWND dialog, INT_PTR result);

// ---- user32_paint.cpp ----

void InvalidateWindow(HWND window, bool erase);
HDC StartPainting(HWND window, PAINTSTRUCT& paint);
void FinishPainting(const PAINTSTRUCT& paint);
void Fill(HDC dc, const RECT& rectangle, HBRUSH brush);
void DrawLine(HDC dc, const std::string& text, const RECT& rectangle, UINT format);
// Sends the colour request of a control to its parent; the brush for its background.
HBRUSH AskForColors(UINT message, HWND control, HDC dc);
COLORREF SystemColor(int index);
int SystemMetric(int index);

// ---- gdi32.cpp ----

struct Font : Object {
  Font(const LOGFONTA& its_record, const char* kind) : Object(kind), record(its_record) {}
  LOGFONTA record;
  int selected = 0;
};
struct Bitmap : Object {
  explicit Bitmap(const BITMAP& its_record) : Object("bitmap"), record(its_record) {}
  BITMAP record;
  int selected = 0;
};
struct DeviceContext : Object {
  explicit DeviceContext(HWND its_window) : Object("device context"), window(its_window) {}
  HWND window;  // null: of a memory device or the screen
  bool memory = false;
  bool information = false;  // tells about the device
  bool IsCreated() const { return memory || information; }
  HGDIOBJ font = nullptr;
  HGDIOBJ bitmap = nullptr;
  HGDIOBJ brush = nullptr;
  COLORREF text_color = 0;
  COLORREF background_color = 0xFFFFFF;
  int background_mode = OPAQUE;
};

std::shared_ptr<DeviceContext> FindDc(HDC dc);
HDC OpenDc(HWND window);
bool CloseDc(HDC dc);
HFONT OpenFont(const LOGFONTA& record, const char* kind);
// The record of a font handle; that of the system font for a handle that is none.
LOGFONTA FontRecord(HGDIOBJ font);
// The height of a line of text in pixels.
int LineHeight(const LOGFONTA& font);
// Absent for the hollow brush and for what is no brush.
std::optional<COLORREF> BrushColor(HBRUSH brush);
HGDIOBJ StockObject(int index);
HGDIOBJ SelectInto(HDC dc, HGDIOBJ object);
// Puts a call on the record of the DC's window, with the state of the DC.
void Record(HDC dc, DrawingCall call);

// ---- user32_resources.cpp ----

std::map<int, DialogTemplate> ProgramDialogs();

}  // namespace host
