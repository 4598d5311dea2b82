#include "profile/read_profile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

class Profiles : public testing::Test {
 protected:
  void Read(std::string_view profile) {
    folder_.Write("p.ini", profile);
    settings_ = std::make_unique<ProfileSettings>();
    CreateLists(*settings_);
    for (ReadMoment moment :
         {ReadMoment::kStartUp, ReadMoment::kMessage, ReadMoment::kDialog, ReadMoment::kWorker}) {
      ReadProfile(folder_.PathOf("p.ini").c_str(), moment, *settings_, work_);
    }
  }
  static std::vector<std::string> Elements(const StringList& list) {
    std::vector<std::string> elements;
    for (int i = 0; i < list.count(); ++i)
      elements.emplace_back(list.Get(i));
    return elements;
  }

  host::Machine machine_;
  host::UseMachine use_{machine_};
  test::TestFolder folder_;
  std::unique_ptr<ProfileSettings> settings_;
  std::vector<char> work_ = std::vector<char>(32767);
};

// Every key is read into its own member and into no other.
TEST_F(Profiles, EveryIntegerKeyHasItsOwnMember) {
  for (const CatalogueRow& row : Catalogue()) {
    if (row.method != ReadMethod::kInteger) continue;
    SCOPED_TRACE(std::string(row.section) + " / " + row.key);
    Read(std::string("[") + row.section + "]\r\n" + row.key + "=-77\r\n");
    for (const CatalogueRow& other : Catalogue()) {
      if (other.method != ReadMethod::kInteger) continue;
      EXPECT_EQ(*settings_.*other.number, &other == &row ? -77 : other.default_number)
          << other.section << " / " << other.key;
    }
  }
}

TEST_F(Profiles, TextsAreCutToTheirFields) {
  const struct {
    const char* section;
    const char* key;
    std::size_t size;
    const char* (*text)(const ProfileSettings&);
  } rows[] = {
      {"GENERAL", "ReportFileName", 260,
       [](const ProfileSettings& s) -> const char* { return s.report_file_name; }},
      {"POST-RUN", "To", 260,
       [](const ProfileSettings& s) -> const char* { return s.recipient_address; }},
      {"POST-RUN", "Address", 260,
       [](const ProfileSettings& s) -> const char* { return s.recipient_address; }},
      {"POST-RUN", "Name", 260,
       [](const ProfileSettings& s) -> const char* { return s.recipient_name; }},
      {"POST-RUN", "CC", 1024, [](const ProfileSettings& s) -> const char* { return s.cc; }},
      {"POST-RUN", "BCC", 1024, [](const ProfileSettings& s) -> const char* { return s.bcc; }},
      {"POST-RUN", "Subject", 260,
       [](const ProfileSettings& s) -> const char* { return s.subject; }},
  };
  for (const auto& row : rows) {
    for (const std::size_t length :
         {std::size_t{3}, row.size - 2, row.size - 1, row.size, row.size + 1, std::size_t{20000}}) {
      SCOPED_TRACE(std::string(row.key) + " " + std::to_string(length));
      Read(std::string("[") + row.section + "]\r\n" + row.key + "=" + std::string(length, 'v'));
      EXPECT_EQ(row.text(*settings_), std::string(std::min(length, row.size - 1), 'v'));
    }
  }
  for (const std::size_t length : {1022U, 1023U, 1024U, 5000U}) {
    const std::string body(length, 'm');
    Read("[MESSAGE]\r\n" + body + "\r\n[EMAIL TEXT]\r\n" + body);
    EXPECT_EQ(settings_->message, body.substr(0, 1023)) << length;
    EXPECT_EQ(settings_->email_body, body.substr(0, 1023)) << length;
  }
}

TEST_F(Profiles, RecipientAddressHasTwoNames) {
  Read("[POST-RUN]\r\nTo=first@example.org\r\nAddress=second@example.org\r\n");
  EXPECT_STREQ(settings_->recipient_address, "first@example.org");
  Read("[POST-RUN]\r\nTo=\r\nAddress=second@example.org\r\n");
  EXPECT_STREQ(settings_->recipient_address, "second@example.org");
}

