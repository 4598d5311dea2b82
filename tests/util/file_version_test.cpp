#include "util/file_version.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/host/machine.h"
#include "platform/win32.h"
#include "tests/support/test_folder.h"
#include "tests/support/versioned_file.h"
#include "util/numbers.h"

namespace hostscope {
namespace {

class FileVersionTest : public testing::Test {
 protected:
  // "none" when the file's resource cannot be read.
  std::string Read(const std::string& name, const char* item) {
    char text[kVersionTextSize + 1];
    std::memset(text, '~', sizeof text);
    const bool read = ReadFileVersionItem(name.c_str(), item, {text, kVersionTextSize});
    EXPECT_EQ(text[kVersionTextSize], '~') << item;
    EXPECT_TRUE(read || text[0] == '\0') << item;
    return read ? text : "none";
  }

  host::Machine machine_;
  host::UseMachine use_{machine_};
  test::TestFolder folder_;
};

TEST_F(FileVersionTest, ItemsOfAResource) {
  struct Row {
    const char* what;
    test::VersionedFile file;
    const char* item;
    std::string expected;
  };
  const std::pair<std::string, std::string> version{"FileVersion", "5.00.2195.6601"};
  const std::pair<std::string, std::string> company{"CompanyName", "M\xFCller & Co"};
  const Row rows[] = {
      {"fixed record",
       {.fixed = {{5, 0, 65535, 1}}, .strings = {version}},
       "FileVersion",
       "5.0.65535.1"},
      {"64-bit file", {.fixed = {{5, 0, 2, 1}}, .wide = true}, "fileversion", "5.0.2.1"},
      {"no fixed record", {.strings = {version}}, "FILEVERSION", "5.00.2195.6601"},
      {"short fixed record",
       {.fixed = {{5, 0, 2, 1}}, .strings = {version}, .fixed_length = 51},
       "FileVersion",
       "5.00.2195.6601"},
      {"other signature",
       {.fixed = {{5, 0, 2, 1}}, .strings = {version}, .signature = 1},
       "FileVersion",
       "5.00.2195.6601"},
      {"strings that state bytes",
       {.strings = {version}, .string_length = 99},
       "FileVersion",
       "5.00.2195.6601"},
      {"neither", {}, "FileVersion", ""},
      {"another string",
       {.fixed = {{5, 0, 2, 1}}, .strings = {version, company}},
       "companyname",
       "M\xFCller & Co"},
      {"German table",
       {.strings = {company}, .translation = 0x04E40407, .table = 0x040704E4},
       "CompanyName",
       "M\xFCller & Co"},
      {"no translation",
       {.strings = {company}, .translation = {}},
       "CompanyName",
       "M\xFCller & Co"},
      {"table of another name",
       {.strings = {company}, .translation = 0x04E40407},
       "CompanyName",
       ""},
      {"absent string", {.strings = {company}}, "ProductName", ""},
      {"cut to the field",
       {.strings = {{"FileVersion", std::string(80, '9')}}},
       "FileVersion",
       std::string(49, '9')},
      {"no version among the resources",
       {.fixed = {{5, 0, 2, 1}}, .type = 15},
       "FileVersion",
       "none"},
  };
  for (const Row& row : rows) {
    folder_.Write("a.dll", test::Bytes(row.file));
    EXPECT_EQ(Read(folder_.PathOf("a.dll"), row.item), row.expected) << row.what;
  }
  folder_.Write("text.dll", "no program");
  folder_.Write("empty.dll", "");
  for (const char* name : {"text.dll", "empty.dll", "absent.dll", ""})
    EXPECT_EQ(Read(folder_.PathOf(name), "FileVersion"), "none") << name;
  EXPECT_EQ(Read(folder_.PathOf("a.dll"), std::string(300, 'x').c_str()), "none");
}

TEST_F(FileVersionTest, NothingIsBelieved) {
  const std::string whole = test::Bytes(
      {.fixed = {{5, 0, 2, 1}}, .strings = {{"FileVersion", "5.0"}, {"CompanyName", "Maker"}}});
  const auto read_both = [&](const std::string& bytes) {
    folder_.Write("a.dll", bytes);
    Read(folder_.PathOf("a.dll"), "FileVersion");
    Read(folder_.PathOf("a.dll"), "CompanyName");
  };
  for (std::size_t size = 0; size < whole.size(); size += 1 + size / 64)
    read_both(whole.substr(0, size));
  for (std::size_t at = 0; at + 2 <= whole.size(); at += 2) {
    if (whole.substr(at, 2) == std::string(2, '\0')) continue;
    for (const char* lie : {"\xFF\xFF", "\x07\x00"}) {
      std::string bytes = whole;
      bytes.replace(at, 2, lie, 2);
      read_both(bytes);
    }
  }
}

TEST(Numbers, FormatUnsigned64) {
  for (const std::uint64_t number : {0ull, 9ull, 10ull, 5000000000ull, ~0ull}) {
    char text[kUnsigned64Size];
    FormatUnsigned64(number, text);
    EXPECT_EQ(text, std::to_string(number));
  }
}

}  // namespace
}  // namespace hostscope
