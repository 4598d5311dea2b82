// The private-profile functions. The answers are those of the NT family as Wine gives them; Windows
// 95/98/Me answer alike, but stop near 32 KB.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

class PrivateProfileContract : public testing::Test {
 protected:
  Place place;
};

// Room behind the buffer that no call may touch.
constexpr std::size_t kGuard = 16;

struct Buffer {
  explicit Buffer(std::size_t room) : size(room), bytes(room + kGuard, '~') {}
  // The number and the bytes up to the terminating zero, of a cut list up to its second one (the
  // number leaves one or both of them out).
  std::string Answer(DWORD result, bool list = false) const {
    if (std::any_of(bytes.begin() + static_cast<std::ptrdiff_t>(size), bytes.end(),
                    [](char c) { return c != '~'; })) {
      return "wrote beyond its buffer";
    }
    std::size_t length = result + 1;
    const bool ends = result != 0 && bytes[result - 1] == 0;
    if (list && result + 2 == size && !ends) ++length;
    return std::to_string(result) + " " + Visible(bytes.substr(0, std::min(length, size)));
  }
  std::size_t size;
  std::string bytes;
};

std::string ReadString(const std::string& file, const char* section, const char* key,
                       const char* fallback, DWORD size) {
  Buffer buffer(size);
  const DWORD result =
      GetPrivateProfileStringA(section, key, fallback, buffer.bytes.data(), size, file.c_str());
  return buffer.Answer(result);
}

std::string ReadSection(const std::string& file, const char* section, DWORD size) {
  Buffer buffer(size);
  const DWORD result = GetPrivateProfileSectionA(section, buffer.bytes.data(), size, file.c_str());
  return buffer.Answer(result, true);
}

// How one line of a section reads.
TEST_F(PrivateProfileContract, Lines) {
  static constexpr struct {
    const char* line;
    const char* key;
    const char* expected;
  } kRows[] = {{"key=value", "key", "5 value|"},
               {"Key=Kept As Is", "kEY", "10 Kept As Is|"},
               {" \t key of two \t = \t value \t ", "key of two", "5 value|"},
               {"key=value", " key\t", "5 value|"},
               {"key=\"quoted  text\"", "key", "12 quoted  text|"},
               {"key=  \"  kept  \"  ", "key", "8   kept  |"},
               {"key=\"a\"b\"", "key", "3 a\"b|"},
               {"key=\"open", "key", "5 \"open|"},
               {"key=close\"", "key", "6 close\"|"},
               {"key=\"\"", "key", "0 |"},
               {"key=\"", "key", "1 \"|"},
               {"key=", "key", "0 |"},
               {"key=   ", "key", "0 |"},
               {"key", "key", "1 d|"},
               {"other=value", "key", "1 d|"},
               {"key=a=b=c", "key", "5 a=b=c|"},
               {";key=by name", ";key", "7 by name|"},
               {"  ;key=by name", ";key", "7 by name|"},
               {"key=first\r\nkey=second", "key", "5 first|"},
               {"umlaut\xE4=\xF6", "umlaut\xE4", "1 \\xF6|"}};
  for (const auto& row : kRows) {
    place.MakeFile("line.ini", std::string("[Section]\r\n") + row.line + "\r\n");
    ExpectAnswer(row.line, row.expected,
                 ReadString(place.Path("line.ini"), "Section", row.key, "d", 260));
  }
}

constexpr char kSections[] =
    "key=0\r\n"
    "  [Indented]\r\n"
    "key=1\r\n"
    "[After] text after it\r\n"
    "key=2\r\n"
    "[Fi]ve]\r\n"
    "key=3\r\n"
    "[ Blanks ]\r\n"
    "key=4\r\n"
    "[Joins]\r\n"
    "key=5\r\n"
    "[Open\r\n"
    "more=6\r\n"
    "[Same]\r\n"
    "key=7\r\n"
    "[Empty]\r\n"
    "[SAME]\r\n"
    "key=8\r\n"
    "more=9\r\n"
    "[List]\r\n"
    "alpha=1\r\n"
    "  beta  =  2  \r\n"
    "\r\n"
    "; comment\r\n"
    "   ; indented comment\r\n"
    "bare line\r\n"
    "quoted=\"kept\"\r\n"
    "alpha=again\r\n"
    "tail=val ; tail\r\n"
    "empty=\r\n"
    "[Short]\r\n"
    "a=12345\r\n"
    "bc=6\r\n"
    "[Last]\r\n"
    "key=end";

