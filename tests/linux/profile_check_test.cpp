#include "linux/profile_check.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "platform/host/profile_file.h"
#include "profile/catalogue.h"

namespace host {
namespace {

std::string WithLineEnds(std::string_view text) {
  std::string result;
  for (const char character : text)
    result += character == '\n' ? "\r\n" : std::string(1, character);
  return result;
}

// The profile follows [GENERAL] and its Sign, so its first line is line 3. Each finding is its line
// and a part of its reason.
struct Case {
  const char* profile;
  std::vector<std::pair<std::size_t, const char*>> findings;
};

void Expect(const std::string& content, const Case& expected) {
  const std::vector<ProfileFinding> found = CheckProfile(content);
  ASSERT_EQ(found.size(), expected.findings.size()) << (found.empty() ? "" : found[0].reason);
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(found[i].line, expected.findings[i].first);
    EXPECT_NE(found[i].reason.find(expected.findings[i].second), std::string::npos)
        << found[i].reason;
  }
}

const std::string kHead = "[GENERAL]\r\nSign=Hostscope INI file\r\n";

TEST(ProfileCheck, FindsWhatCannotDoWhatWasMeant) {
  const std::string long_name(260, 'n');
  const std::string named = "ReportFileName=" + long_name;
  const std::string text = "[MESSAGE]\na\n" + std::string(1021, 'b');
  const std::string list = "[REGISTRY KEYS]\nHKLM\\" + std::string(32759, 'd') + "\nHKU\n";
  const std::string far = "[PORT]\n;" + std::string(32766, ' ') + "\nPorts=1\n";
  const std::string folder = "[FOLDERS]\nC:\\" + std::string(258, 'f') + "\n";
  const Case cases[] = {
      {"[display]\nmaxresolusion=-1\n; [x\n[FOLDERS]\n<run folder>\nC:\\A%\nHKLM\\A,b,0x1F\n"
       "[REGISTRY KEYS]\nhklm\nHKLM\\%A%,017\n[SCAN KEYS]\nHKCU\\B,1,0\n"
       "[CUSTOM DLLS]\na.dll,Run\n[DLLS]\na=b.dll\n[MESSAGE]\nno = key\n",
       {}},
      {"\n[DISPLAY]\nMaxResolution=1\nModems=1\nZebra=1\nMonitors\n=1\n[PORT\n",
       {{5, "write MaxResolusion"},
        {6, "Modems below [COMMUNICATION]"},
        {7, "\"Zebra\" in this section: leave"},
        {8, "no \"=\""},
        {9, "no key"},
        {10, "want of a \"]\""}}},
      {"[DISPLAYS]\nx\n[Totally Unknown]\n", {{3, "write [DISPLAY]"}, {5, "leave it out"}}},
      {"[PORT]\nPorts=1\nPORTS=0\n[Port]\nx\n", {{5, "since line 4"}, {6, "since line 3"}}},
      {"OutputFolder=4\nMessageButtons=6\nCreateMessageBox=yes\n",
       {{3, "write 3"}, {4, "kind 6"}, {5, "0 is read"}}},
      {"OutputFolder=3\nMessageButtons=261\n", {}},
      {"[PORT]\nPorts=1 ; all\n[USB]\nControllers=\n[POST-RUN]\nOpen=4294967297\n",
       {{4, "1 is read"}, {6, "0 is read, its default"}, {8, "too large: 1 is read"}}},
      {"[POST-RUN]\nTo=a\nAddress=b\n", {{5, "since To has"}}},
      {"[NETWORK]\nNetProtocols=1\n[PRINTER]\nDefaultLocal=1\nDefaultShared=0\n",
       {{4, "switches nothing"}, {6, "heading"}}},
      {"[REGISTRY KEYS]\nHKEY_LOCAL_MACHINE\\A,1\nHKXX\\B\nHKLM\\C, 1\nHKLM\\D,E,1\n",
       {{4, "write HKLM\\A"}, {5, "\"HKXX\""}, {6, "read as 0"}, {7, "\"E\" is cut off"}}},
      {"[SCAN KEYS]\nHKCU\\A,yes,1\nC:\\B\n", {{4, "\"yes\""}, {5, "\"C:\""}}},
      {"[FOLDERS]\nHKCU\\A,Dir\n%TEMP%,1\n\"C:\\A B\"\n<RunFolder>\nHKEY_USERS\\A,b,1\nHKML\\A\n",
       {{4, "\"Dir\""},
        {5, "variables"},
        {6, "double quote"},
        {7, "<Run Folder>"},
        {8, "write HKU\\A,b"},
        {9, "\"HKML\""}}},
      {"[CUSTOM DLLS]\na.dll\nb.dll,\nc.dll, Run\n[DLLS]\n%X%\\a.dll\n",
       {{4, "no function"}, {5, "no function"}, {6, "blank"}, {8, "variables"}}},
      {"[REGISTRY KEYS]\nHKCR\\*\\shell,1\nHKLM\\Classes\\*\n[FOLDERS]\nC:\\A;b,1\n\\\\a\\b\nC:/A\n"
       "HKCU\\,a,0\n[DLLS]\nC:\\a,b.dll\n#1.dll\n1x=a.dll\n",
       {}},
      {"[REGISTRY KEYS]\nHKEY_USERS,1\nHKLM\\\\A\nHKLM\\A*\nhklm/A/B,1\nHKCU:\\A\n"
       "Computer\\HKEY_CURRENT_USER\\A,1\n1=HKLM\\A\n# x\nHKLM\\B,1 ; all\n[HKEY_USERS\\A]\n"
       "[USB CONTROLLERS]\n",
       {{4, "write HKU,1"},
        {5, "two backslashes"},
        {6, "\"*\""},
        {7, "write HKLM\\A\\B,1"},
        {8, "write HKCU\\A"},
        {9, "write HKCU\\A,1"},
        {10, "\"1=\" belongs"},
        {11, "\"#\""},
        {12, "\"; all\" belongs"},
        {13, "write HKU\\A without"},
        {14, "write [USB]"}}},
      {"[FOLDERS]\nC:\\*.dll\nC:A\nC:,1\n\\\\a,1\n,1\nCC:\\A\nHKLM,1\nHKLM\\\\A,b,1\nHKLM/A,1\n",
       {{4, "no path has a \"*\""},
        {5, "write C:\\A"},
        {6, "write C:\\"},
        {7, "no share"},
        {8, "no path before"},
        {9, "no colon but"},
        {10, "no key"},
        {11, "two backslashes"},
        {12, "write HKLM\\A,1"}}},
      {"[CUSTOM DLLS]\n,Run\nRun,a.dll\na.dll,Run,1\n[DLLS]\na.dll,1\nC:\\A\\\nA.DLL b.dll\n"
       "[SCAN KEYS]\nHKLM \\A,1\n",
       {{4, "no library"},
        {5, "library first"},
        {6, "number out"},
        {8, "\",1\" belongs"},
        {9, "of a folder"},
        {10, "one library to a line"},
        {12, "write HKLM\\A,1"}}},
      {"CreateMessageBox=1\n", {{3, "no section [MESSAGE]"}}},
      {"OutputFolder=1\nReportFileName=C:\\a.txt\n", {{3, "not looked at"}}},
      {"ReportFileName=\n", {{3, "no name"}}},
      {"ReportFileName=%A%?.txt\n", {{3, "gets this name"}, {3, "no report can"}}},
      {"MessageButtons=304\nReportFileName=\\\\a\\b\\c.txt\n", {{3, "write 256"}, {3, "button 2"}}},
      {far.c_str(), {{5, "32767 bytes"}}},
      {folder.c_str(), {{4, "261 characters"}}},
      {list.c_str(), {{5, "32767 bytes"}, {5, "32765"}}},
      {named.c_str(), {{3, "cut after 259"}}},
      {text.c_str(), {{5, "1024 characters and is cut after 1023"}}},
      {"[Message]\nHello\n", {{3, "write [MESSAGE]"}}},
      {"[ MESSAGE ]\nHello\n", {{3, "write [MESSAGE]"}}},
      {"; see [MESSAGE]\n[MESSAGE]\nHello\n", {{3, "not from below a header"}}},
      {"[message]\na\n[MESSAGE]\nb\n[Message]\nc\n", {{3, "from line 5"}, {7, "from line 5"}}},
      {"[MESSAGE]\nHello\n\n; the system\n; its items\n[SYSTEM]\n", {{6, "no comments"}}},
      {"[MESSAGE]\nHello\n [you]\n[EMAIL TEXT] x\n",
       {{5, "text of [MESSAGE], which it ends"}, {6, "behind the header"}}},
      {"[EMAIL TEXT]\nsee a[1]\n", {{4, "ends before the \"[\""}}},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(std::string(each.profile).substr(0, 80));
    Expect(kHead + WithLineEnds(each.profile), each);
  }
}

TEST(ProfileCheck, FindsWhatIsWrongWithTheFileAndItsSign) {
  const std::string large = kHead + std::string(65536, '\r');
  const std::pair<std::string, Case> cases[] = {
      {"", {"", {{1, "no section [GENERAL]"}}}},
      {"stray\r\n[GENERAL]\r\n", {"", {{1, "before the first section"}, {2, "Sign is missing"}}}},
      {"[GENERAL]\r\nSign=hostscope INI file\r\n", {"", {{2, "Sign is not"}}}},
      {"\xEF\xBB\xBF" + kHead, {"", {{1, "byte-order mark"}}}},
      {"\xFF\xFEx", {"", {{1, "byte-order mark"}, {1, "no section"}}}},
      {kHead + "[PORT]\nPorts=1\n", {"", {{3, "line feed alone"}}}},
      {kHead + std::string("[PORT]\0\r\n", 9), {"", {{3, "zero byte"}}}},
      {large, {"", {{65536 - kHead.size() + 3, "64 KB"}}}},
  };
  for (const auto& [content, expected] : cases) {
    SCOPED_TRACE(content.substr(0, 40));
    Expect(content, expected);
  }
}

std::string Read(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// In the working copy a profile may have either line end; it is handed out with the one of Windows.
std::string AsHandedOut(std::string content) {
  std::erase(content, '\r');
  return WithLineEnds(content);
}

TEST(ProfileCheck, TheProfilesHandedOutAreClean) {
  std::size_t count = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(HOSTSCOPE_SOURCE_FOLDER "/profiles")) {
    SCOPED_TRACE(entry.path().string());
    ++count;
    Expect(AsHandedOut(Read(entry.path())), {});
  }
  EXPECT_NE(count, 0U);
}

TEST(ProfileCheck, TheFullProfileSetsWhateverSwitchesSomething) {
  const std::string content = Read(HOSTSCOPE_SOURCE_FOLDER "/profiles/full.ini");
  const ProfileFile file(content, content.size());
  std::set<std::string> absent;
  for (const hostscope::CatalogueRow& row : hostscope::Catalogue()) {
    const ProfileSection* const section = file.Find(row.section);
    ASSERT_NE(section, nullptr) << row.section;
    if (row.key != nullptr && section->Find(row.key) == nullptr) absent.insert(row.key);
  }
  EXPECT_EQ(absent,
            (std::set<std::string>{"Address", "DefaultLocal", "DefaultShared", "NetProtocols"}));
}

}  // namespace
}  // namespace host
