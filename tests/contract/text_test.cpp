// Formatting, order and case of texts, in code page 1252.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

class TextContract : public testing::Test {
 private:
  Place place_;
};

constexpr std::size_t kLineRoom = 4096;

// Formats and compares "result text".
template <typename... Arguments>
void ExpectLine(const char* expected, const char* format, Arguments... arguments) {
  std::string line(kLineRoom, '~');
  const int result = wsprintfA(line.data(), format, arguments...);
  ExpectAnswer(format, expected, std::to_string(result) + " " + Visible(line.c_str()));
}

TEST_F(TextContract, Format) {
  ExpectLine("5 plain", "plain");
  ExpectLine("0 ", "%s", "");
  ExpectLine("3 42%", "%u%%", 42u);
  ExpectLine("28 Computer name              <", "%-27s<", "Computer name");
  ExpectLine("7 longer<", "%-4s<", "longer");
  ExpectLine("7    abc<", "%6s<", "abc");
  ExpectLine("4 abc<", "%.3s<", "abcdef");
  ExpectLine("7 abc   <", "%-6.3s<", "abcdef");
  ExpectLine("6 (null)", "%s", static_cast<char*>(nullptr));
  ExpectLine("9 (null)  <", "%-8s<", static_cast<char*>(nullptr));
  ExpectLine("3 \\xE4\\x80\\xFF", "%s", "\xE4\x80\xFF");
  ExpectLine("4 text", "%hs", "text");
  ExpectLine("3 CD:", "%c%c:", 'C', 'D');
  ExpectLine("6 -12 12", "%d %d", -12, 12);
  ExpectLine("2 -1", "%i", -1);
  ExpectLine("11 -2147483648", "%ld", DWORD{0x80000000});
  ExpectLine("10 4294967295", "%u", DWORD{0xFFFFFFFF});
  ExpectLine("3 1:0", "%lu:%lu", DWORD{1}, DWORD{0});
  ExpectLine("6 09:123", "%02u:%02u", 9u, 123u);
  ExpectLine("6    42<", "%5u<", 42u);
  ExpectLine("6 42   <", "%-5u<", 42u);
  ExpectLine("8 -0000012", "%08d", -12);
  ExpectLine("4 0042", "%.4u", 42u);
  ExpectLine("9 abcd ABCD", "%x %X", 0xABCDu, 0xABCDu);
  ExpectLine("4 0x1f", "%#x", 0x1Fu);
  ExpectLine("4 001f", "%04x", 0x1Fu);
  ExpectLine("8 0000BEEF", "%08lX", DWORD{0xBEEF});
  ExpectLine("8 0000BEEF", "%08.8lX", DWORD{0xBEEF});
  ExpectLine("2 42", "%hu", 42u);
  ExpectLine("10 a1b2c3d4e5", "%s%d%s%d%s%d%s%d%s%d", "a", 1, "b", 2, "c", 3, "d", 4, "e", 5);
  ExpectLine("52 Disk (total 1)             Size           :  512 b\\x0D\\x0A",
             "%-27s%-15s:  %u b\r\n", "Disk (total 1)", "Size", 512u);
}

// The result is published to be the number of characters, without the zero.
constexpr KnownDifference kCounts1024{Platform::kWine, "a full line is answered with 1024"};

// A line ends after 1023 characters and its zero; behind that nothing is written.
TEST_F(TextContract, FormatIsCut) {
  for (const std::size_t length : {1022u, 1023u, 1024u, 2000u, 100000u}) {
    const std::string name = std::to_string(length) + " characters";
    const std::string text(length, 'x');
    std::string line(kLineRoom, '~');
    const std::size_t expected = std::min<std::size_t>(length, 1023);
    ExpectAnswer(name + ", result", expected, wsprintfA(line.data(), "%s", text.c_str()),
                 length < 1023 ? KnownDifference{} : kCounts1024);
    ExpectAnswer(name + ", text", std::string(expected, 'x'), line.c_str());
    ExpectAnswer(name + ", behind it", std::string(kLineRoom - 1024, '~'), line.substr(1024));
  }
}

int Sign(int number) {
  return (number > 0) - (number < 0);
}

// A word sort: hyphen and apostrophe count least, after letters and after case.
TEST_F(TextContract, Order) {
  static constexpr const char* kSorted[] = {
      "",        "_x",    "1.dll",     "10.dll",     "2.dll",       "a b",    "a!b",
      "a(1)",    "a.dll", "A.dll",     "a_b",        "a~1",         "a+b",    "ab",
      "a'b",     "a-b",   "ae",        "b.dll",      "B.dll",       "CO_OP",  "coop",
      "co-op",   "setup", "setup.exe", "setup1.exe", "setup-1.exe", "ws2_32", "ws2help",
      "wsock32", "x",     "-x",        "x-1",        "X1",          "z"};
  for (std::size_t i = 0; i < std::size(kSorted); ++i) {
    for (std::size_t j = 0; j < std::size(kSorted); ++j)
      ExpectAnswer(std::string(kSorted[i]) + " with " + kSorted[j],
                   Sign(static_cast<int>(i) - static_cast<int>(j)),
                   Sign(lstrcmpA(kSorted[i], kSorted[j])));
  }
}

TEST_F(TextContract, OrderOfLetters) {
  static constexpr struct {
    const char* left;
    const char* right;
    int order;
    int without_case;
  } kRows[] = {{"a", "a", 0, 0},         {"a", "A", -1, 0},       {"SETUP.EXE", "setup.exe", 1, 0},
               {"Abc", "aBc", 1, 0},     {"Abc", "abd", -1, -1},  {"a", "\xE4", -1, -1},
               {"\xE4", "b", -1, -1},    {"\xE4", "\xC4", -1, 0}, {"a\xE4", "ab", -1, -1},
               {"z", "\xE9", 1, 1},      {"9", "a", -1, -1},      {"ab", "abc", -1, -1},
               {"WINNT", "winnt", 1, 0}, {"h", "H", -1, 0},       {"?", "a", -1, -1}};
  for (const auto& row : kRows) {
    const std::string name = "\"" + Visible(row.left) + "\" with \"" + Visible(row.right) + "\"";
    ExpectAnswer(name, row.order, Sign(lstrcmpA(row.left, row.right)));
    ExpectAnswer(name + ", exchanged", -row.order, Sign(lstrcmpA(row.right, row.left)));
    ExpectAnswer(name + ", case ignored", row.without_case, Sign(lstrcmpiA(row.left, row.right)));
  }
}

TEST_F(TextContract, MulDivRoundsHalvesAwayFromZero) {
  static constexpr struct {
    int number, numerator, denominator, expected;
  } kRows[] = {
      {8, 96, 72, 11}, {14, 96, 72, 19}, {1, 1, 2, 1}, {0x7FFFFFFF, 2, 1, -1}, {5, 5, 0, -1}};
  for (const auto& row : kRows) {
    ExpectAnswer(std::to_string(row.number) + " * " + std::to_string(row.numerator) + " / " +
                     std::to_string(row.denominator),
                 row.expected, MulDiv(row.number, row.numerator, row.denominator));
  }
}

}  // namespace
}  // namespace contract