TEST_F(PrivateProfileContract, String) {
  static constexpr struct {
    const char* section;
    const char* key;
    const char* fallback;
    DWORD size;
    const char* expected;
  } kRows[] = {{"Indented", "key", "d", 260, "1 1|"},
               {"After", "key", "d", 260, "1 2|"},
               {"Fi]ve", "key", "d", 260, "1 3|"},
               {"Fi", "key", "d", 260, "1 d|"},
               {"Blanks", "key", "d", 260, "1 4|"},
               {" Joins\t", "KEY", "d", 260, "1 5|"},
               {"joins", "more", "d", 260, "1 6|"},
               {"Open", "more", "d", 260, "1 d|"},
               {"Same", "key", "d", 260, "1 7|"},
               {"Same", "more", "d", 260, "1 d|"},
               {"Last", "key", "d", 260, "3 end|"},
               // Defaults.
               {"Last", "missing", "default", 260, "7 default|"},
               {"Missing", "key", "default", 260, "7 default|"},
               {"Last", "missing", "  blanks  ", 260, "8   blanks|"},
               {"Last", "missing", "\"quotes\"", 260, "6 quotes|"},
               {"Last", "missing", "", 260, "0 |"},
               {"Last", "missing", nullptr, 260, "0 |"},
               // Short buffers.
               {"Short", "a", "d", 6, "5 12345|"},
               {"Short", "a", "d", 5, "4 1234|"},
               {"Short", "a", "d", 0, "0 "},
               {"List", "quoted", "d", 3, "2 ke|"},
               {"Last", "missing", "default", 4, "3 def|"}};
  place.MakeFile("odd.ini", kSections);
  for (const auto& row : kRows) {
    ExpectAnswer(std::string("[") + row.section + "] " + row.key + ", " +
                     (row.fallback ? row.fallback : "(none)") + ", " + std::to_string(row.size),
                 row.expected,
                 ReadString(place.Path("odd.ini"), row.section, row.key, row.fallback, row.size));
  }
}

TEST_F(PrivateProfileContract, Section) {
  static constexpr char kList[] =
      "74 alpha=1|beta=2|bare line|quoted=\"kept\"|alpha=again|tail=val ; tail|empty=||";
  static constexpr struct {
    const char* section;
    DWORD size;
    const char* expected;
  } kRows[] = {{"List", 260, kList},
               {"lIST", 260, kList},
               {"Short", 260, "13 a=12345|bc=6||"},
               {"Short", 14, "12 a=12345|bc=6||"},
               {"Short", 2, "0 ||"},
               {"Joins", 260, "19 key=5|[Open|more=6||"},
               {"Last", 260, "8 key=end||"},
               {"Empty", 260, "0 |"},
               {"Missing", 260, "0 |"}};
  place.MakeFile("odd.ini", kSections);
  for (const auto& row : kRows) {
    ExpectAnswer(std::string("[") + row.section + "], " + std::to_string(row.size), row.expected,
                 ReadSection(place.Path("odd.ini"), row.section, row.size));
  }
}

TEST_F(PrivateProfileContract, Integer) {
  static constexpr struct {
    const char* text;
    int expected;
  } kRows[] = {{"=12abc", 12},
               {"=1,5", 1},
               {"=1 2", 1},
               {"=5;c", 5},
               {"=-5", -5},
               {"=+9", 9},
               {"=--3", 0},
               {"=-  4", 0},
               {"=0x1F", 31},
               {"=0X1f", 0},
               {"=-0x10", -16},
               {"=0x", 0},
               {"=0xFFFFFFFF", -1},
               {"=0o17", 15},
               {"=010", 10},
               {"=\"33\"", 33},
               {"='44'", 44},
               {"=abc", 0},
               {"=4294967295", -1},
               {"=4294967296", 0},
               {"=-2147483649", 2147483647},
               {"=   7", 7},
               {"=", -77},
               {"=\"\"", -77},
               {"", -77}};
  for (const auto& row : kRows) {
    place.MakeFile("number.ini", std::string("[Section]\r\nKey") + row.text + "\r\n");
    const UINT came =
        GetPrivateProfileIntA("section", "key", -77, place.Path("number.ini").c_str());
    ExpectAnswer(std::string("Key") + row.text, row.expected, static_cast<int>(came));
    // The file has changed under the same name: nothing may be remembered of it.
    place.MakeFile("number.ini", "");
    const UINT fallback =
        GetPrivateProfileIntA("section", "key", -78, place.Path("number.ini").c_str());
    ExpectAnswer("emptied file", -78, static_cast<int>(fallback));
  }
}

