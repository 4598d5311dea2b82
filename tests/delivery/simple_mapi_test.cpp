#include "delivery/simple_mapi.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

constexpr char kMessaging[] = "HKLM\\SOFTWARE\\Microsoft\\Windows Messaging Subsystem";
constexpr char kMail[] = "HKLM\\Software\\Clients\\Mail";

class SimpleMapiTest : public testing::Test {
 protected:
  SimpleMapiTest() {
    test::DescribeWindows2000(machine_);
    machine_.error_mode = 0x1234;
    machine_.faults.AtCall("LoadLibraryA", [this] { mode_when_loaded_ = machine_.error_mode; });
    machine_.registry.SetText(kMessaging, "MAPI", "1");
  }
  // Nothing stays as the loading made it.
  void ExpectRestored() const {
    EXPECT_EQ(mode_when_loaded_, 0x8000U);
    EXPECT_EQ(machine_.error_mode, 0x1234U);
    EXPECT_TRUE(machine_.handles.OpenObjects().empty());
  }

  host::Machine machine_;
  host::UseMachine use_{machine_};
  UINT mode_when_loaded_ = 0;
};

TEST_F(SimpleMapiTest, IsInstalledWhereTheReleaseKeepsIt) {
  struct Row {
    DWORD major;
    DWORD minor;
    std::string registry;  // the bytes of the value; empty: there is none
    std::string win_ini;
    bool expected;
  };
  const std::string one("1\0", 2);
  const std::string on = "[fonts]\r\n[mail]\r\nmapi=1\r\n";
  const Row rows[] = {
      {3, 50, one, "", false},
      {3, 51, one, "", false},
      {3, 51, one, on, true},
      {3, 51, "", "[Mail]\r\nMAPI=0\r\n", false},
      {3, 52, one, "", true},
      {4, 0, one, "", true},
      {4, 10, "1", "", true},
      {5, 1, "", "", false},
      {5, 1, "", on, true},
      {5, 1, "0", on, true},
      {4, 0, "0", "[Mail]\r\nMAPI=-1\r\n", true},
      {4, 0, "01", "", false},
      {4, 0, "1 ", "", false},
      {4, 0, std::string("\1\0\0\0", 4), "", false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.major) + "." + std::to_string(row.minor) + " '" + row.registry +
                 "' " + row.win_ini);
    host::Machine machine;
    const host::UseMachine use(machine);
    const test::TestFolder drive;
    machine.files.MountDrive('C', drive.path());
    machine.windows_folder = "C:\\WINDOWS";
    drive.Write("WINDOWS/WIN.INI", row.win_ini);
    machine.version.major = row.major;
    machine.version.minor = row.minor;
    if (!row.registry.empty()) machine.registry.SetValue(kMessaging, "MAPI", REG_SZ, row.registry);
    EXPECT_EQ(IsMapiInstalled(), row.expected);
    machine.faults.FailAlways("GetVersionExA", 122);
    EXPECT_FALSE(IsMapiInstalled());
    // What is not installed is not looked for.
    SimpleMapi mapi;
    EXPECT_FALSE(mapi.LoadSimpleMapi());
    EXPECT_EQ(machine.faults.CallCount("SetErrorMode"), 0U);
    EXPECT_EQ(machine.faults.CallCount("LoadLibraryA"), 0U);
  }
}

