#include "platform/host/terminal.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <future>
#include <memory>

#include "tests/platform/host/dialog_run.h"

namespace host {
namespace {

TEST(TerminalText, IsHarmlessUtf8) {
  const struct {
    const char* text;
    bool keep_line_ends;
    const char* expected;
  } kRows[] = {
      {"Gr\xFC\xDF"
       "e \x80",
       false, "Gr\u00FC\u00DFe \u20AC"},
      {"\x1b[2J\x07\x7f", false, "?[2J??"},
      {"\x81\x8d\x9d", false, "???"},
      {"a\tb\r\nc", false, "a b??c"},
      {"a\tb\r\nc", true, "a b\nc"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(TerminalText(row.text, row.keep_line_ends), row.expected);
  }
}

TEST(ProgressOutput, WritesLinesThatStayOrOverwritesTheLast) {
  const struct {
    const char* name;
    const char* steps;  // "+text" adds, "-" removes, "(" interrupts, ")" resumes, "." finishes
    const char* plain;
    const char* in_place;  // "~" begins the line anew
  } kRows[] = {
      {"one line", "+a.", "a\n", "a\n"},
      {"replaced", "+a...|-|+a... Ok|+b.", "a... Ok\nb\n", "a...~a... Ok\nb\n"},
      {"removed", "+a|+b|-|.", "a\n", "a\nb~"},
      {"removed twice", "+a|+b|-|-|.", "a\n", "a\nb~"},
      {"too wide to overwrite", "+0123456789|.", "0123456789\n", "012345678~0123456789\n"},
      {"interrupted", "+a|(|-|+a Ok|+b|)|.", "a Ok\nb\n", "a~a Ok\nb\n"},
      {"finished twice", "+a|.|.", "a\n", "a\n"},
  };
  for (const auto& row : kRows) {
    for (const bool in_place : {false, true}) {
      std::string written;
      ProgressOutput output([&](const std::string& text) { written += text; }, {in_place, 10});
      const std::string steps = row.steps;
      for (std::size_t at = 0; at < steps.size(); ++at) {
        switch (steps[at]) {
          case '+': {
            const std::size_t end = std::min(steps.find('|', at), steps.size());
            const bool last = steps.back() == '.' && end == steps.size();
            output.Add(steps.substr(at + 1, end - at - 1 - (last ? 1 : 0)));
            at = last ? end - 2 : end;
            break;
          }
          case '-':
            output.RemoveLast();
            break;
          case '(':
            output.Interrupt();
            break;
          case ')':
            output.Resume();
            break;
          case '.':
            output.Finish();
            break;
          default:
            break;
        }
      }
      for (std::size_t at; (at = written.find("\r\x1b[K")) != std::string::npos;) {
        written.replace(at, 4, "~");
      }
      EXPECT_EQ(written, in_place ? row.in_place : row.plain) << row.name;
    }
  }
}

class Pipe {
 public:
  Pipe() { EXPECT_EQ(pipe(ends_.data()), 0); }
  ~Pipe() {
    CloseWriting();
    close(ends_[0]);
  }
  int reading() const { return ends_[0]; }
  int writing() const { return ends_[1]; }
  void CloseWriting() {
    if (ends_[1] >= 0) close(std::exchange(ends_[1], -1));
  }
  void Write(const std::string& text) const {
    EXPECT_EQ(write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  // What comes until the text is in it.
  std::string ReadUntil(const std::string& text) const {
    std::string read_so_far;
    while (read_so_far.find(text) == std::string::npos) {
      pollfd source = {ends_[0], POLLIN, 0};
      std::array<char, 256> bytes = {};
      const ssize_t size =
          poll(&source, 1, 10000) == 1 ? read(ends_[0], bytes.data(), bytes.size()) : 0;
      if (size <= 0) return read_so_far + "<no more>";
      read_so_far.append(bytes.data(), static_cast<std::size_t>(size));
    }
    return read_so_far;
  }

 private:
  std::array<int, 2> ends_ = {-1, -1};
};

// A program in short: a line, a question, lines of a worker, and any key ends it once the worker
// has ended. Escape asks before that.
class ShortProgram {
 public:
  ShortProgram()
      : run_([this](HWND dialog, UINT message, WPARAM wparam, LPARAM) -> INT_PTR {
          if (message == WM_INITDIALOG) Begin(dialog);
          if (message != WM_COMMAND || wparam != IDCANCEL) return FALSE;
          const bool leave = MessageBoxA(dialog, "Leave?\nReally?", "Question", MB_YESNO) == IDYES;
          if (leave) EndDialog(dialog, 2);
          return TRUE;
        }) {}
  ~ShortProgram() {
    Release();
    if (worker_.joinable()) worker_.join();
  }
  DialogRun& run() { return run_; }
  // The worker goes on.
  void Release() {
    if (!std::exchange(released_, true)) held_.set_value();
  }
  INT_PTR RunToTheEnd() {
    run_.Start();
    return run_.WaitForEnd();
  }

 private:
  static LRESULT CALLBACK ListProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_KEYDOWN) EndDialog(GetParent(window), 1);
    return CallWindowProcA(plain_, window, message, wparam, lparam);
  }
  void Begin(HWND dialog) {
    const HWND list = GetDlgItem(dialog, kList);
    plain_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ListProcedure)));
    worker_ = std::thread([this, list] {
      const auto add = [list](const char* text) {
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
      };
      add("Item...");
      held_.get_future().wait();
      SendMessageA(list, LB_DELETESTRING, 0, 0);
      for (const char* line : {"Item... Ok", "", "Press any key..."})
        add(line);
    });
  }

