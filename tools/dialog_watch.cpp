// Starts hscope.exe as a shortcut would, and stands in for the person who looks at its dialog:
//
//   dialog_watch start SECONDS PROGRAM [PROFILE [FOLDER]]
//     prints the progress list as it grows and ends when the last line asks for a key. A message
//     shown before the run is printed and agreed to. Exit code 0: the list is complete.
//   dialog_watch close SECONDS
//     waits until the dialog is gone; presses a key in its list when it is still there then.
//     Exit code 0: gone.
//
// On failure the reason is printed and the exit code is 1. Everything is printed in UTF-8.

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr wchar_t kCaption[] = L"Hostscope v.0.93b";
constexpr wchar_t kLastLine[] = L"Press any key...";
constexpr wchar_t kDialogClass[] = L"#32770";
constexpr int kProgressList = 102;
constexpr DWORD kPollMilliseconds = 50;
constexpr UINT kAnswerMilliseconds = 5000;

std::string ToUtf8(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  std::string result(text.size() * 3, '\0');
  const int used = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(),
                                       static_cast<int>(result.size()), nullptr, nullptr);
  result.resize(used);
  return result;
}

void Print(const std::wstring& text) {
  const std::string bytes = ToUtf8(text);
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
  std::fflush(stdout);
}

int Fail(const std::wstring& reason) {
  Print(L"\n" + reason + L"\n");
  return 1;
}

// A window that does not answer in time gives nothing, so that no call here waits for ever.
std::optional<DWORD_PTR> Ask(HWND window, UINT message, WPARAM first, LPARAM second) {
  DWORD_PTR answer = 0;
  if (!SendMessageTimeoutW(window, message, first, second, SMTO_ABORTIFHUNG, kAnswerMilliseconds,
                           &answer)) {
    return std::nullopt;
  }
  return answer;
}

// List box messages count and fail in 32 bits.
std::optional<int> AskList(HWND list, UINT message, WPARAM first, LPARAM second) {
  const auto answer = Ask(list, message, first, second);
  if (!answer || static_cast<int>(*answer) == LB_ERR) return std::nullopt;
  return static_cast<int>(*answer);
}

// Asked in 16-bit text: between processes the 8-bit form of this message is not translated.
std::optional<std::wstring> ListLine(HWND list, int index) {
  wchar_t buffer[2048];
  const auto length = AskList(list, LB_GETTEXTLEN, index, 0);
  if (!length || *length >= static_cast<int>(std::size(buffer))) return std::nullopt;
  const auto copied = AskList(list, LB_GETTEXT, index, reinterpret_cast<LPARAM>(buffer));
  if (!copied || *copied >= static_cast<int>(std::size(buffer))) return std::nullopt;
  return std::wstring(buffer, *copied);
}

std::wstring WindowText(HWND window) {
  wchar_t buffer[2048] = {};
  const auto length = Ask(window, WM_GETTEXT, std::size(buffer), reinterpret_cast<LPARAM>(buffer));
  return length ? std::wstring(buffer) : std::wstring();
}

HWND ProgressList() {
  const HWND dialog = FindWindowW(kDialogClass, kCaption);
  return dialog && IsWindowVisible(dialog) ? GetDlgItem(dialog, kProgressList) : nullptr;
}

// Shows each line once. The last line of the list may still be replaced by itself with a status
// word behind it: what is printed of it stays, and only the rest follows.
class ListPrinter {
 public:
  // True when the list has come to its last line.
  bool Show(HWND list) {
    const int count = AskList(list, LB_GETCOUNT, 0, 0).value_or(0);
    while (next_ < count) {
      const auto line = ListLine(list, next_);
      if (!line) return false;
      PrintLine(*line);
      const bool last = next_ == count - 1;
      if (last && *line == kLastLine) return true;
      if (last) return false;
      EndLine();
    }
    return false;
  }

 private:
  void PrintLine(const std::wstring& line) {
    if (line.starts_with(shown_)) {
      Print(line.substr(shown_.size()));
    } else {
      Print(L"\n" + line);
    }
    shown_ = line;
  }

  void EndLine() {
    Print(L"\n");
    shown_.clear();
    ++next_;
  }

  int next_ = 0;
  std::wstring shown_;
};

// Agrees to message boxes of one process, each once.
class MessageBoxes {
 public:
  explicit MessageBoxes(DWORD process) : process_(process) {}

