// Version resources of program files, and times of files taken apart.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/contract/contract_machine.h"
#include "tests/support/versioned_file.h"

namespace contract {
namespace {

class VersionContract : public testing::Test {
 protected:
  // "no", or the value's length and what is there.
  std::string Query(const std::string& path) {
    std::string writable = path;
    void* value = nullptr;
    UINT length = 0;
    if (!VerQueryValueA(block.data(), writable.data(), &value, &length)) return "no";
    return std::to_string(length) + " " +
           Visible({static_cast<const char*>(value), std::min<std::size_t>(length, 16)});
  }
  void Read(const std::string& name) {
    DWORD handle = 99;
    block.assign(GetFileVersionInfoSizeA(place.Path(name).c_str(), &handle), '~');
    ExpectAnswer(name + ", handle", 0, handle);
    ASSERT_FALSE(block.empty()) << name;
    ExpectAnswer(name, "yes",
                 Outcome(GetFileVersionInfoA(place.Path(name).c_str(), 0,
                                             static_cast<DWORD>(block.size()), block.data())));
  }

  Place place;
  std::vector<char> block;
};

TEST_F(VersionContract, ValuesOfAResource) {
  for (const bool wide : {false, true}) {
    place.MakeFile(
        "a.dll",
        hostscope::test::Bytes({.fixed = {{5, 81, 4916, 7}},
                                .strings = {{"CompanyName", "M\xFC & Co"}, {"FileVersion", "5.81"}},
                                .wide = wide}));
    Read("a.dll");
    const std::string fixed = R"(52 \xBD\x04\xEF\xFE||\x01|Q|\x05|\x07|4\x13)";
    const struct {
      const char* path;
      std::string expected;
    } rows[] = {{"\\", fixed},
                {"\\VarFileInfo\\Translation", R"(4 \x09\x04\xE4\x04)"},
                {"\\varfileinfo\\TRANSLATION", R"(4 \x09\x04\xE4\x04)"},
                {"\\StringFileInfo\\040904E4\\CompanyName", R"(8 M\xFC & Co|)"},
                {"\\StringFileInfo\\040904e4\\companyname", R"(8 M\xFC & Co|)"},
                {"\\StringFileInfo\\040904E4\\FileVersion", "5 5.81|"},
                {"\\StringFileInfo\\040904E4\\ProductName", "no"},
                {"\\StringFileInfo\\040704E4\\CompanyName", "no"},
                {"\\Other", "no"}};
    for (const auto& row : rows)
      ExpectAnswer(row.path, row.expected, Query(row.path));
  }
  place.MakeFile("bare.dll", hostscope::test::Bytes({.translation = {}}));
  Read("bare.dll");
  ExpectAnswer("no translation", "no", Query("\\VarFileInfo\\Translation"));
}

TEST_F(VersionContract, FilesWithoutOne) {
  place.MakeFile("text.dll", "a text");
  place.MakeFile("other.dll", hostscope::test::Bytes({.fixed = {{1, 0, 0, 0}}, .type = 10}));
  place.MakeFolder("folder");
  for (const char* name : {"text.dll", "other.dll", "folder", "absent.dll"}) {
    ExpectAnswer(name, 0, GetFileVersionInfoSizeA(place.Path(name).c_str(), nullptr));
    char buffer[64];
    ExpectAnswer(name, 0, GetFileVersionInfoA(place.Path(name).c_str(), 0, sizeof buffer, buffer));
  }
}

TEST(FileTimeContract, FileTimeToSystemTime) {
  static constexpr struct {
    unsigned long long steps;
    const char* expected;  // year, month, day of the week, day and so on
  } kRows[] = {{0, "1601 1 1 1 0 0 0 0"},
               {116444736000000000, "1970 1 4 1 0 0 0 0"},
               {125963423999999999, "2000 2 2 29 23 59 59 999"},
               {0x7FFF35F4F06C7FFF, "30827 12 5 31 23 59 59 999"},
               {0x8000000000000000, "87"}};
  for (const auto& row : kRows) {
    Place place;
    const FILETIME time = {static_cast<DWORD>(row.steps), static_cast<DWORD>(row.steps >> 32)};
    SYSTEMTIME parts = {};
    std::string came = Outcome(FileTimeToSystemTime(&time, &parts));
    if (came == "yes") {
      came.clear();
      for (const WORD part : {parts.wYear, parts.wMonth, parts.wDayOfWeek, parts.wDay, parts.wHour,
                              parts.wMinute, parts.wSecond, parts.wMilliseconds})
        came += (came.empty() ? "" : " ") + std::to_string(part);
    }
    ExpectAnswer(std::to_string(row.steps), row.expected, came);
  }
}

}  // namespace
}  // namespace contract
