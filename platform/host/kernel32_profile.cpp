// Profiles: reading INI files, private ones and win.ini. On NT the entries of one section of
// win.ini are in the registry.
//
// Every call reads anew, so that it shows what is there now. Windows 95/98/Me see only the first
// 32767 bytes of a section of a file; lines that begin beyond are not there for them.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/code_page.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

using namespace host;

namespace {

constexpr std::size_t kSectionLimit = 32767;
constexpr char kSystemProfile[] = "win.ini";
constexpr std::string_view kBlanks = " \t\v\f\x1A";  // the end-of-file mark of old is one

struct Line {
  std::string_view key;
  std::optional<std::string_view> value;  // none: a line without "="
};

struct Section {
  std::string_view name;
  std::vector<Line> lines;
};

std::string_view Trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

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
  return Trim(line.substr(1, end - 1));
}

Line ParseLine(std::string_view line) {
  const std::size_t sign = line.find('=');
  if (sign == std::string_view::npos) return {line, std::nullopt};
  return {Trim(line.substr(0, sign)), Trim(line.substr(sign + 1))};
}

// A name without a folder is looked for in the Windows folder.
std::string ProfilePath(const Machine& machine, LPCSTR file) {
  const std::string_view name = file == nullptr ? kSystemProfile : file;
  if (name.empty() || name.find_first_of("\\/:") != std::string_view::npos)
    return std::string(name);
  return machine.windows_folder + "\\" + std::string(name);
}

class Profile {
 public:
  Profile(const std::string& content, std::size_t section_limit)
      : content_(content), section_limit_(section_limit), text_(Decode(content)) {
    Parse();
  }
  Profile(const Profile&) = delete;
  Profile& operator=(const Profile&) = delete;

  bool IsOf(std::string_view content, std::size_t section_limit) const {
    return content_ == content && section_limit_ == section_limit;
  }
  // The first of several sections, or keys, of one name counts.
  const Section* Find(std::string_view name) const {
    const auto found = std::find_if(sections_.begin(), sections_.end(),
                                    [&](const auto& s) { return EqualNoCase(s.name, name); });
    return found == sections_.end() ? nullptr : &*found;
  }
  std::optional<std::string_view> Value(std::string_view section, std::string_view key) const {
    const Section* const found = Find(section);
    if (found == nullptr) return std::nullopt;
    const auto line = std::find_if(found->lines.begin(), found->lines.end(),
                                   [&](const Line& l) { return EqualNoCase(l.key, key); });
    return line == found->lines.end() ? std::nullopt : line->value;
  }

 private:
  // The lines before the first header make a section without a name.
  void Parse() {
    const std::string_view text = text_;
    constexpr std::string_view kBreaks = "\r\n";
    std::size_t section_begin = 0;
    std::size_t begin = text.find_first_not_of(kBreaks);
    while (begin != std::string_view::npos) {
      const std::size_t end = std::min(text.find_first_of(kBreaks, begin), text.size());
      std::string_view line = text.substr(begin, end - begin);
      line = Trim(line.substr(0, line.find('\0')));
      if (const auto name = HeaderName(line)) {
        sections_.push_back({*name, {}});
        section_begin = end + 1;
      } else if (!line.empty() && begin - section_begin < section_limit_) {
        sections_.back().lines.push_back(ParseLine(line));
      }
      begin = text.find_first_not_of(kBreaks, end);
    }
  }

  std::string content_;  // of the file
  std::size_t section_limit_;
  std::string text_;
  std::vector<Section> sections_ = std::vector<Section>(1);  // views of the text
};

// The profile as it is now; one that can't be read has no sections. The last error says why it
// can't be read, and is 0 otherwise. A program asks for one key after the other, so the last
// profile is kept, and only another content is taken apart again.
std::shared_ptr<const Profile> ReadProfile(LPCSTR file) {
  const Machine& machine = CurrentMachine();
  std::string content;
  SetLastError(machine.files.ReadWhole(ProfilePath(machine, file), content));
  const std::size_t section_limit = machine.IsNt() ? SIZE_MAX : kSectionLimit;
  thread_local std::shared_ptr<const Profile> last;
  if (last == nullptr || !last->IsOf(content, section_limit)) {
    last = std::make_shared<const Profile>(content, section_limit);
  }
  return last;
}

bool IsComment(const Line& line) {
  return line.key.starts_with(';');
}

std::string_view WithoutQuotes(std::string_view text) {
  const bool quoted = text.size() >= 2 && text.front() == text.back() &&
                      (text.front() == '"' || text.front() == '\'');
  return quoted ? text.substr(1, text.size() - 2) : text;
}

DWORD GiveText(std::string_view text, LPSTR buffer, DWORD size) {
  const std::size_t length = text.copy(buffer, size - 1);
  buffer[length] = '\0';
  return static_cast<DWORD>(length);
}

