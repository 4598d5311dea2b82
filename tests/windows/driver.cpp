#include "tests/windows/driver.h"

#include <tlhelp32.h>

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <set>
#include <stdexcept>

namespace drive {
namespace {

constexpr char kCaption[] = "Hostscope v.0.93b";
constexpr char kDialogClass[] = "#32770";
constexpr int kListId = 102;
constexpr int kCheckBoxId = 1002;
constexpr int kCloseId = 2;
constexpr int kMessageTextId = 0xFFFF;
constexpr DWORD kStepMilliseconds = 5;

std::mutex started_lock;
std::set<DWORD> started;

std::string ToSystemCodePage(const wchar_t* text, int length) {
  std::string result(length, '\0');
  result.resize(
      WideCharToMultiByte(CP_ACP, 0, text, length, result.data(), length, nullptr, nullptr));
  return result;
}

std::string WindowText(HWND window) {
  wchar_t text[4096] = {};
  const LRESULT length = Ask(window, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
  return ToSystemCodePage(text, std::max<int>(length, 0));
}

std::string ClassName(HWND window) {
  char name[64] = {};
  GetClassNameA(window, name, sizeof(name));
  return name;
}

struct DialogSearch {
  DWORD process;
  std::vector<HWND> found;
};

BOOL CALLBACK CollectDialog(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<DialogSearch*>(parameter);
  DWORD owner = 0;
  GetWindowThreadProcessId(window, &owner);
  if (owner == search.process && IsWindowVisible(window) && ClassName(window) == kDialogClass) {
    search.found.push_back(window);
  }
  return TRUE;
}

std::vector<HWND> DialogsOf(DWORD process) {
  DialogSearch search = {process, {}};
  EnumWindows(CollectDialog, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

std::vector<int> VisibleButtons(HWND box) {
  std::vector<int> buttons;
  for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    if (IsWindowVisible(child) && ClassName(child) == "Button") {
      buttons.push_back(GetDlgCtrlID(child));
    }
  }
  std::sort(buttons.begin(), buttons.end());
  return buttons;
}

std::string CommandLine(const Folder& folder, const Start& start) {
  if (!start.command_line.empty()) return start.command_line;
  std::string line = "\"" + folder.program() + "\"";
  for (const std::string& argument : start.arguments)
    line += " \"" + argument + "\"";
  return line;
}

// The module that the thread's routine lies in; null for a thread that has just gone.
void* ModuleOfThread(HANDLE process, HANDLE thread) {
  using Query = LONG(WINAPI*)(HANDLE, int, void*, ULONG, ULONG*);
  constexpr int kStartAddress = 9;
  static const auto query = reinterpret_cast<Query>(reinterpret_cast<void (*)()>(
      GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQueryInformationThread")));
  void* start = nullptr;
  MEMORY_BASIC_INFORMATION memory = {};
  if (query(thread, kStartAddress, &start, sizeof start, nullptr) < 0 ||
      VirtualQueryEx(process, start, &memory, sizeof memory) == 0)
    return nullptr;
  return memory.AllocationBase;
}

void SendKey(WORD virtual_key, DWORD flags) {
  INPUT input = {};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = virtual_key;
  input.ki.wScan = MapVirtualKeyA(virtual_key, 0);
  input.ki.dwFlags = flags;
  SendInput(1, &input, sizeof(input));
}

// The pointer's place in the parts of 65536 that the system counts the screen in, rounded up, since
// the system rounds down.
LONG PartOfScreen(LONG pixels, int screen) {
  return (pixels * 65536 + screen - 1) / screen;
}

// Place and button come in one piece, so that the system's own pointer can't come between them.
void SendMouse(HWND window, POINT point, DWORD flags) {
  ClientToScreen(window, &point);
  INPUT input = {};
  input.type = INPUT_MOUSE;
  input.mi.dx = PartOfScreen(point.x, GetSystemMetrics(SM_CXSCREEN));
  input.mi.dy = PartOfScreen(point.y, GetSystemMetrics(SM_CYSCREEN));
  input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | flags;
  SendInput(1, &input, sizeof(input));
}

bool HasTheFocus(HWND window) {
  GUITHREADINFO info = {};
  info.cbSize = sizeof(info);
  return GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info) &&
         info.hwndActive == window && (info.hwndFocus == window || IsChild(window, info.hwndFocus));
}

// The system knows of a new foreground window before the window does, and the window then moves the
// focus: input in between would go astray.
void BringToFront(HWND window) {
  const auto in_front = [&] {
    if (!IsWindow(window)) throw std::runtime_error("the window to type into is gone");
    if (GetForegroundWindow() == window) return HasTheFocus(window);
    SetForegroundWindow(window);
    return false;
  };
  if (!WaitUntil(in_front)) throw std::runtime_error("a window does not come to the front");
  Ask(window, WM_NULL);
}

}  // namespace

LRESULT Ask(HWND window, UINT message, WPARAM first, LPARAM second) {
  DWORD_PTR answer = 0;
  if (!SendMessageTimeoutW(window, message, first, second, SMTO_NORMAL, kPatienceMilliseconds,
                           &answer)) {
    return -1;
  }
  return static_cast<LRESULT>(answer);
}

Program::Program(const Folder& folder, const Start& start) {
  std::string line = CommandLine(folder, start);
  STARTUPINFOA how = {};
  how.cb = sizeof(how);
  const DWORD flags = start.interceptions.empty() ? 0 : CREATE_SUSPENDED;
  // Started from a folder that is not its own, as a shortcut may do it.
  if (!CreateProcessA(folder.program().c_str(), line.data(), nullptr, nullptr, FALSE, flags,
                      nullptr, "C:\\", &how, &process_)) {
    throw std::runtime_error("cannot start " + line);
  }
  const std::lock_guard lock(started_lock);
  started.insert(process_.dwProcessId);
  if (start.interceptions.empty()) return;
  LoadedProcess loaded(process_.hProcess, process_.hThread);
  for (Interception* interception : start.interceptions)
    interception->Install(loaded);
  loaded.Run();
}

Program::~Program() {
  if (Runs()) Kill();
  const std::lock_guard lock(started_lock);
  started.erase(process_.dwProcessId);
  CloseHandle(process_.hThread);
  CloseHandle(process_.hProcess);
}

HWND Program::FindDialog() const {
  for (const HWND window : DialogsOf(process_.dwProcessId)) {
    if (GetDlgItem(window, kListId) && WindowText(window) == kCaption) return window;
  }
  return nullptr;
}

HWND Program::WaitForDialog() {
  WaitUntil([&] { return (dialog_ = FindDialog()) || !Runs(); });
  DWORD code = 0;
  if (!dialog_ && !Runs() && GetExitCodeProcess(process_.hProcess, &code)) {
    std::printf("the program ended with code %lu before its dialog appeared\n", code);
  }
  return dialog_;
}

HWND Program::List() const {
  return Item(kListId);
}

HWND Program::CheckBox() const {
  return Item(kCheckBoxId);
}

HWND Program::CloseButton() const {
  return Item(kCloseId);
}

HWND Program::Focus() const {
  GUITHREADINFO info = {};
  info.cbSize = sizeof(info);
  GetGUIThreadInfo(process_.dwThreadId, &info);
  return info.hwndFocus;
}

bool Program::IsChecked() const {
  return Ask(CheckBox(), BM_GETCHECK) == BST_CHECKED;
}

std::string Program::ReadRemoteLine(int index) const {
  const LRESULT length = Ask(List(), LB_GETTEXTLEN, index);
  if (length < 0) return {};
  // Room for a line that was replaced by a longer one between the two questions. Asked in 16-bit
  // text: between processes the 8-bit form of the message is not translated.
  std::vector<wchar_t> text(length + 1024);
  const LRESULT copied = Ask(List(), LB_GETTEXT, index, reinterpret_cast<LPARAM>(text.data()));
  return ToSystemCodePage(text.data(), std::max<int>(copied, 0));
}

std::vector<std::string> Program::Lines() const {
  std::vector<std::string> lines;
  const int count = Ask(List(), LB_GETCOUNT);
  for (int n = 0; n < count; ++n)
    lines.push_back(ReadRemoteLine(n));
  return lines;
}

int Program::CurrentLine() const {
  return Ask(List(), LB_GETCURSEL);
}

bool Program::WaitForLine(const std::string& line) {
  if (!WaitForDialog()) return false;
  return WaitUntil([&] {
    const int count = Ask(List(), LB_GETCOUNT);
    return count > 0 && ReadRemoteLine(count - 1) == line;
  });
}

bool Program::WorkerRuns() const {
  void* const program = ModuleOfThread(process_.hProcess, process_.hThread);
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry = {};
  entry.dwSize = sizeof(entry);
  bool runs = program == nullptr;
  for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
    if (entry.th32OwnerProcessID != process_.dwProcessId) continue;
    if (entry.th32ThreadID == process_.dwThreadId) continue;
    const HANDLE thread = OpenThread(THREAD_ALL_ACCESS, FALSE, entry.th32ThreadID);
    if (!thread) continue;
    if (WaitForSingleObject(thread, 0) == WAIT_TIMEOUT)
      runs |= ModuleOfThread(process_.hProcess, thread) == program;
    CloseHandle(thread);
  }
  CloseHandle(snapshot);
  return runs;
}

// The dialog takes no key before the worker has ended, which it does just after its last line.
bool Program::WaitUntilFinished() {
  return WaitForLine(kLastLine) && WaitUntil([&] { return !WorkerRuns(); });
}

std::optional<MessageBoxShown> Program::FindMessageBox() const {
  for (const HWND window : DialogsOf(process_.dwProcessId)) {
    if (GetDlgItem(window, kListId)) continue;
    MessageBoxShown box;
    box.window = window;
    box.owner = GetWindow(window, GW_OWNER);
    box.caption = WindowText(window);
    box.text = WindowText(GetDlgItem(window, kMessageTextId));
    box.buttons = VisibleButtons(window);
    return box;
  }
  return std::nullopt;
}

std::optional<MessageBoxShown> Program::WaitForMessageBox() const {
  std::optional<MessageBoxShown> box;
  WaitUntil([&] { return (box = FindMessageBox()) || !Runs(); });
  return box;
}

bool Program::Runs() const {
  return WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT;
}

std::optional<DWORD> Program::WaitForExit() const {
  DWORD code = 0;
  if (WaitForSingleObject(process_.hProcess, kPatienceMilliseconds) != WAIT_OBJECT_0) {
    return std::nullopt;
  }
  GetExitCodeProcess(process_.hProcess, &code);
  return code;
}

void Program::Kill() {
  TerminateProcess(process_.hProcess, 99);
  WaitForSingleObject(process_.hProcess, kPatienceMilliseconds);
}

void TypeKey(HWND front, WORD virtual_key) {
  BringToFront(front);
  SendKey(virtual_key, 0);
  SendKey(virtual_key, KEYEVENTF_KEYUP);
}

void MovePointer(HWND window, POINT client_point) {
  SendMouse(window, client_point, 0);
}

// A press on a window that is just coming to the front would be lost with that.
void PressMouseButton(HWND window, POINT client_point) {
  BringToFront(GetAncestor(window, GA_ROOT));
  SendMouse(window, client_point, MOUSEEVENTF_LEFTDOWN);
}

void DragPointer(HWND window, POINT from, POINT to) {
  constexpr int kSteps = 20;
  for (int n = 1; n <= kSteps; ++n) {
    MovePointer(window,
                {from.x + (to.x - from.x) * n / kSteps, from.y + (to.y - from.y) * n / kSteps});
    Sleep(kStepMilliseconds);
  }
}

void ReleaseMouseButton(HWND window, POINT client_point) {
  SendMouse(window, client_point, MOUSEEVENTF_LEFTUP);
}

void Click(HWND window, POINT client_point) {
  PressMouseButton(window, client_point);
  ReleaseMouseButton(window, client_point);
}

std::string ReportOf(const Folder& folder, const std::string& profile,
                     std::vector<Interception*> interceptions, std::vector<std::string>* list) {
  folder.Write("test.ini", profile);
  Program program(folder, {.arguments = {"test.ini"}, .interceptions = interceptions});
  if (!program.WaitUntilFinished()) throw std::runtime_error("the report is not finished");
  if (list) *list = program.Lines();
  TypeKey(program.dialog(), 'X');
  if (program.WaitForExit() != 0u) throw std::runtime_error("the program does not end well");
  return folder.Read("hscope.txt").value_or("no report");
}

POINT MiddleOf(HWND window) {
  RECT area = {};
  GetClientRect(window, &area);
  return {area.right / 2, area.bottom / 2};
}

void ClickMiddle(HWND window) {
  Click(window, MiddleOf(window));
}

bool Answer(const MessageBoxShown& box, int button) {
  ClickMiddle(GetDlgItem(box.window, button));
  return WaitUntil([&] { return !IsWindow(box.window); });
}

void EndStartedProcesses() {
  const std::lock_guard lock(started_lock);
  for (const DWORD id : started) {
    const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, id);
    if (process) TerminateProcess(process, 99);
    if (process) CloseHandle(process);
  }
}

}  // namespace drive
