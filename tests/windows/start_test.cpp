// From the command line to the place of the report: which profile is taken, what is said without
// one, the message before the run, and profiles that nobody would write.

#include <gtest/gtest.h>
#include <shlobj.h>

#include <algorithm>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"
#include "tests/windows/expected.h"

namespace drive {
namespace {

const std::vector<std::string> kNoProfile = {"Can not open ini file!", "", kLastLine};
const std::vector<std::string> kNoReport = {"Can not open output file!", "", kLastLine};
const std::vector<std::string> kNoItems = {"", kLastLine};

constexpr char kSigned[] = "[GENERAL]\r\nSign=Hostscope INI file\r\n";

// The list of a run to its end, which a key then closes.
std::vector<std::string> ListOf(const Folder& folder, const Start& start) {
  Program program(folder, start);
  EXPECT_TRUE(program.WaitUntilFinished());
  const auto lines = program.Lines();
  EXPECT_FALSE(program.FindMessageBox());
  TypeKey(program.dialog(), 'X');
  EXPECT_EQ(program.WaitForExit(), 0u);
  return lines;
}

std::string ShellFolder(int id) {
  char path[MAX_PATH] = {};
  SHGetSpecialFolderPathA(nullptr, path, id, FALSE);
  return path;
}

bool IsReport(const std::optional<std::string>& bytes, const Clock& clock) {
  return bytes && clock.IsHeader(bytes->substr(0, bytes->find("\r\n")));
}

const std::vector<std::string> kUsage = {"Usage: hscope [ini] [out]",
                                         "",
                                         "[ini]: Settings file path",
                                         "[out]: Report file output",
                                         "       folder (current by ",
                                         "       default)",
                                         "",
                                         kLastLine};

// What the list shows without a run; any key closes the dialog then.
std::vector<std::string> NoticeOf(const Folder& folder, std::vector<std::string> arguments) {
  Program program(folder, {.arguments = std::move(arguments)});
  EXPECT_TRUE(program.WaitForLine(kLastLine));
  const auto lines = program.Lines();
  EXPECT_FALSE(IsWindowEnabled(program.CheckBox()));
  EXPECT_FALSE(program.IsChecked());
  TypeKey(program.dialog(), VK_SPACE);
  EXPECT_EQ(program.WaitForExit(), 0u);
  EXPECT_FALSE(folder.Read("hscope.txt"));
  return lines;
}

class NoticesOnEveryRelease : public EveryRelease {};

TEST_P(NoticesOnEveryRelease, WithoutAProfileTheListSaysWhy) {
  const Folder folder;
  EXPECT_EQ(NoticeOf(folder, {}),
            (std::vector<std::string>{"Can not find ini file!", "", kLastLine}));
  EXPECT_EQ(NoticeOf(folder, {"?"}), kUsage);
}

INSTANTIATE_TEST_SUITE_P(Notices, NoticesOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

// A profile beside the program is not looked at then, nor is the second argument.
TEST(Notices, AreAskedForInEitherCase) {
  const Folder folder;
  folder.Write("good.ini", ProfileWith("CreateMessageBox=1", "Email=1"));
  EXPECT_EQ(NoticeOf(folder, {"h"}), kUsage);
  EXPECT_EQ(NoticeOf(folder, {"H", "good.ini"}), kUsage);
  for (const char* const letter : {"a", "A"}) {
    const auto credits = NoticeOf(folder, {letter});
    ASSERT_EQ(credits.size(), 5u);
    EXPECT_FALSE(credits[0].empty() || credits[1].empty() || credits[2].empty());
    EXPECT_EQ(credits[3], "");
    EXPECT_EQ(credits[4], kLastLine);
  }
}

TEST(Report, GoesWhereProfileAndArgumentSay) {
  const std::string desktop = ShellFolder(CSIDL_DESKTOPDIRECTORY);
  const std::string documents = ShellFolder(CSIDL_PERSONAL);
  const Folder folder;
  folder.MakeFolder("out");
  const std::string own = folder.path(), out = folder.Path("out");
  const std::string complete = folder.Path("out\\r\xE9sum\xE9.txt");
  struct Row {
    std::string general;
    bool out_argument;
    std::string report;
  };
  const Row rows[] = {
      {"", false, own + "\\hscope.txt"},
      {"OutputFolder=1", true, desktop + "\\hscope.txt"},
      {"OutputFolder=2", true, documents + "\\hscope.txt"},
      {"OutputFolder=x", true, out + "\\hscope.txt"},
      {"ReportFileName=" + complete, false, complete},
      {"ReportFileName=out\\deep.txt", false, out + "\\deep.txt"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.general + (row.out_argument ? " with" : " without") + " an out argument");
    folder.Write("p.ini", "[GENERAL]\r\n" + row.general + "\r\n");
    std::vector<std::string> arguments = {"p.ini"};
    if (row.out_argument) arguments.push_back(out);
    const Clock clock;
    EXPECT_EQ(ListOf(folder, {.arguments = arguments}), kNoItems);
    EXPECT_TRUE(IsReport(ReadFileBytes(row.report), clock));
    EXPECT_TRUE(DeleteFileA(row.report.c_str()));
  }
}

TEST(Report, ThatCannotBeMadeEndsTheRun) {
  const Folder folder;
  folder.MakeFolder("taken.txt");
  struct Row {
    std::string name;
    std::string out;
  };
  const Row rows[] = {
      {"hscope.txt", folder.Path("missing")},
      {"hscope.txt", "missing"},
      {"hscope.txt", "Q:\\"},
      {"taken.txt", ""},
      {"missing\\r.txt", ""},
      {std::string(255, 'n'), folder.Path("missing")},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name + " in " + row.out);
    folder.Write("p.ini", ProfileWith("ReportFileName=" + row.name, "Email=1"));
    std::vector<std::string> arguments = {"p.ini"};
    if (!row.out.empty()) arguments.push_back(row.out);
    EXPECT_EQ(ListOf(folder, {.arguments = arguments}), kNoReport);
    EXPECT_FALSE(FileExists(folder.Path("missing")));
  }
}

TEST(PreRunMessage, DecidesAboutTheRun) {
  struct Row {
    int buttons;
    std::vector<int> shown;
    int answer;
    bool runs;
  };
  const Row rows[] = {
      {MB_OKCANCEL, {IDOK, IDCANCEL}, IDCANCEL, false},
      {MB_YESNOCANCEL, {IDCANCEL, IDYES, IDNO}, IDCANCEL, false},
      {MB_YESNO | MB_DEFBUTTON2, {IDYES, IDNO}, IDYES, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.buttons) + " answered " + std::to_string(row.answer));
    const Folder folder;
    folder.Write("p.ini", ProfileWith("CreateMessageBox=1\r\nMessageButtons=" +
                                      std::to_string(row.buttons)) +
                              "[MESSAGE]\r\nShall it run?\r\n[END]\r\n");
    Program program(folder, {.arguments = {"p.ini"}});
    const auto box = program.WaitForMessageBox();
    ASSERT_TRUE(box);
    EXPECT_EQ(box->caption, "Hostscope");
    EXPECT_EQ(box->text, "Shall it run?");
    EXPECT_EQ(box->buttons, row.shown);
    EXPECT_EQ(box->owner, nullptr);
    EXPECT_FALSE(folder.Read("hscope.txt"));
    ClickMiddle(GetDlgItem(box->window, row.answer));
    if (row.runs) {
      ASSERT_TRUE(program.WaitUntilFinished());
      EXPECT_EQ(program.Lines(), FinishedList());
      TypeKey(program.dialog(), 'X');
    }
    EXPECT_EQ(program.WaitForExit(), 0u);
    EXPECT_EQ(folder.Read("hscope.txt").has_value(), row.runs);
  }
}

TEST(PreRunMessage, TextIsTheSectionWithItsPlaceholdersFilled) {
  const std::string long_text(1020, 'x');
  const Folder folder;
  folder.MakeFolder("out");
  const std::string out = folder.Path("out"), path = out + "\\r.txt";
  struct Row {
    const char* what;
    std::string section;
    std::string expected;
  };
  const Row rows[] = {
      {"each of them",
       "[MESSAGE]\r\n#RFPATH# is #RFNAME#\r\nin #RFFOLDER#.\r\n#RFNAME##RFNAME#\r\n[END]",
       path + " is r.txt\r\nin " + out + ".\r\nr.txtr.txt"},
      {"up to the next bracket", "[MESSAGE]\r\none [two]\r\nthree", "one "},
      {"not in small letters", "[message]\r\nnot found\r\n", ""},
      {"no section", "", ""},
      {"letters beyond ASCII, percent signs", "[MESSAGE]\r\n\xFC \x80 100% %s %n\r\n",
       "\xFC \x80 100% %s %n"},
      {"as long as its buffer", "[MESSAGE]\r\n" + std::string(1023, 'm'), std::string(1023, 'm')},
      {"longer by one", "[MESSAGE]\r\n" + std::string(1024, 'm'), std::string(1023, 'm')},
      {"much longer", "[MESSAGE]\r\n" + std::string(40000, 'm'), std::string(1023, 'm')},
      {"a zero byte ends it", std::string("[MESSAGE]\r\none\0two\r\n", 20), "one"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    folder.Write("p.ini",
                 "[GENERAL]\r\nReportFileName=r.txt\r\nCreateMessageBox=1\r\n"
                 "MessageButtons=1\r\n" +
                     row.section);
    Program program(folder, {.arguments = {"p.ini", out}});
    const auto box = program.WaitForMessageBox();
    ASSERT_TRUE(box);
    EXPECT_EQ(box->text, row.expected);
    ClickMiddle(GetDlgItem(box->window, IDCANCEL));
    EXPECT_EQ(program.WaitForExit(), 0u);
    EXPECT_FALSE(FileExists(path));
  }
}

std::string LongValues(size_t length) {
  const std::string value(length, 'v');
  std::string profile = "[GENERAL]\r\nSign=" + value + "\r\n[MESSAGE]\r\n" + value +
                        "\r\n[SYSTEM]\r\n" + "TempFolder=" + std::string(length, '0') +
                        "\r\n[POST-RUN]\r\n";
  for (const char* key : {"To", "Address", "Name", "CC", "BCC", "Subject"})
    profile += std::string(key) + "=" + value + "\r\n";
  return profile + "[EMAIL TEXT]\r\n" + value + "\r\n";
}

// Every one of these is a profile like any other: the run comes to its end.
TEST(OddProfile, IsSurvived) {
  const std::string on = "[SYSTEM]\r\nComputerName=1\r\n";
  const std::vector<std::string> one_item = {"Computer name...         Ok", "", kLastLine};
  struct Row {
    const char* what;
    std::string bytes;
    std::vector<std::string> expected;
  };
  const Row rows[] = {
      {"empty", "", kNoItems},
      {"one bracket", "[", kNoItems},
      {"one megabyte of one letter", std::string(1 << 20, 'a'), kNoItems},
      {"brackets only", std::string(1 << 15, '['), kNoItems},
      {"empty lines behind", on + std::string(1 << 15, '\n'), one_item},
      {"one megabyte of comments", on + std::string(1 << 20, ';'), one_item},
      {"no line break", "[SYSTEM] ComputerName=1", kNoItems},
      {"line feeds only", "[SYSTEM]\nComputerName=1\n", one_item},
      {"carriage returns only", "[SYSTEM]\rComputerName=1\r", one_item},
      {"no last line break", "[SYSTEM]\r\nComputerName=1", one_item},
      {"zero bytes behind", on + std::string(5000, '\0'), one_item},
      {"zero bytes inside a key and a value",
       std::string("[SYSTEM]\r\nTemp\0Folder=1\r\nUserName=\0001\r\n", 38) + "ComputerName=1\r\n",
       one_item},
      {"every byte value behind",
       on +
           [] {
             std::string bytes;
             for (int n = 0; n < 2560; ++n)
               bytes += static_cast<char>(n);
             return bytes;
           }(),
       one_item},
      {"values of 255 characters", LongValues(255), kNoItems},
      {"values of 259 characters", LongValues(259), kNoItems},
      {"values of 260 characters", LongValues(260), kNoItems},
      {"values of 1023 characters", LongValues(1023), kNoItems},
      {"values of 1024 characters", LongValues(1024), kNoItems},
      {"values of 40000 characters", LongValues(40000), kNoItems},
  };
  const Folder folder;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    folder.Write("p.ini", row.bytes);
    const Clock clock;
    EXPECT_EQ(ListOf(folder, {.arguments = {"p.ini"}}), row.expected);
    EXPECT_TRUE(IsReport(folder.Read("hscope.txt"), clock));
    EXPECT_TRUE(DeleteFileA(folder.Path("hscope.txt").c_str()));
  }
}

TEST(Profile, ThatCannotBeReadEndsTheRun) {
  const Folder folder;
  folder.MakeFolder("folder.ini");
  folder.Write("signed.ini", kSigned);
  for (const std::string& name :
       {std::string("missing.ini"), std::string("folder.ini"), std::string("sub\\missing.ini"),
        std::string("Q:\\missing.ini"), std::string("a b"), std::string("hh"),
        std::string(300, 'x'), std::string(20000, 'x'), std::string(":")}) {
    SCOPED_TRACE(name.substr(0, 20));
    EXPECT_EQ(ListOf(folder, {.arguments = {name}}), kNoProfile);
    EXPECT_FALSE(folder.Read("hscope.txt"));
  }
  // Open elsewhere, and shared with nobody.
  const HANDLE file = CreateFileA(folder.Path("signed.ini").c_str(), GENERIC_READ | GENERIC_WRITE,
                                  0, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_EQ(ListOf(folder, {.arguments = {"signed.ini"}}), kNoProfile);
  CloseHandle(file);
}

}  // namespace
}  // namespace drive
