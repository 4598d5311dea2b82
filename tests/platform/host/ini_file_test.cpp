#include "platform/host/ini_file.h"

#include <gtest/gtest.h>

namespace host {
namespace {

using namespace std::string_literals;

// "[section:line]key:line=value;" for every section, or "line: reason".
std::string Read(std::string_view bytes) {
  std::vector<IniSection> sections;
  if (const auto error = ReadIniText(bytes, sections)) {
    return std::to_string(error->line) + ": " + error->reason;
  }
  std::string shown;
  for (const IniSection& section : sections) {
    shown += "[" + section.name + ":" + std::to_string(section.line) + "]";
    for (const IniEntry& entry : section.entries) {
      shown += entry.key + ":" + std::to_string(entry.line) + "=" + entry.value + ";";
    }
  }
  return shown;
}

TEST(IniFile, WhatIsUnderstood) {
  const struct {
    std::string bytes;
    std::string expected;
  } rows[] = {
      {"", ""},
      {"[A]", "[A:1]"},
      {"\xEF\xBB\xBF[A]\r\nk=v\r\n", "[A:1]k:2=v;"},
      {"\n; c\n \t[ A b ]\t\n\n\t key x = a value \t\n", "[A b:3]key x:5=a value;"},
      {"[A]\nk==a=b\n", "[A:1]k:2==a=b;"},
      {"[A]\nk=\nl =\" A \"\nm=\"\"\nn=\"a\"b\"", "[A:1]k:2=;l:3= A ;m:4=;n:5=a\"b;"},
      {"[A]\nk=\"half\nl=\"\nm=v ; no comment", "[A:1]k:2=\"half;l:3=\";m:4=v ; no comment;"},
      {"[A]\nk=\xC3\xBC\xE2\x82\xAC\n[B]\nk=x\ty", "[A:1]k:2=\xFC\x80;[B:3]k:4=x\ty;"},
      {"; \xD0\x96 in a comment", ""},
  };
  for (const auto& row : rows)
    EXPECT_EQ(Read(row.bytes), row.expected) << row.bytes;
}

TEST(IniFile, WhatIsWrong) {
  const struct {
    std::string bytes;
    std::string error;
  } rows[] = {
      {"k=v", "1: a key before the first section"},
      {"[A]\n\nk", "3: this is no section"},
      {"[A]\n=v", "2: the key has no name"},
      {"[A", "1: the section has no closing bracket"},
      {"[A] ; c", "1: the section has no closing bracket"},
      {"[", "1: the section has no closing bracket"},
      {"[ ]", "1: the section has no name"},
      {"[A]\n[B]\n[a]", "3: the section stands twice"},
      {"[A]\nk\xC3\xA4=1\nK\xC3\x84=2", "3: the key stands twice"},
      {"[A]\nk=\xD0\x96", "2: a character that code page 1252 does not have"},
      {"[A]\n;\xFC", "2: the line is not UTF-8"},
      {"[A]\nk=\0"s, "2: a control character"},
      {"[A]\rk=v", "1: a control character"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Read(row.bytes).substr(0, row.error.size()), row.error) << row.bytes;
  }
}

}  // namespace
}  // namespace host