  void Answer() { EnumWindows(&MessageBoxes::Visit, reinterpret_cast<LPARAM>(this)); }

 private:
  static BOOL CALLBACK Visit(HWND window, LPARAM self) {
    reinterpret_cast<MessageBoxes*>(self)->AnswerOne(window);
    return TRUE;
  }

  static BOOL CALLBACK PrintLabel(HWND child, LPARAM) {
    wchar_t name[16] = {};
    GetClassNameW(child, name, static_cast<int>(std::size(name)));
    const std::wstring text = WindowText(child);
    if (lstrcmpiW(name, L"Static") == 0 && !text.empty()) Print(text + L"\n");
    return TRUE;
  }

  void AnswerOne(HWND window) {
    wchar_t name[16] = {};
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    const bool message_box = owner == process_ && IsWindowVisible(window) &&
                             lstrcmpW(name, kDialogClass) == 0 &&
                             !GetDlgItem(window, kProgressList);
    if (!message_box || !answered_.insert(window).second) return;
    Print(L"[" + WindowText(window) + L"]\n");
    EnumChildWindows(window, &MessageBoxes::PrintLabel, 0);
    for (const int button : {IDOK, IDYES, IDIGNORE, IDRETRY}) {
      if (const HWND child = GetDlgItem(window, button)) {
        Print(L"(answered: " + WindowText(child) + L")\n");
        PostMessageW(child, BM_CLICK, 0, 0);
        return;
      }
    }
  }

  DWORD process_;
  std::set<HWND> answered_;
};

std::wstring InQuotes(const std::wstring& text) {
  return L"\"" + text + L"\"";
}

// Every argument stands between quotes, with nothing escaped: the program cuts its command line
// apart by them alone.
HANDLE StartProgram(const std::vector<std::wstring>& words, DWORD* process) {
  std::wstring line = InQuotes(words[0]);
  for (size_t i = 1; i < words.size(); ++i)
    line += L" " + InQuotes(words[i]);
  STARTUPINFOW start = {};
  start.cb = sizeof(start);
  PROCESS_INFORMATION made = {};
  if (!CreateProcessW(words[0].c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &start, &made)) {
    return nullptr;
  }
  CloseHandle(made.hThread);
  *process = made.dwProcessId;
  return made.hProcess;
}

int Start(Clock::time_point limit, const std::vector<std::wstring>& words) {
  DWORD process = 0;
  const HANDLE program = StartProgram(words, &process);
  if (!program) return Fail(words[0] + L" could not be started");
  ListPrinter printer;
  MessageBoxes boxes(process);
  while (Clock::now() < limit) {
    const HWND list = ProgressList();
    if (list && printer.Show(list)) {
      Print(L"\n");
      return 0;
    }
    if (!list) boxes.Answer();
    if (WaitForSingleObject(program, kPollMilliseconds) == WAIT_OBJECT_0) {
      return Fail(L"the program ended before its list was complete");
    }
  }
  return Fail(ProgressList() ? L"the list was not complete within the time limit"
                             : L"no dialog appeared within the time limit");
}

bool GoneBefore(Clock::time_point limit) {
  while (ProgressList()) {
    if (Clock::now() >= limit) return false;
    Sleep(kPollMilliseconds);
  }
  return true;
}

int Close(Clock::time_point limit) {
  if (GoneBefore(limit)) return 0;
  if (const HWND list = ProgressList()) PostMessageW(list, WM_KEYDOWN, VK_SPACE, 0x00390001);
  return GoneBefore(Clock::now() + std::chrono::seconds(10)) ? 0
                                                             : Fail(L"the dialog does not close");
}

}  // namespace

int main() {
  _setmode(_fileno(stdout), _O_BINARY);
  int count = 0;
  const wchar_t* const* const words = CommandLineToArgvW(GetCommandLineW(), &count);
  if (!words) return Fail(L"the command line could not be read");
  const std::wstring task = count > 2 ? words[1] : L"";
  const auto limit = Clock::now() + std::chrono::seconds(count > 2 ? _wtoi(words[2]) : 0);
  if (task == L"start" && count > 3) return Start(limit, {words + 3, words + count});
  if (task == L"close" && count == 3) return Close(limit);
  return Fail(L"usage: dialog_watch start SECONDS PROGRAM [PROFILE [FOLDER]] | close SECONDS");
}
