// The desktop as seen from a terminal: the progress list as text, message boxes and "Press any
// key..." as questions. For the Linux program.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/host/desktop.h"
#include "platform/host/mail.h"

namespace host {

// A text of the machine as UTF-8 with every control character made harmless ("?", a blank for a
// tab), line ends too unless they are kept.
std::string TerminalText(std::string_view text, bool keep_line_ends = false);

// The word on a message box's button, by its identifier; empty for a number that is none.
std::string ButtonName(int button);

// What the mail client would have shown, in words, lines with their ends.
std::string MailSummary(const SentMail& mail);

// The lines of the progress list as they are written out.
class ProgressOutput {
 public:
  struct Manner {
    // The last line is shown at once and overwritten when it is replaced; otherwise a line is
    // written when it is sure to stay.
    bool in_place = false;
    int width = 80;  // of the terminal, in characters
  };
  ProgressOutput(std::function<void(const std::string&)> write, Manner manner);

  // Texts of the machine.
  void Add(std::string_view line);
  void RemoveLast();
  // The last line stays: what follows is written below it.
  void Finish();

  // Between the two nothing is written; lines that come meanwhile follow afterwards.
  void Interrupt();
  void Resume();

 private:
  void Settle();
  void Show();

  std::function<void(const std::string&)> write_;
  Manner manner_;
  std::optional<std::string> last_;  // may still be replaced
  bool shown_cut_ = false;
  bool interrupted_ = false;
  std::string held_back_;  // settled while interrupted
};

class Terminal {
 public:
  struct Setting {
    int input = 0;
    int output = 1;         // for the list
    int questions = 1;      // for what is asked
    bool asks = false;      // somebody sees the questions and answers at the input
    bool in_place = false;  // the output is a terminal
  };
  // As standard input, output and error are.
  static Setting StandardSetting();

  // From now on shows what the desktop does, and answers for the person. Interrupt signals of this
  // thread and of those that it starts later are taken care of when somebody can be asked.
  Terminal(Desktop& desktop, const Setting& setting);
  // Lets go of the desktop and writes what is left.
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

 private:
  class Session;
  std::unique_ptr<Session> session_;
};

}  // namespace host
