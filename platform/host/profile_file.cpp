#include "platform/host/profile_file.h"

#include <algorithm>
#include <utility>

#include "platform/host/code_page.h"

namespace host {
namespace {

constexpr std::string_view kBlanks = " \t\v\f\x1A";  // the end-of-file mark of old is one

// The file's text in the code page: a byte-order mark says what it is in.
std::string Decode(std::string content) {
  const std::string_view text = content;
  if (text.starts_with("\xFF\xFE")) return CodePageFromUtf16(text.substr(2));
  if (text.starts_with("\xEF\xBB\xBF")) return CodePageFromUtf8WithMarks(text.substr(3));
  if (!text.starts_with("\xFE\xFF")) return content;
  for (std::size_t i = 0; i + 1 < content.size(); i += 2)
    std::swap(content[i], content[i + 1]);
  return CodePageFromUtf16(std::string_view(content).substr(2));
}

// The name goes up to the line's last "]"; a line without one is no header.
std::optional<std::string_view> HeaderName(std::string_view line) {
  if (!line.starts_with('[')) return std::nullopt;
  const std::size_t end = line.rfind(']');
  if (end == std::string_view::npos) return std::nullopt;
  return TrimProfileText(line.substr(1, end - 1));
}

ProfileLine ParseLine(std::size_t number, std::string_view line) {
  const std::size_t sign = line.find('=');
  if (sign == std::string_view::npos) return {number, line, std::nullopt};
  return {number, TrimProfileText(line.substr(0, sign)), TrimProfileText(line.substr(sign + 1))};
}

unsigned DigitValue(char character) {
  const char digit = LowerCase(character);
  if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
  if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a' + 10);
  return 99;
}

}  // namespace

std::string ProfileLine::Entry() const {
  std::string entry(key);
  if (value) entry.append("=").append(*value);
  return entry;
}

const ProfileLine* ProfileSection::Find(std::string_view key) const {
  const auto found = std::find_if(lines.begin(), lines.end(),
                                  [&](const auto& l) { return EqualNoCase(l.key, key); });
  return found == lines.end() ? nullptr : &*found;
}

ProfileFile::ProfileFile(const std::string& content, std::size_t section_limit)
    : content_(content), section_limit_(section_limit), text_(Decode(content)), sections_(1) {
  Parse();
}

const ProfileSection* ProfileFile::Find(std::string_view name) const {
  const auto found = std::find_if(sections_.begin(), sections_.end(),
                                  [&](const auto& s) { return EqualNoCase(s.name, name); });
  return found == sections_.end() ? nullptr : &*found;
}

std::optional<std::string_view> ProfileFile::Value(std::string_view section,
                                                   std::string_view key) const {
  const ProfileSection* const found = Find(section);
  const ProfileLine* const line = found == nullptr ? nullptr : found->Find(key);
  return line == nullptr ? std::nullopt : line->value;
}

// The lines before the first header make a section without a name.
void ProfileFile::Parse() {
  const std::string_view text = text_;
  constexpr std::string_view kBreaks = "\r\n";
  std::size_t section_begin = 0;
  std::size_t number = 1;
  std::size_t end = 0;
  std::size_t begin = text.find_first_not_of(kBreaks);
  while (begin != std::string_view::npos) {
    number += CountLineEnds(text.substr(end, begin - end));
    end = std::min(text.find_first_of(kBreaks, begin), text.size());
    std::string_view line = text.substr(begin, end - begin);
    line = TrimProfileText(line.substr(0, line.find('\0')));
    if (const auto name = HeaderName(line)) {
      sections_.push_back({number, *name, {}});
      section_begin = end + 1;
    } else if (!line.empty() && begin - section_begin < section_limit_) {
      sections_.back().lines.push_back(ParseLine(number, line));
    }
    begin = text.find_first_not_of(kBreaks, end);
  }
}

std::string_view TrimProfileText(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

std::string_view WithoutProfileQuotes(std::string_view text) {
  const bool quoted = text.size() >= 2 && text.front() == text.back() &&
                      (text.front() == '"' || text.front() == '\'');
  return quoted ? text.substr(1, text.size() - 2) : text;
}

std::uint32_t ParseProfileInteger(std::string_view text) {
  while (!text.empty() && static_cast<unsigned char>(text.front()) <= ' ')
    text.remove_prefix(1);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  unsigned base = 10;
  if (text.size() >= 2 && text[0] == '0') {
    const char letter = text[1];
    base = letter == 'x' ? 16 : letter == 'o' ? 8 : letter == 'b' ? 2 : 10;
    if (base != 10) text.remove_prefix(2);
  }
  std::uint32_t number = 0;
  for (; !text.empty() && DigitValue(text.front()) < base; text.remove_prefix(1))
    number = number * base + DigitValue(text.front());
  return negative ? 0 - number : number;
}

std::size_t CountLineEnds(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' || (text[i] == '\n' && (i == 0 || text[i - 1] != '\r'))) ++count;
  }
  return count;
}

}  // namespace host