TEST_F(Profiles, ListSections) {
  Read(
      "[DLLS]\r\nkernel32.dll\r\n; a remark\r\nuser32.dll = x \r\nkernel32.dll\r\n\r\ngdi32.dll\r\n"
      "[folders]\r\nC:\\TEMP\r\n[CUSTOM DLLS]\r\n");
  EXPECT_EQ(Elements(settings_->dlls), (std::vector<std::string>{"kernel32.dll", "user32.dll=x",
                                                                 "kernel32.dll", "gdi32.dll"}));
  EXPECT_EQ(Elements(settings_->folders), std::vector<std::string>{"C:\\TEMP"});
  EXPECT_EQ(settings_->custom_dlls.count(), 0);
  EXPECT_TRUE(settings_->custom_dlls.present());
}

TEST_F(Profiles, ListSectionLargerThanTheWorkArea) {
  std::string profile = "[DLLS]\r\n";
  for (int i = 0; i < 5000; ++i)
    profile += "library" + std::to_string(10000 + i) + ".dll\r\n";
  Read(profile);
  // 17 bytes an entry with its terminator; the last one may be cut.
  EXPECT_GE(settings_->dlls.count(), 32000 / 17);
  EXPECT_LE(settings_->dlls.count(), 32767 / 17 + 1);
  EXPECT_STREQ(settings_->dlls.Get(1000), "library11000.dll");
}

TEST_F(Profiles, OddFiles) {
  using namespace std::literals;
  const struct {
    const char* what;
    std::string profile;
    int temp_folder;
  } rows[] = {
      {"0 bytes", "", 0},
      {"1 MB without a line break", std::string(1 << 20, 'x'), 0},
      {"1 MB of lines", "[SYSTEM]\r\nTempFolder=1\r\n" + std::string(1 << 20, '\n'), 1},
      {"one line", "[SYSTEM]TempFolder=1", 0},
      {"zero bytes inside", "[SYSTEM]\r\nTemp\0Folder=1\r\nTempFolder=1\r\n"s, 1},
      {"zero bytes only", std::string(5000, '\0'), 0},
  };
  for (const auto& row : rows) {
    Read(row.profile);
    EXPECT_EQ(settings_->temp_folder, row.temp_folder) << row.what;
  }
}

TEST_F(Profiles, FoundByTheirSign) {
  struct File {
    const char* name;
    const char* content;
  };
  struct Row {
    const char* what;
    std::vector<File> files;
    const char* expected;  // null: none
  };
  constexpr char kSigned[] = "[general]\r\nsign=Hostscope INI file\r\n";
  const Row rows[] = {
      {"none at all", {}, nullptr},
      {"one among others",
       {{"a.ini", "[GENERAL]\r\nx=1"}, {"z.INI", kSigned}, {"b.txt", kSigned}},
       "z.INI"},
      {"the first of two", {{"b.ini", kSigned}, {"c.ini", kSigned}}, "b.ini"},
      {"other case", {{"a.ini", "[GENERAL]\r\nSign=hostscope INI file"}}, nullptr},
      {"another word", {{"a.ini", "[GENERAL]\r\nSign=Hostscope INI file x"}}, nullptr},
      {"cut short", {{"a.ini", "[GENERAL]\r\nSign=Hostscope INI fil"}}, nullptr},
      {"in another section", {{"a.ini", "[SYSTEM]\r\nSign=Hostscope INI file"}}, nullptr},
  };
  for (const Row& row : rows) {
    test::TestFolder folder;
    std::filesystem::create_directory(folder.path() / "0.ini");
    for (const File& file : row.files)
      folder.Write(file.name, file.content);
    const OwnedText found = FindProfile(folder.path().c_str());
    EXPECT_STREQ(found.c_str(), row.expected == nullptr ? "" : folder.PathOf(row.expected).c_str())
        << row.what;
    EXPECT_EQ(found.present(), row.expected != nullptr) << row.what;
  }
}

}  // namespace
}  // namespace hostscope