  static inline WNDPROC plain_ = nullptr;
  std::promise<void> held_;
  bool released_ = false;
  std::thread worker_;
  DialogRun run_;
};

TEST(Terminal, AnswersForNobody) {
  Pipe output;
  {
    ShortProgram program;
    {
      const Terminal terminal(program.run().desktop(),
                              {.input = 0, .output = output.writing(), .questions = 0});
      program.Release();
      EXPECT_EQ(program.RunToTheEnd(), 1);
    }
  }
  output.CloseWriting();
  EXPECT_EQ(output.ReadUntil("to ask at.\n"),
            "Item... Ok\n\nPress any key...\nKey pressed: there is no terminal to ask at.\n");
}

TEST(Terminal, AsksWhoIsThere) {
  Pipe input;
  Pipe output;
  Pipe questions;
  ShortProgram program;
  const Terminal terminal(program.run().desktop(), {.input = input.reading(),
                                                    .output = output.writing(),
                                                    .questions = questions.writing(),
                                                    .asks = true});
  program.run().Start();
  ASSERT_EQ(kill(getpid(), SIGINT), 0);  // Ctrl+C
  const std::string question = "[Question]\nLeave?\nReally?\n[Y]es / [N]o (Enter: Yes): ";
  EXPECT_EQ(questions.ReadUntil("): "), question);
  input.Write("x");  // no button's letter
  input.Write("n");
  EXPECT_EQ(questions.ReadUntil("No\n"), "No\n");
  program.Release();
  EXPECT_EQ(output.ReadUntil("key...\n"), "Item... Ok\n\nPress any key...\n");
  input.Write("\x1b[A");
  input.Write("q");
  EXPECT_EQ(program.run().WaitForEnd(), 1);
}

TEST(Terminal, GoesOnWhenTheInputEnds) {
  Pipe input;
  Pipe output;
  Machine machine;
  const UseMachine use(machine);
  input.CloseWriting();
  const Terminal terminal(machine.desktop, {.input = input.reading(),
                                            .output = output.writing(),
                                            .questions = output.writing(),
                                            .asks = true});
  EXPECT_EQ(MessageBoxA(nullptr, "T", "C", MB_OKCANCEL), IDOK);
}

}  // namespace
}  // namespace host
