#include "platform/host/code_page.h"
#include "platform/host/terminal.h"

namespace host {
namespace {

constexpr const char* kStartOver = "\r\x1b[K";  // to the line's beginning, and clear it

bool IsControl(char character) {
  const char16_t unicode = UnicodeFromCodePage(character);
  return unicode < 0x20 || (unicode >= 0x7F && unicode < 0xA0);
}

// As many characters of the UTF-8 text as the width takes.
std::string Cut(const std::string& text, int width) {
  int characters = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool begins = (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
    if (begins && ++characters > width) return text.substr(0, at);
  }
  return text;
}

}  // namespace

std::string TerminalText(std::string_view text, bool keep_line_ends) {
  std::string harmless;
  for (const char character : text) {
    if (character == '\n' && keep_line_ends) {
      harmless += '\n';
    } else if (character == '\r' && keep_line_ends) {
      continue;
    } else if (character == '\t') {
      harmless += ' ';
    } else {
      harmless += IsControl(character) ? '?' : character;
    }
  }
  return Utf8FromCodePage(harmless);
}

ProgressOutput::ProgressOutput(std::function<void(const std::string&)> write, Manner manner)
    : write_(std::move(write)), manner_(manner) {}

void ProgressOutput::Add(std::string_view line) {
  Settle();
  last_ = TerminalText(line);
  Show();
}

void ProgressOutput::RemoveLast() {
  if (!last_) return;
  last_.reset();
  if (manner_.in_place && !interrupted_) write_(kStartOver);
}

void ProgressOutput::Finish() {
  Settle();
}

void ProgressOutput::Interrupt() {
  if (interrupted_) return;
  if (manner_.in_place && last_) write_(kStartOver);
  interrupted_ = true;
}

void ProgressOutput::Resume() {
  if (!interrupted_) return;
  interrupted_ = false;
  if (!held_back_.empty()) write_(held_back_);
  held_back_.clear();
  Show();
}

// The last line stays.
void ProgressOutput::Settle() {
  if (!last_) return;
  const std::string line = *last_ + "\n";
  last_.reset();
  if (interrupted_) {
    held_back_ += line;
  } else if (!manner_.in_place) {
    write_(line);
  } else {
    write_(shown_cut_ ? kStartOver + line : "\n");
  }
}

// A line that the terminal would break could not be overwritten, so what is shown of it is cut.
void ProgressOutput::Show() {
  if (!manner_.in_place || !last_ || interrupted_) return;
  const std::string shown = Cut(*last_, manner_.width - 1);
  shown_cut_ = shown.size() < last_->size();
  write_(shown);
}

}  // namespace host
