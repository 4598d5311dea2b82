// The package as whoever gets it uses it: hscope.exe and one of its profiles in a folder, started
// without a word. HSCOPE_EXE names the program of an unpacked package here, beside which the mail
// library lies; tests/package/package_test.py arranges that.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"
#include "tests/windows/expected.h"
#include "tests/windows/mail_client.h"

namespace drive {
namespace {

// A value of the profile, as the system reads it.
std::string ProfileValue(const std::string& path, const char* section, const char* key) {
  char value[260] = {};
  GetPrivateProfileStringA(section, key, "", value, sizeof value, path.c_str());
  return value;
}

// Whoever is asked whether to go on says so.
void AgreeWhenAsked(const Program& program, const std::string& profile) {
  if (GetPrivateProfileIntA("GENERAL", "CreateMessageBox", 0, profile.c_str()) == 0) return;
  const auto box = program.WaitForMessageBox();
  ASSERT_TRUE(box) << "the message does not appear";
  EXPECT_EQ(box->text.find('#'), std::string::npos) << box->text;
  ASSERT_FALSE(box->buttons.empty());
  const bool has_yes = std::count(box->buttons.begin(), box->buttons.end(), IDYES) > 0;
  ASSERT_TRUE(Answer(*box, has_yes ? IDYES : IDOK));
}

// Where the mail client got the report from.
std::string AttachedReport(const std::string& mail) {
  const std::string before = "file 0 0 4294967295 \"";
  const size_t begin = mail.find(before);
  if (begin == std::string::npos) return "";
  const size_t path = begin + before.size();
  return mail.substr(path, mail.find('"', path) - path);
}

// One folder with the program and a profile of the package, and a mail client for the report.
struct Handed {
  explicit Handed(const std::string& name) : profile(folder.Path(name)) {
    folder.CopyFromBuild("mail_library.dll");
    WriteFileBytes(profile, ReadFileBytes(BuiltFile("PROFILES\\" + name)).value_or(""));
  }

  // Runs the program to its end and checks what every profile has to give. The report.
  std::string Report() {
    Program program(folder);
    AgreeWhenAsked(program, profile);
    EXPECT_TRUE(program.WaitUntilFinished()) << Joined(program.Lines());
    const std::string list = Joined(program.Lines());
    for (const char* refusal : {"Can not open", "Not enough memory"})
      EXPECT_EQ(list.find(refusal), std::string::npos) << list;
    TypeKey(program.dialog(), 'X');
    EXPECT_EQ(program.WaitForExit(), 0u);
    mail = folder.Read("mail.txt").value_or("");
    const std::string name = ProfileValue(profile, "GENERAL", "ReportFileName");
    report_path =
        mail.empty() ? folder.Path(name.empty() ? "hscope.txt" : name) : AttachedReport(mail);
    const std::string report = ReadFileBytes(report_path).value_or("no report");
    EXPECT_TRUE(report.starts_with("Report generated on ")) << report_path << "\n" << report;
    return report;
  }

  Folder folder;
  const InstalledMapi installed{"1", "1"};
  const MailClient client{folder.Path("mail_library.dll")};
  const std::string profile;
  std::string mail;
  std::string report_path;
};

bool IsPackaged() {
  return FileExists(BuiltFile("PROFILES"));
}
constexpr char kNotPackaged[] = "HSCOPE_EXE does not name the program of a package";

class Packaged : public EveryRelease {};

TEST_P(Packaged, SupportProfileMailsItsReport) {
  if (!IsPackaged()) GTEST_SKIP() << kNotPackaged;
  Handed handed("SUPPORT.INI");
  const std::string report = handed.Report();
  // NT 4.0 knows of its service pack elsewhere.
  const std::string system = GetParam().operating_system;
  EXPECT_NE(report.find(system.substr(0, system.find(" (Service"))), std::string::npos) << report;
  const auto value = [&](const char* key) { return ProfileValue(handed.profile, "POST-RUN", key); };
  const std::string recipient =
      "recipient 0 1 \"" + value("Name") + "\" \"" + value("To") + "\" 0 0\n";
  EXPECT_NE(handed.mail.find(recipient), std::string::npos) << handed.mail;
  EXPECT_NE(handed.mail.find("message 0 \"" + value("Subject") + "\""), std::string::npos)
      << handed.mail;
}

INSTANTIATE_TEST_SUITE_P(Run, Packaged, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

TEST(PackagedProfiles, AllGiveAReport) {
  if (!IsPackaged()) GTEST_SKIP() << kNotPackaged;
  for (const char* name :
       {"FULL.INI", "MINIMAL.INI", "SUPPORT.INI", "HARDWARE.INI", "SOFTWARE.INI"}) {
    SCOPED_TRACE(name);
    Handed handed(name);
    EXPECT_GT(ReportLines(handed.Report()).size(), 5u);
  }
}

}  // namespace
}  // namespace drive
