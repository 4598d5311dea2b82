#include <gtest/gtest.h>

#include <string>

#include "platform/host/machine.h"
#include "platform/win32.h"
#include "tests/support/test_folder.h"
#include "util/library.h"
#include "util/profile_text.h"
#include "util/registry.h"
#include "util/string_list.h"

namespace hostscope {
namespace {

class Containers : public testing::Test {
 protected:
  host::Machine machine_;
  host::UseMachine use_{machine_};
};

TEST_F(Containers, StringListWithoutMemoryStaysAsItWas) {
  StringList list;
  ASSERT_TRUE(list.Create());
  for (int i = 0; i < 10; ++i)
    list.Append("x");
  const auto open_before = machine_.handles.OpenObjects();
  machine_.faults.FailNth("HeapReAlloc", 1, ERROR_NOT_ENOUGH_MEMORY);
  EXPECT_EQ(list.Append("no room in the list"), -1);
  machine_.faults.FailNth("HeapAlloc", 1, ERROR_NOT_ENOUGH_MEMORY);
  EXPECT_EQ(list.Append("no room for the copy"), -1);
  EXPECT_EQ(machine_.handles.OpenObjects(), open_before);
  EXPECT_EQ(list.count(), 10);
  EXPECT_EQ(list.Get(-1), nullptr);
  EXPECT_EQ(list.Get(10), nullptr);
  EXPECT_EQ(list.Append("y"), 10);
}

TEST_F(Containers, SectionBodies) {
  test::TestFolder folder;
  struct Row {
    const char* what;
    std::string_view file;
    const char* name;
    const char* expected;  // null: no such section
  };
  using namespace std::literals;
  const Row rows[] = {
      {"last section, without its final line break", "[A]\r\nx=1\r\n[MESSAGE]\r\none\r\ntwo\r\n"sv,
       "MESSAGE", "one\r\ntwo"},
      {"between sections", "[MESSAGE]\r\none\r\n\r\n[B]\r\n"sv, "MESSAGE", "one\r\n"},
      {"ends at any bracket", "[MESSAGE]\r\nsee [here]\r\n"sv, "MESSAGE", "see "},
      {"lower case header", "[message]\r\none\r\n"sv, "MESSAGE", nullptr},
      {"blank in the brackets", "[ MESSAGE ]\r\none\r\n"sv, "MESSAGE", nullptr},
      {"name inside an earlier text", "[A]\r\nx=[MESSAGE]!!two\r\n[MESSAGE]\r\none\r\n"sv,
       "MESSAGE", "two"},
      {"header at the end", "[MESSAGE]"sv, "MESSAGE", ""},
      {"one character behind the header", "[MESSAGE]x"sv, "MESSAGE", "x"},
      {"line break only", "[MESSAGE]\r\n"sv, "MESSAGE", ""},
      {"next header at once", "[MESSAGE]\r\n[B]"sv, "MESSAGE", ""},
      {"a lone line feed is dropped", "[MESSAGE]\r\none\n[B]"sv, "MESSAGE", "one"},
      {"a zero byte ends the text", "[A]\0[MESSAGE]\r\none"sv, "MESSAGE", nullptr},
      {"empty file", ""sv, "MESSAGE", nullptr},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    folder.Write("p.ini", row.file);
    const OwnedText body = ProfileText::Load(folder.PathOf("p.ini").c_str()).SectionBody(row.name);
    EXPECT_EQ(body.present(), row.expected != nullptr);
    if (row.expected != nullptr) {
      EXPECT_STREQ(body.c_str(), row.expected);
    }
  }
  EXPECT_FALSE(ProfileText::Load(folder.PathOf("none.ini").c_str()).present());
  EXPECT_FALSE(ProfileText::Load(folder.path().c_str()).present());
}

TEST_F(Containers, RegistryValues) {
  machine_.registry.SetValue("HKLM\\Software\\Test", "bytes", REG_BINARY, "abc");
  machine_.registry.SetText("HKLM\\Software\\Test", "", "default");
  machine_.registry.SetValue("HKLM\\Software\\Test", "empty", REG_SZ, "");
  const auto read = [](const char* subkey, const char* name) {
    return ReadRegistryValue(HKEY_LOCAL_MACHINE, subkey, name);
  };
  const RegistryValue bytes = read("\\Software\\Test", "bytes");
  ASSERT_TRUE(bytes.present());
  EXPECT_EQ(bytes.type, REG_BINARY);
  EXPECT_EQ(std::string(bytes.data.data(), bytes.data.size()), "abc");
  EXPECT_STREQ(bytes.AsText().c_str(), "abc");
  EXPECT_EQ(bytes.FirstNumber(), 0U);
  EXPECT_STREQ(read("Software\\Test", nullptr).AsText().c_str(), "default");
  EXPECT_FALSE(read("Software\\Test", "empty").present());
  EXPECT_FALSE(read("Software\\Test", "none").present());
  EXPECT_FALSE(read("Software\\None", "bytes").present());
  // The value shrinks, or grows, between the question for its size and the reading.
  int questions = 0;
  const auto change_at_second_question = [&](const char* data) {
    questions = 0;
    machine_.faults.AtCall("RegQueryValueExA", [&, data] {
      if (++questions == 2)
        machine_.registry.SetValue("HKLM\\Software\\Test", "bytes", REG_BINARY, data);
    });
  };
  const auto open_before = machine_.handles.OpenObjects();
  change_at_second_question("a");
  EXPECT_EQ(read("Software\\Test", "bytes").data.size(), 1U);
  change_at_second_question("abcdefgh");
  EXPECT_FALSE(read("Software\\Test", "bytes").present());
  EXPECT_EQ(machine_.handles.OpenObjects(), open_before);
}

INT_PTR Seven() {
  return 7;
}

TEST_F(Containers, ALibraryThatWasThereBeforeStays) {
  machine_.libraries.Add({.name = "EXTRA.DLL", .exports = {{"First", host::Export(Seven)}}});
  const HMODULE module = LoadLibraryA("EXTRA.DLL");
  {
    BoundLibrary<1> library;
    ASSERT_TRUE(library.Bind("EXTRA.DLL", {"First"}));
    EXPECT_EQ(library.Get<INT_PTR (*)()>(0)(), 7);
  }
  EXPECT_EQ(machine_.libraries.References("EXTRA.DLL"), 1U);
  FreeLibrary(module);
}

}  // namespace
}  // namespace hostscope