// A list of texts, each with its zero, and one more zero at the end, which the result leaves out. A
// list that is cut ends in two zeros, of which the result leaves out both; an empty one is two
// zeros.
DWORD GiveList(const std::string& list, LPSTR buffer, DWORD size) {
  if (size < 2) {
    buffer[0] = '\0';
    return 0;
  }
  const bool cut = list.size() + 2 > size;
  const std::size_t length = cut ? size - 2 : list.size();
  std::memcpy(buffer, list.data(), length);
  buffer[length] = '\0';
  if (cut || list.empty()) buffer[length + 1] = '\0';
  if (cut) SetLastError(ERROR_INSUFFICIENT_BUFFER);
  return static_cast<DWORD>(length);
}

std::string SectionLines(const Section* section) {
  std::string list;
  if (section == nullptr) return list;
  for (const Line& line : section->lines) {
    if (IsComment(line)) continue;
    list.append(line.key);
    if (line.value) list.append("=").append(*line.value);
    list.push_back('\0');
  }
  return list;
}

// The entries of the section "windows" of win.ini, as far as they are asked for one by one, are
// values of the user's registry on NT.
bool IsInRegistry(LPCSTR section, LPCSTR file) {
  return CurrentMachine().IsNt() && EqualNoCase(Trim(section), "windows") &&
         (file == nullptr || EqualNoCase(file, kSystemProfile));
}

std::optional<std::string> RegistryEntry(LPCSTR key) {
  const Registry& registry = CurrentMachine().registry;
  const std::lock_guard lock(registry.mutex());
  const auto found =
      Registry::FindBelow(registry.Root(Hive::kCurrentUser),
                          "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows");
  const RegistryValue* const value = found == nullptr ? nullptr : found->values.Find(Trim(key));
  if (value == nullptr || value->type != kRegistryText) return std::nullopt;
  return value->data.substr(0, value->data.find('\0'));
}

DWORD GetString(LPCSTR section, LPCSTR key, LPCSTR fallback, LPSTR buffer, DWORD size,
                LPCSTR file) {
  if (section == nullptr || key == nullptr || buffer == nullptr || size == 0) return 0;
  if (IsInRegistry(section, file)) {
    const std::optional<std::string> entry = RegistryEntry(key);
    return GiveText(entry ? *entry : fallback == nullptr ? "" : fallback, buffer, size);
  }
  const std::shared_ptr<const Profile> profile = ReadProfile(file);
  std::string_view text = fallback == nullptr ? "" : fallback;
  const std::optional<std::string_view> value = profile->Value(Trim(section), Trim(key));
  if (value) {
    text = *value;
  } else {
    text = text.substr(0, text.find_last_not_of(' ') + 1);
  }
  return GiveText(WithoutQuotes(text), buffer, size);
}

unsigned DigitValue(char character) {
  const char digit = LowerCase(character);
  if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
  if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a' + 10);
  return 99;
}

// A sign, a base (0x, 0o, 0b, with a small letter) and digits as far as they go; modulo 2^32.
UINT ParseInteger(std::string_view text) {
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
  UINT number = 0;
  for (; !text.empty() && DigitValue(text.front()) < base; text.remove_prefix(1))
    number = number * base + DigitValue(text.front());
  return negative ? 0 - number : number;
}

UINT GetInteger(LPCSTR section, LPCSTR key, INT fallback, LPCSTR file) {
  char text[30];  // no longer text is looked at
  if (GetString(section, key, "", text, sizeof(text), file) == 0) {
    return static_cast<UINT>(fallback);
  }
  return ParseInteger(text);
}

}  // namespace

UINT WINAPI GetProfileIntA(LPCSTR section, LPCSTR key, INT fallback) {
  if (EndableCallFails("GetProfileIntA")) return static_cast<UINT>(fallback);
  return GetInteger(section, key, fallback, kSystemProfile);
}

DWORD WINAPI GetProfileStringA(LPCSTR section, LPCSTR key, LPCSTR fallback, LPSTR buffer,
                               DWORD size) {
  if (!EndableCallFails("GetProfileStringA"))
    return GetString(section, key, fallback, buffer, size, kSystemProfile);
  if (buffer == nullptr || size == 0) return 0;
  return GiveText(fallback == nullptr ? "" : fallback, buffer, size);
}

UINT WINAPI GetPrivateProfileIntA(LPCSTR section, LPCSTR key, INT fallback, LPCSTR file) {
  if (EndableCallFails("GetPrivateProfileIntA")) return static_cast<UINT>(fallback);
  return GetInteger(section, key, fallback, file);
}

DWORD WINAPI GetPrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR fallback, LPSTR buffer,
                                      DWORD size, LPCSTR file) {
  if (!EndableCallFails("GetPrivateProfileStringA")) {
    return GetString(section, key, fallback, buffer, size, file);
  }
  // Also when it fails the default is what the buffer holds.
  if (buffer == nullptr || size == 0) return 0;
  return GiveText(fallback == nullptr ? "" : fallback, buffer, size);
}

DWORD WINAPI GetPrivateProfileSectionA(LPCSTR section, LPSTR buffer, DWORD size, LPCSTR file) {
  if (EndableCallFails("GetPrivateProfileSectionA")) {
    if (buffer != nullptr && size != 0) buffer[0] = '\0';
    return 0;
  }
  if (section == nullptr || buffer == nullptr || size == 0) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  return GiveList(SectionLines(ReadProfile(file)->Find(section)), buffer, size);
}