TEST_F(SimpleMapiTest, LibraryIsTheClientsOwn) {
  struct Row {
    const char* what;
    std::string default_client;  // bytes; "": the key has no default value
    Texts libraries;             // client and the bytes of its DLLPath; "": it has none
    std::vector<unsigned> failing_expansions;
    const char* expected;
  };
  const std::string path = "C:\\Post\\post.dll";
  const std::string variable = "%PostDir%\\post.dll";
  const Texts two = {{"Alpha", "C:\\Alpha\\alpha.dll"}, {"Post: 1", path}};
  const Row rows[] = {
      {"no client at all", "", {}, {}, "MAPI32.DLL"},
      {"the default client", "Post: 1", two, {}, "POST.DLL"},
      {"no default client", "", two, {}, "ALPHA.DLL"},
      {"a default client too long to read", std::string(261, 'P'), two, {}, "ALPHA.DLL"},
      {"a default client without a key", "Gamma", two, {}, "MAPI32.DLL"},
      {"a client without a library", "Post", {{"Post", ""}}, {}, "MAPI32.DLL"},
      {"a path too long to read", "A", {{"A", std::string(261, 'p')}}, {}, "MAPI32.DLL"},
      {"an empty path", "A", {{"A", std::string(1, '\0')}}, {}, "MAPI32.DLL"},
      {"a variable", "A", {{"A", variable}}, {}, "POST.DLL"},
      {"a long variable", "A", {{"A", "%LONG%"}}, {}, "LONG.DLL"},
      {"an unknown variable", "A", {{"A", "%Raw%\\raw.dll"}}, {}, "RAW.DLL"},
      {"its size can't be had", "A", {{"A", variable}}, {1}, "UNEXPANDED.DLL"},
      {"its text can't be had", "A", {{"A", variable}}, {2}, "UNEXPANDED.DLL"},
      {"a library that is not there", "A", {{"A", "C:\\gone.dll"}}, {}, nullptr},
  };
  machine_.environment = {{"POSTDIR", "C:\\Post"},
                          {"LONG", "C:\\" + std::string(400, 'l') + "\\long.dll"}};
  const Texts files = {{"POST.DLL", path},
                       {"ALPHA.DLL", "C:\\Alpha\\alpha.dll"},
                       {"LONG.DLL", machine_.environment["LONG"]},
                       {"RAW.DLL", "%Raw%\\raw.dll"},
                       {"UNEXPANDED.DLL", variable}};
  for (const auto& [name, file] : files) {
    machine_.libraries.AddLike(name, "MAPI32.DLL");
    machine_.libraries.Add({.name = name, .path = file});
  }
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    machine_.registry.MakeKey(std::string(kMail));
    if (!row.default_client.empty())
      machine_.registry.SetValue(kMail, "", REG_SZ, row.default_client);
    for (const auto& [client, library] : row.libraries) {
      machine_.registry.MakeKey(std::string(kMail) + "\\" + client);
      if (!library.empty())
        machine_.registry.SetValue(std::string(kMail) + "\\" + client, "DLLPath", REG_SZ, library);
    }
    for (const unsigned call : row.failing_expansions)
      machine_.faults.FailNth("ExpandEnvironmentStringsA", call, 8);
    SimpleMapi mapi;
    EXPECT_EQ(mapi.LoadSimpleMapi(), row.expected != nullptr);
    if (row.expected != nullptr) {
      EXPECT_EQ(machine_.libraries.References(row.expected), 1U);
    }
    mapi.UnloadSimpleMapi();
    mapi.UnloadSimpleMapi();
    ExpectRestored();
    machine_.registry.RemoveKey(kMail);
  }
}

TEST_F(SimpleMapiTest, NeedsEveryFunction) {
  for (const char* const name :
       {"MAPILogon", "MAPILogoff", "MAPISendMail", "MAPISendDocuments", "MAPIFindNext",
        "MAPIReadMail", "MAPISaveMail", "MAPIDeleteMail", "MAPIFreeBuffer", "MAPIAddress",
        "MAPIDetails", "MAPIResolveName"}) {
    SCOPED_TRACE(name);
    machine_.libraries.AddLike("part.dll", "MAPI32.DLL");
    machine_.registry.SetText(std::string(kMail) + "\\A", "DLLPath", "part.dll");
    SimpleMapi mapi;
    EXPECT_TRUE(mapi.LoadSimpleMapi());
    machine_.libraries.RemoveExport("part.dll", name);
    EXPECT_FALSE(mapi.LoadSimpleMapi());
    ExpectRestored();
  }
}

TEST_F(SimpleMapiTest, MessageHoldsWhatItWasGiven) {
  const test::TestFolder folder;
  folder.Write("report.txt", "all of it");
  const std::string path = folder.path().string() + "/report.txt";
  const std::vector<Texts> rows = {{{"", ""}, {"", ""}},
                                   {{"help@example.org", "Help"}, {"c@x;d@x", ""}},
                                   {{"help@example.org", ""}, {"", "b@x"}},
                                   {{"", "Help"}, {"c@x", "b@x"}}};
  for (const Texts& row : rows) {
    const auto& [to, name] = row[0];
    const auto& [cc, bcc] = row[1];
    SCOPED_TRACE(to + " " + name + " " + cc + " " + bcc);
    SimpleMapi mapi;
    ASSERT_TRUE(mapi.LoadSimpleMapi());
    mapi.SendReportMail({.to = to.c_str(),
                         .name = name.c_str(),
                         .cc = cc.c_str(),
                         .bcc = bcc.c_str(),
                         .subject = "A subject",
                         .body = "two\r\nlines",
                         .attachment_path = path.c_str()});
    ASSERT_EQ(machine_.mail.size(), 1U);
    const host::SentMail mail = machine_.mail.back();
    machine_.mail.clear();
    std::vector<host::MailRecipient> recipients = {
        {.recipient_class = MAPI_TO, .name = name, .address = to}};
    if (!cc.empty()) recipients.push_back({.recipient_class = MAPI_CC, .address = cc});
    if (!bcc.empty()) recipients.push_back({.recipient_class = MAPI_BCC, .address = bcc});
    EXPECT_EQ(mail.recipients, recipients);
    EXPECT_EQ(mail.attachments,
              (std::vector<host::MailAttachment>{
                  {.path = path, .content = "all of it", .position = 0xFFFFFFFF}}));
    EXPECT_EQ(mail.subject, "A subject");
    EXPECT_EQ(mail.text, "two\r\nlines");
    EXPECT_FALSE(mail.type || mail.date || mail.conversation || mail.has_originator);
    EXPECT_EQ(
        mail.message_reserved + mail.message_flags + mail.session + mail.window + mail.reserved,
        0U);
    EXPECT_EQ(mail.flags, 9U);
  }
}

}  // namespace
}  // namespace hostscope
