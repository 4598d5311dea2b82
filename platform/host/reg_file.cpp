#include "platform/host/reg_file.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "platform/host/code_page.h"

namespace host {
namespace {

constexpr std::string_view kHeader4 = "REGEDIT4";
constexpr std::string_view kHeader5 = "Windows Registry Editor Version 5.00";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";  // as it is in UTF-8
constexpr std::size_t kLongestKeyName = 255;

constexpr bool IsBlank(char character) {
  return character == ' ' || character == '\t';
}

int HexDigit(char character) {
  if (character >= '0' && character <= '9') return character - '0';
  const char lower = static_cast<char>(character | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::size_t LineAt(std::string_view text, std::size_t position) {
  return 1 + static_cast<std::size_t>(std::ranges::count(text.substr(0, position), '\n'));
}

// How many units of 16 bits the text takes; each byte of 8-bit text stands for one.
std::size_t CountUnits(std::string_view text, bool is_utf8) {
  if (!is_utf8) return text.size();
  std::size_t count = 0;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    count += byte >= 0xF0 ? 2 : (byte & 0xC0) != 0x80;
  }
  return count;
}

bool HasLongPart(std::string_view path, bool is_utf8) {
  while (true) {
    const std::size_t end = path.find('\\');
    if (CountUnits(path.substr(0, end), is_utf8) > kLongestKeyName) return true;
    if (end == std::string_view::npos) return false;
    path.remove_prefix(end + 1);
  }
}

// Letters that stand for the bytes and that have no other case than their own.
std::string Spelt(std::string_view bytes) {
  std::string letters;
  for (const char byte : bytes) {
    letters += static_cast<char>('A' + (byte >> 4 & 0xF));
    letters += static_cast<char>('A' + (byte & 0xF));
  }
  return letters;
}

class RegParser {
 public:
  // The text is UTF-8, or else in the code page, without byte-order mark.
  RegParser(std::string_view text, bool is_utf8, Registry& registry)
      : text_(text), is_utf8_(is_utf8), registry_(registry) {}

  std::optional<LoadError> Parse() {
    if (ReadHeader()) {
      while (!AtEnd() && ReadLine()) {
      }
    }
    return std::move(error_);
  }

 private:
  // All of these answer false when the text is wrong at that place; error_ then says why.
  bool Fail(std::string reason) { return FailAt(position_, std::move(reason)); }
  bool FailAt(std::size_t position, std::string reason) {
    error_ = LoadError{"", LineAt(text_, position), std::move(reason)};
    return false;
  }

  bool ReadHeader();
  bool ReadLine();
  bool ReadKeyLine();
  bool ReadValueLine();
  bool ReadData(const std::string& name);
  bool ReadTextData(const std::string& name);
  bool ReadDwordData(const std::string& name);
  bool ReadHexData(const std::string& name);
  bool ReadHexBytes(std::string& bytes);
  bool ReadQuoted(std::string& text);
  bool ReadLineEnd();

  bool AtEnd() const { return position_ == text_.size(); }
  char Peek() const { return AtEnd() ? '\0' : text_[position_]; }
  std::string_view Rest() const { return text_.substr(position_); }
  bool Take(std::string_view word) {
    if (!Rest().starts_with(word)) return false;
    position_ += word.size();
    return true;
  }
  void SkipBlanks() {
    while (IsBlank(Peek()))
      ++position_;
  }
  bool AtLineEnd() const {
    return AtEnd() || Peek() == '\n' || Peek() == ';' || Rest().starts_with("\r\n");
  }
  bool TakeLineBreak() { return Take("\n") || Take("\r\n"); }
  // The rest of the line without its end; the position comes to stand on the end.
  std::string_view TakeRestOfLine();
  // Hexadecimal digits, at most the given number; how many there were.
  std::size_t TakeHexNumber(std::size_t most, DWORD& number);

  // What the registry keeps of a name or a path in the file, and what an error shows of it.
  std::string Name(std::string_view raw) const;
  std::string KeyPath(std::string_view raw) const;
  std::string Shown(std::string_view raw) const;

  std::string_view text_;
  std::size_t position_ = 0;
  const bool is_utf8_;
  bool is_version_5_ = false;
  Registry& registry_;
  RegistryKey* key_ = nullptr;  // of the last key line; none after a deletion
  std::optional<LoadError> error_;
};

bool RegParser::ReadHeader() {
  std::string_view line = TakeRestOfLine();
  while (!line.empty() && IsBlank(line.back()))
    line.remove_suffix(1);
  is_version_5_ = line == kHeader5;
  if (!is_version_5_ && line != kHeader4) {
    return FailAt(0,
                  "the first line is neither \"REGEDIT4\" nor \"" + std::string(kHeader5) + "\"");
  }
  return ReadLineEnd();
}

bool RegParser::ReadLine() {
  SkipBlanks();
  if (Peek() == '[') return ReadKeyLine();
  if (Peek() == '"' || Peek() == '@') return ReadValueLine();
  for (const std::string_view beginning : {kHeader4, kHeader5, kByteOrderMark}) {
    if (Rest().starts_with(beginning)) {
      return Fail("another export begins here; each belongs in a file of its own");
    }
  }
  return ReadLineEnd();
}

std::string_view RegParser::TakeRestOfLine() {
  std::string_view line = Rest();
  line = line.substr(0, line.find('\n'));
  if (line.ends_with('\r')) line.remove_suffix(1);
  position_ += line.size();
  return line;
}

bool RegParser::ReadLineEnd() {
  SkipBlanks();
  if (Peek() == ';') TakeRestOfLine();
  if (TakeLineBreak() || AtEnd()) return true;
  if (Rest() == "\r") return Take("\r");
  return Fail("this is no key, value or comment, or has something after its end");
}

// A key's name may hold brackets: the last one of the line ends it.
bool RegParser::ReadKeyLine() {
  const std::size_t begin = position_;
  const std::string_view line = TakeRestOfLine();
  const std::size_t end = line.rfind(']');
  if (end == std::string_view::npos) return FailAt(begin, "the key has no closing bracket");
  std::string_view path = line.substr(1, end - 1);
  const bool deletion = path.starts_with('-');
  if (deletion) path.remove_prefix(1);
  const bool has_empty_part = path.ends_with('\\') || path.find("\\\\") != std::string_view::npos;
  const std::string_view hive_name = path.substr(0, path.find('\\'));
  path.remove_prefix(std::min(path.size(), hive_name.size() + 1));
  const std::optional<Hive> hive = HiveByName(hive_name);
  if (!hive) return FailAt(begin, "\"" + Shown(hive_name) + "\" is no hive");
  if (has_empty_part) return FailAt(begin, "a key without a name: there is a backslash too many");
  if (HasLongPart(path, is_utf8_))
    return FailAt(begin, "a key's name has more than 255 characters");
  key_ = nullptr;
  if (deletion) {
    if (path.empty()) return FailAt(begin, "a hive cannot be deleted");
    Registry::RemoveBelow(*registry_.Root(*hive), KeyPath(path));
  } else {
    key_ = &Registry::MakeBelow(registry_.MakeRoot(*hive), KeyPath(path));
  }
  position_ = begin + end + 1;
  return ReadLineEnd();
}

bool RegParser::ReadValueLine() {
  if (key_ == nullptr) return Fail("a value without a key before it");
  std::string name;
  if (!Take("@")) {
    if (!ReadQuoted(name)) return false;
    name = Name(name);
  }
  SkipBlanks();
  if (!Take("=")) return Fail("\"=\" is missing after the value's name");
  SkipBlanks();
  return ReadData(name) && ReadLineEnd();
}

bool RegParser::ReadData(const std::string& name) {
  if (Peek() == '"') return ReadTextData(name);
  if (Take("dword:")) return ReadDwordData(name);
  if (Take("hex")) return ReadHexData(name);
  if (!Take("-")) return Fail("the data is no text, \"dword:\", \"hex:\", \"hex(...):\" or \"-\"");
  key_->values.Remove(name);
  return true;
}

bool RegParser::ReadTextData(const std::string& name) {
  std::string text;
  if (!ReadQuoted(text)) return false;
  if (is_utf8_) text = CodePageFromUtf8WithMarks(text);
  text.push_back('\0');
  key_->SetValue(name, kRegistryText, std::move(text));
  return true;
}

// What stands between the quotes, with its escapes resolved.
bool RegParser::ReadQuoted(std::string& text) {
  const std::size_t begin = position_;
  ++position_;
  while (true) {
    const std::size_t stop = std::min(text_.find_first_of("\"\\", position_), text_.size());
    text.append(text_, position_, stop - position_);
    position_ = stop;
    if (AtEnd()) return FailAt(begin, "the text that begins here has no closing quote");
    if (Take("\"")) return true;
    ++position_;
    if (Peek() != '"' && Peek() != '\\') return Fail("\"\\\" in a text stands for nothing here");
    text.push_back(text_[position_++]);
  }
}

bool RegParser::ReadDwordData(const std::string& name) {
  DWORD number = 0;
  if (TakeHexNumber(8, number) == 0 || HexDigit(Peek()) >= 0) {
    return Fail("\"dword:\" takes 1 to 8 hexadecimal digits");
  }
  std::string data;
  for (unsigned shift = 0; shift < 32; shift += 8)
    data += static_cast<char>(number >> shift);
  key_->SetValue(name, kRegistryDword, std::move(data));
  return true;
}

bool RegParser::ReadHexData(const std::string& name) {
  DWORD type = kRegistryBinary;
  if (Take("(")) {
    if (TakeHexNumber(8, type) == 0 || !Take(")")) {
      return Fail("\"hex(\" takes 1 to 8 hexadecimal digits and \")\"");
    }
  }
  std::string bytes;
  if (!Take(":")) return Fail("\":\" is missing after \"hex\"");
  if (!ReadHexBytes(bytes)) return false;
  if (is_version_5_ && IsRegistryText(type)) bytes = CodePageFromUtf16(bytes);
  key_->SetValue(name, type, std::move(bytes));
  return true;
}

bool RegParser::ReadHexBytes(std::string& bytes) {
  bool after_byte = false;
  while (true) {
    SkipBlanks();
    DWORD byte = 0;
    if (Take("\\")) {
      SkipBlanks();
      if (!TakeLineBreak()) return Fail("no line follows the \"\\\", or something stands after it");
    } else if (after_byte && Take(",")) {
      after_byte = false;
    } else if (!after_byte && TakeHexNumber(2, byte) != 0) {
      bytes.push_back(static_cast<char>(byte));
      after_byte = true;
    } else if (AtLineEnd() && (after_byte || bytes.empty())) {
      return true;
    } else {
      return Fail(after_byte ? "\",\" is missing between bytes" : "a byte is missing or malformed");
    }
  }
}

std::size_t RegParser::TakeHexNumber(std::size_t most, DWORD& number) {
  number = 0;
  std::size_t count = 0;
  for (; count < most && HexDigit(Peek()) >= 0; ++count, ++position_) {
    number = number << 4 | static_cast<DWORD>(HexDigit(Peek()));
  }
  return count;
}

// Each part of a path is a name of its own, of which the registry keeps what cannot be shown.
std::string RegParser::KeyPath(std::string_view raw) const {
  if (!is_utf8_) return std::string(raw);
  std::string path;
  while (true) {
    const std::size_t end = raw.find('\\');
    path += Name(raw.substr(0, end));
    if (end == std::string_view::npos) return path;
    path += '\\';
    raw.remove_prefix(end + 1);
  }
}

std::string RegParser::Name(std::string_view raw) const {
  if (!is_utf8_) return std::string(raw);
  if (std::optional<std::string> name = CodePageFromUtf8(raw)) return *std::move(name);
  return CodePageFromUtf8WithMarks(raw) + '\0' + Spelt(raw);
}

std::string RegParser::Shown(std::string_view raw) const {
  return is_utf8_ ? std::string(raw) : Utf8FromCodePage(raw);
}

// The text of the file without its byte-order mark, decoded into `decoded` when it is 16-bit text.
std::optional<LoadError> TextOfFile(std::string_view bytes, std::string& decoded,
                                    std::string_view& text, bool& is_utf8) {
  text = bytes;
  const auto fail_at = [&text](std::size_t position, std::string reason) {
    return LoadError{"", LineAt(text, position), std::move(reason)};
  };
  if (bytes.starts_with("\xFE\xFF")) return fail_at(0, "16-bit text with the high byte first");
  if (bytes.starts_with("\xFF\xFE")) {
    decoded = Utf8FromUtf16(bytes.substr(2));
    text = decoded;
    is_utf8 = true;
    if (bytes.size() % 2 != 0) return fail_at(text.size(), "16-bit text that ends in half a unit");
  } else if (bytes.starts_with(kByteOrderMark)) {
    text.remove_prefix(kByteOrderMark.size());
    is_utf8 = true;
    const std::size_t end = Utf8Length(text);
    if (end != text.size()) return fail_at(end, "the file is marked as UTF-8, and this is none");
  } else {
    is_utf8 = bytes.starts_with(kHeader5) && Utf8Length(bytes) == bytes.size();
  }
  const std::size_t zero = text.find('\0');
  if (zero != std::string_view::npos) return fail_at(zero, "a zero character");
  return std::nullopt;
}

// `bytes` may be let go once the text is decoded: it is emptied then.
template <typename Forget>
std::optional<LoadError> ReadBytes(std::string_view bytes, Registry& registry, Forget forget) {
  std::string decoded;
  std::string_view text;
  bool is_utf8 = false;
  if (auto error = TextOfFile(bytes, decoded, text, is_utf8)) return error;
  if (text.data() == decoded.data()) forget();
  const std::lock_guard lock(registry.mutex());
  return RegParser(text, is_utf8, registry).Parse();
}

}  // namespace

std::optional<LoadError> ReadRegText(std::string_view bytes, Registry& registry) {
  return ReadBytes(bytes, registry, [] {});
}

std::optional<LoadError> ReadRegFile(const std::filesystem::path& file, Registry& registry) {
  const std::string name = file.filename().string();
  std::error_code failure;
  const std::uintmax_t size = std::filesystem::file_size(file, failure);
  std::ifstream stream(file, std::ios::binary);
  if (failure || !stream) return LoadError{name, 0, "it cannot be read"};
  auto bytes = std::make_unique_for_overwrite<char[]>(size);
  if (!stream.read(bytes.get(), static_cast<std::streamsize>(size))) {
    return LoadError{name, 0, "it cannot be read"};
  }
  auto error = ReadBytes({bytes.get(), size}, registry, [&bytes] { bytes.reset(); });
  if (error) error->file = name;
  return error;
}

}  // namespace host
