#include "util/text.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/host/machine.h"
#include "util/numbers.h"
#include "util/paths.h"

namespace hostscope {
namespace {

class Texts : public testing::Test {
 protected:
  host::Machine machine_;
  host::UseMachine use_{machine_};
};

inline constexpr int kNone = -1;

TEST_F(Texts, Searches) {
  constexpr struct {
    const char* text;
    const char* needle;
    int n;
    int first;
    int last;
  } kRows[] = {
      {"a,b,c", ",", kWholeText, 1, 3},
      {"a,b,c", ",", 3, 1, 1},
      {"a,b,c", ",", 1, kNone, kNone},
      {"a,b,c", ",", 0, kNone, kNone},
      {"a,b,c", ",", 99, 1, 3},
      {"abcabc", "abc", kWholeText, 0, 3},
      {"abcabc", "abc", 5, 0, 0},
      {"abcabc", "abc", 2, kNone, kNone},
      {"abcabc", "ABC", kWholeText, kNone, kNone},
      {"aaaa", "aa", kWholeText, 0, 2},
      {"text", "", kWholeText, 0, 4},
      {"", "", kWholeText, kNone, kNone},
      {"", "x", kWholeText, kNone, kNone},
      {"short", "much longer", kWholeText, kNone, kNone},
      {"a\0b", "b", 3, kNone, kNone},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(std::string(row.text) + " / " + row.needle + " / " + std::to_string(row.n));
    const char* const first = FindText(row.text, row.needle, row.n);
    const char* const last = FindLastText(row.text, row.needle, row.n);
    EXPECT_EQ(first == nullptr ? kNone : first - row.text, row.first);
    EXPECT_EQ(last == nullptr ? kNone : last - row.text, row.last);
    if (TextLength(row.needle) != 1) continue;
    const char* const first_character = FindCharacter(row.text, row.needle[0], row.n);
    const char* const last_character = FindLastCharacter(row.text, row.needle[0], row.n);
    EXPECT_EQ(first_character == nullptr ? kNone : first_character - row.text, row.first);
    EXPECT_EQ(last_character == nullptr ? kNone : last_character - row.text, row.last);
  }
}

TEST_F(Texts, SearchesNeverLookPastTheBound) {
  // Not terminated: a look at position 3 is a fault that the sanitizer shows.
  const auto text = std::make_unique<char[]>(3);
  text[0] = text[1] = text[2] = 'x';
  EXPECT_EQ(FindText(text.get(), "y", 3), nullptr);
  EXPECT_EQ(FindLastText(text.get(), "xxy", 3), nullptr);
  EXPECT_EQ(FindCharacter(text.get(), 'y', 3), nullptr);
  char field[3] = {'?', '?', '?'};
  CopyText(field, 3, text.get());
  EXPECT_STREQ(field, "xx");
}

TEST_F(Texts, NothingInAnAbsentText) {
  EXPECT_EQ(FindText(nullptr, "x"), nullptr);
  EXPECT_EQ(FindLastCharacter(nullptr, 'x'), nullptr);
  EXPECT_EQ(TextLength(nullptr), 0U);
  EXPECT_TRUE(SameText(nullptr, ""));
  char field[4] = "abc";
  CopyText(field, nullptr);
  EXPECT_STREQ(field, "");
}

TEST_F(Texts, DuplicatesHaveRoomAndMayFail) {
  OwnedText copy = DuplicateText("abc", 2);
  EXPECT_STREQ(copy.c_str(), "abc");
  EXPECT_EQ(copy.capacity(), 6U);
  copy.data()[3] = 'd';
  copy.data()[4] = 'e';
  EXPECT_STREQ(copy.c_str(), "abcde");
  machine_.faults.FailNth("HeapAlloc", 1, ERROR_NOT_ENOUGH_MEMORY);
  const OwnedText none = DuplicateText("abc");
  EXPECT_FALSE(none.present());
  EXPECT_STREQ(none.c_str(), "");
}

TEST_F(Texts, ProfileNumbers) {
  constexpr struct {
    const char* text;
    std::uint32_t expected;
  } kRows[] = {
      {"0x10", 16},       {"0X1fz", 31},
      {"0x", 0},          {"010", 8},
      {"0778", 63},       {"08", 8},
      {"09", 9},          {"-1", 4294967295U},
      {"-", 0},           {"--1", 0},
      {"-0x10", 0},       {"+5", 0},
      {" 5", 0},          {"12abc", 12},
      {"abc", 0},         {"", 0},
      {"4294967296", 0},  {"4294967301", 5},
      {"0x100000002", 2}, {"0", 0},
      {"00", 0},          {"-010", 4294967286U},
  };
  for (const auto& row : kRows)
    EXPECT_EQ(ParseProfileNumber(row.text), row.expected) << row.text;
}

TEST_F(Texts, JoinedPaths) {
  constexpr struct {
    const char* folder;
    const char* name;
    const char* expected;
  } kRows[] = {
      {"C:\\A", "b.ini", "C:\\A\\b.ini"},
      {"C:\\A\\", "b.ini", "C:\\A\\b.ini"},
      {"C:\\A\\", "\\b.ini", "C:\\A\\b.ini"},
      {"C:\\A/", "sub\\b.ini", "C:\\A\\sub\\b.ini"},
      {"C:\\A", "\\\\b", "C:\\A\\\\b"},
      {"C:\\A\\\\", "b", "C:\\A\\\\b"},
      {"C:\\A", "D:\\x.ini", "D:\\x.ini"},
      {"C:\\A", "x:", "x:"},
      {"C:\\A", "", "C:\\A"},
      {"C:\\A\\", "\\", "C:\\A"},
      {"", "b.ini", "\\b.ini"},
      {"", "", ""},
      {"C:", "b", "C:\\b"},
  };
  for (const auto& row : kRows)
    EXPECT_STREQ(JoinPath(row.folder, row.name).c_str(), row.expected)
        << row.folder << " + " << row.name;
}

TEST_F(Texts, ProgramFolder) {
  machine_.module_path = "C:\\Program Files\\Hostscope\\hscope.exe";
  EXPECT_STREQ(ProgramFolder().c_str(), "C:\\Program Files\\Hostscope");
  machine_.module_path = "hscope.exe";
  EXPECT_STREQ(ProgramFolder().c_str(), "hscope.exe");
  machine_.faults.FailNth("GetModuleFileNameA", 1, ERROR_ACCESS_DENIED);
  EXPECT_FALSE(ProgramFolder().present());
}

}  // namespace
}  // namespace hostscope
