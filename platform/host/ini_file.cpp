#include "platform/host/ini_file.h"

#include <algorithm>
#include <utility>

#include "platform/host/code_page.h"

namespace host {
namespace {

std::string_view Trim(std::string_view text) {
  const auto is_blank = [](char c) { return c == ' ' || c == '\t'; };
  while (!text.empty() && is_blank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back()))
    text.remove_suffix(1);
  return text;
}

std::string_view Unquote(std::string_view text) {
  const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return quoted ? text.substr(1, text.size() - 2) : text;
}

// Each of these answers what is wrong with the line, or an empty text.

std::string ReadSection(std::string_view line, std::size_t number,
                        std::vector<IniSection>& sections) {
  if (line.back() != ']') return "the section has no closing bracket at its end";
  const std::string_view name = Trim(line.substr(1, line.size() - 2));
  if (name.empty()) return "the section has no name";
  const bool twice = std::any_of(sections.begin(), sections.end(), [name](const IniSection& other) {
    return EqualNoCase(other.name, name);
  });
  if (twice) return "the section stands twice";
  sections.push_back({std::string(name), number, {}});
  return "";
}

std::string ReadEntry(std::string_view line, std::size_t number,
                      std::vector<IniSection>& sections) {
  const std::size_t sign = line.find('=');
  if (sign == std::string_view::npos) return "this is no section, no key with \"=\" and no comment";
  if (sections.empty()) return "a key before the first section";
  const std::string_view key = Trim(line.substr(0, sign));
  if (key.empty()) return "the key has no name";
  std::vector<IniEntry>& entries = sections.back().entries;
  const bool twice = std::any_of(entries.begin(), entries.end(), [key](const IniEntry& other) {
    return EqualNoCase(other.key, key);
  });
  if (twice) return "the key stands twice in its section";
  const std::string_view value = Unquote(Trim(line.substr(sign + 1)));
  entries.push_back({std::string(key), std::string(value), number});
  return "";
}

std::string ReadLine(std::string_view raw, std::size_t number, std::vector<IniSection>& sections) {
  if (!IsUtf8(raw)) return "the line is not UTF-8";
  const std::string_view trimmed = Trim(raw);
  if (trimmed.empty() || trimmed.front() == ';') return "";
  const std::optional<std::string> line = CodePageFromUtf8(trimmed);
  if (!line) return "a character that code page 1252 does not have";
  const auto is_control = [](char c) { return (c >= 0 && c < ' ' && c != '\t') || c == 0x7F; };
  if (std::any_of(line->begin(), line->end(), is_control)) return "a control character";
  return line->front() == '[' ? ReadSection(*line, number, sections)
                              : ReadEntry(*line, number, sections);
}

}  // namespace

std::optional<LoadError> ReadIniText(std::string_view bytes, std::vector<IniSection>& sections) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  for (std::size_t number = 1; !bytes.empty(); ++number) {
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    std::string reason = ReadLine(line, number, sections);
    if (!reason.empty()) return LoadError{"", number, std::move(reason)};
  }
  return std::nullopt;
}

}  // namespace host
