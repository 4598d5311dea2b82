#include "platform/host/fact.h"

#include <algorithm>
#include <charconv>
#include <chrono>

namespace host {

using std::string_view;

std::optional<std::uint64_t> Number(string_view text, std::uint64_t most) {
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc() || rest != end || number > most) return std::nullopt;
  return number;
}

std::string ReadValue(string_view value, bool& field) {
  if (value != "yes" && value != "no") return "the value is neither \"yes\" nor \"no\"";
  field = value == "yes";
  return "";
}

std::string ReadValue(string_view value, std::string& field) {
  field = value;
  return "";
}

std::string ReadValue(string_view value, std::optional<std::string>& field) {
  field = std::string(value);
  return "";
}

std::optional<WORD> TakeNumber(string_view& text, char stop) {
  const std::size_t end = stop == '\0' ? text.size() : text.find(stop);
  if (end == string_view::npos) return std::nullopt;
  const string_view digits = text.substr(0, end);
  const bool is_digits =
      std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
  const std::optional<std::uint64_t> number = is_digits ? Number(digits, 0xFFFF) : std::nullopt;
  text.remove_prefix(std::min(end + 1, text.size()));
  if (!number) return std::nullopt;
  return static_cast<WORD>(*number);
}

string_view TakeItem(string_view& text, char separator) {
  while (text.starts_with(' '))
    text.remove_prefix(1);
  const std::size_t end = std::min(text.find(separator), text.size());
  string_view item = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  while (item.ends_with(' '))
    item.remove_suffix(1);
  return item;
}

std::optional<std::string> QuotedText(string_view quoted) {
  if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"') return std::nullopt;
  quoted = quoted.substr(1, quoted.size() - 2);
  constexpr string_view kEscapes = "rnt\"\\";
  constexpr string_view kMeanings = "\r\n\t\"\\";
  std::string text;
  for (std::size_t at = 0; at < quoted.size(); ++at) {
    if (quoted[at] == '"') return std::nullopt;
    if (quoted[at] != '\\') {
      text += quoted[at];
      continue;
    }
    const std::size_t escape = ++at < quoted.size() ? kEscapes.find(quoted[at]) : string_view::npos;
    if (escape == string_view::npos) return std::nullopt;
    text += kMeanings[escape];
  }
  return text;
}

std::string ReadValue(string_view value, LocalTime& field) {
  const char* const malformed = "the value is no time of the form 2002-03-07 09:05:00.000";
  WORD* const parts[] = {&field.year,   &field.month,  &field.day,         &field.hour,
                         &field.minute, &field.second, &field.milliseconds};
  const char stops[] = {'-', '-', ' ', ':', ':', '.', '\0'};
  std::string text(value);
  if (text.find('.') == std::string::npos) text += ".000";
  string_view rest = text;
  for (std::size_t i = 0; i < std::size(parts); ++i) {
    const std::optional<WORD> part = TakeNumber(rest, stops[i]);
    if (!part) return malformed;
    *parts[i] = *part;
  }
  const std::chrono::year_month_day date{
      std::chrono::year(field.year), std::chrono::month(field.month), std::chrono::day(field.day)};
  if (!date.ok() || field.year < 1601 || field.year > 30827 || field.hour > 23 ||
      field.minute > 59 || field.second > 59 || field.milliseconds > 999) {
    return malformed;
  }
  const std::chrono::weekday day_of_week{std::chrono::sys_days(date)};
  field.day_of_week = static_cast<WORD>(day_of_week.c_encoding());
  return "";
}

}  // namespace host
