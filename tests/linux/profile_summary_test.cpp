#include "linux/profile_summary.h"

#include <gtest/gtest.h>

#include "tests/support/test_folder.h"

namespace host {
namespace {

std::string SummaryOf(std::string_view profile) {
  const hostscope::test::TestFolder folder;
  const std::string name = "Gr\u00f6\u00dfe \u4f8b.ini";  // not all of it in the code page
  std::string lines;
  for (const char character : profile)
    lines += character == '\n' ? std::string("\r\n") : std::string(1, character);
  folder.Write(name, lines);
  return ProfileSummary((folder.path() / name).native());
}

constexpr char kRichProfile[] =
    R"([GENERAL]
OutputFolder=2
ReportFileName=Pr)"
    "\xFC"
    R"(fung.txt
CreateMessageBox=1
MessageButtons=3
[MESSAGE]
This writes #RFNAME#.

Go on?
[SYSTEM]
WindowsVersion=1
FreeSystemResources=1
FreeUserResources=-1
[NETWORK]
NetProtocols=1
[DISK DRIVE]
Label=1
[PRINTER]
DefaultLocal=1
[DLLS]
comctl32.dll
a library with a name that is longer than one line of the summary has room for.dll
[REGISTRY KEYS]
HKLM\Software\X,0x1
hkcu\Software\X
HKLM
HKLM\A,B,1
HKEY_LOCAL_MACHINE\Software,1
[FOLDERS]
<run folder>,1
C:\Y
C:\Y,1
HKLM\Software\X,Path,1
HKLM\Software\X,Path
,1
[SCAN KEYS]
HKLM\Software\X,1,1
HKCU\Software\X
Software\X,1
[CUSTOM DLLS]
sample.dll,Write)"
    "\x1B"
    R"([2JAll
sample.dll
,Write
[POST-RUN]
Open=1
Email=1
EmailCheckBox=0
To=SMTP:support@example.org
Name=Support
CC=copy@example.org
BCC=blind@example.org
Subject=Report
[EMAIL TEXT]
The report is attached.
)";

constexpr char kRichSummary[] =
    R"(The report
  Name: Prüfung.txt
  Folder: the user's documents
Before the run
  A message is shown, with the buttons Yes, No and Cancel. No and Cancel end
    the program without a report.
  Its text:
    This writes #RFNAME#.

    Go on?
What is reported
  SYSTEM INFORMATION
    Windows version, Free resources (FreeSystemResources, FreeUserResources)
  DISK DRIVES
    Logical disks (Label)
  PRINTERS
    (the heading only)
  DLLS VERSIONS
    comctl32.dll
    a library with a name that is longer than one line of the summary has room
      for.dll
  REGISTRY KEYS
    HKLM\Software\X, with everything below it
    hkcu\Software\X, its values and the names of its subkeys
    HKLM, its values and the names of its subkeys
    HKLM\A, with everything below it
    passed over: HKEY_LOCAL_MACHINE\Software,1 (it does not begin with a known
      hive such as HKLM)
  Registry keys searched for folders to list below "Folders & files"
    HKLM\Software\X, with all keys below it; of each folder found, the whole
      tree
    HKCU\Software\X, its own values; of each folder found, its files and the
      names of its subfolders
    passed over: Software\X,1 (it does not begin with a known hive such as
      HKLM)
  Folders & files
    the program's own folder, the whole tree
    C:\Y, its files and the names of its subfolders
    C:\Y, the whole tree
    the folder that value Path of HKLM\Software\X names, the whole tree
    the folder that the default value of HKLM\Software\X names, its files and
      the names of its subfolders
    passed over: ,1 (it has no path)
  ADDITIONAL INFORMATION
    the function Write?[2JAll of sample.dll
    passed over: sample.dll (it names no function)
    passed over: ,Write (it names no library)
Afterwards
  The report is opened with the application for its kind of file.
  An e-mail with the report is prepared, for the user to send.
    To: Support <SMTP:support@example.org>
    Copy to: copy@example.org
    Blind copy to: blind@example.org
    Subject: Report
    Text:
      The report is attached.
  The check box of the dialog is disabled: the user can not decline it there.
)";

TEST(ProfileSummary, TellsEverythingInOrder) {
  EXPECT_EQ(SummaryOf(kRichProfile), kRichSummary);
}

TEST(ProfileSummary, TellsThatThereIsLittle) {
  EXPECT_EQ(SummaryOf(R"([GENERAL]
ReportFileName=D:\out.txt
CreateMessageBox=1
MessageButtons=6
[NETWORK]
NetProtocols=1
[POST-RUN]
Email=1
)"),
            R"(The report
  Path: D:\out.txt
Before the run
  A message is shown, with buttons that not every Windows knows (6).
  It is empty.
What is reported
  Nothing: the report will have its first line only.
Afterwards
  The report is not opened.
  An e-mail with the report is prepared, for the user to send.
    To: (for the user to fill in)
    Subject: (none)
  The user may decline it by the check box of the dialog.
)");
}

// The message's fate by its buttons, as a run has it.
TEST(ProfileSummary, ButtonsThatEndTheProgram) {
  const struct {
    const char* buttons;
    const char* words;
  } rows[] = {
      {"0", "the button OK. The run goes on whatever is answered."},
      {"257", "the buttons OK and Cancel. Cancel ends the program without a report."},
      {"2", "the buttons Abort, Retry and Ignore. The run goes on whatever is answered."},
      {"4", "the buttons Yes and No. No ends the program without a report."},
  };
  for (const auto& row : rows) {
    std::string summary =
        SummaryOf(std::string("[GENERAL]\nCreateMessageBox=1\nMessageButtons=") + row.buttons);
    const std::size_t wrapped = summary.find("\n    ");
    if (wrapped != std::string::npos) summary.replace(wrapped, 5, " ");
    const std::string expected = std::string("A message is shown, with ") + row.words + "\n";
    EXPECT_NE(summary.find(expected), std::string::npos) << summary;
  }
}

TEST(ProfileSummary, OddFiles) {
  const std::string nothing = SummaryOf("");
  EXPECT_NE(nothing.find("first line only"), std::string::npos);
  EXPECT_EQ(SummaryOf(std::string(100'000, '\xFF')), nothing);
  EXPECT_EQ(SummaryOf(std::string(5'000, '\0')), nothing);
  const std::string wide = SummaryOf("[DLLS]\n" + std::string(200, '\xE4'));
  std::string word;
  for (const int length : {74, 72, 54}) {
    word += length == 74 ? "    " : "      ";
    for (int i = 0; i < length; ++i)
      word += "\u00e4";
    word += "\n";
  }
  EXPECT_NE(wide.find(word), std::string::npos) << wide;
  const hostscope::test::TestFolder folder;
  for (const std::string& path :
       {folder.path().native(), folder.path().native() + "/none", std::string()})
    EXPECT_EQ(ProfileSummary(path), "The profile can not be read.\n") << path;
}

}  // namespace
}  // namespace host