// Line ends, byte-order marks and zero bytes: what `Key` of [Section] and the whole section read
// as.
TEST_F(PrivateProfileContract, ShapesOfFiles) {
  using namespace std::string_literals;
  static const struct {
    const char* name;
    std::string content;
    const char* text;
    const char* section;
  } kRows[] = {
      {"CR and LF", "[Section]\r\nKey=1\r\nB=2\r\n"s, "1 1|", "10 Key=1|B=2||"},
      {"LF only", "[Section]\nKey=1\nB=2\n"s, "1 1|", "10 Key=1|B=2||"},
      {"CR only", "[Section]\rKey=1\rB=2\r"s, "1 1|", "10 Key=1|B=2||"},
      {"no final line end", "[Section]\r\nKey=1"s, "1 1|", "6 Key=1||"},
      {"blank lines", "\r\n\r\n[Section]\r\n\r\n \t\r\nKey=1\r\n\r\n"s, "1 1|", "6 Key=1||"},
      {"header alone", "[Section]"s, "1 d|", "0 |"},
      {"UTF-8 mark", "\xEF\xBB\xBF[Section]\r\nKey=\xC3\xA4\r\n"s, "1 \\xE4|", "6 Key=\\xE4||"},
      {"UTF-16 mark", "\xFF\xFE[\0S\0e\0c\0t\0i\0o\0n\0]\0\r\0\n\0K\0e\0y\0=\0\xE4\0\r\0\n\0"s,
       "1 \\xE4|", "6 Key=\\xE4||"},
      {"no mark, high bytes", "[Section]\r\nKey=\xC3\xA4\r\n"s, "2 \\xC3\\xA4|",
       "7 Key=\\xC3\\xA4||"},
      {"zero in a value", "[Section]\r\nKey=1\0x\r\nB=2\r\n"s, "1 1|", "10 Key=1|B=2||"},
      {"zero before the section", "\0x\r\n[Section]\r\nKey=1\r\n"s, "1 1|", "6 Key=1||"},
      {"zeros at the end", "[Section]\r\nKey=1\r\n\0\0\0"s, "1 1|", "6 Key=1||"},
      {"Ctrl-Z at the end", "[Section]\r\nKey=1\r\n\x1A"s, "1 1|", "6 Key=1||"},
      {"0 bytes", ""s, "1 d|", "0 |"},
      {"no section at all", "Key=1\r\n"s, "1 d|", "0 |"}};
  for (const auto& row : kRows) {
    place.MakeFile("shape.ini", row.content);
    ExpectAnswer(std::string(row.name) + ", string", row.text,
                 ReadString(place.Path("shape.ini"), "Section", "Key", "d", 260));
    ExpectAnswer(std::string(row.name) + ", section", row.section,
                 ReadSection(place.Path("shape.ini"), "Section", 260));
  }
}

TEST_F(PrivateProfileContract, FilesThatCanNotBeRead) {
  place.MakeFolder("folder.ini");
  place.MakeFile("here.ini", "[Section]\r\nKey=1\r\n");
  const std::string kPaths[] = {
      place.Path("absent.ini"),
      place.Path("absent\\here.ini"),
      place.Path("folder.ini"),
      place.Path("bad?name.ini"),
      place.Path("here.ini\\deeper.ini"),
      "here.ini",  // a bare name is looked for in the Windows folder, not in the current one
  };
  for (const std::string& path : kPaths) {
    ExpectAnswer(path + ", string", "1 d|", ReadString(path, "Section", "Key", "d", 260));
    ExpectAnswer(path + ", section", "0 |", ReadSection(path, "Section", 260));
    ExpectAnswer(path + ", integer", 7,
                 static_cast<int>(GetPrivateProfileIntA("Section", "Key", 7, path.c_str())));
  }
  ExpectAnswer("relative with a folder", "1 1|",
               ReadString(".\\here.ini", "Section", "Key", "d", 260));
}

}  // namespace
}  // namespace contract
