// The registry, in keys of the test's own. Order is left out: systems differ in it.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr DWORD kNoType = 0xAAAA;
constexpr DWORD kRoom = 64;

class RegistryContract : public testing::Test {
 protected:
  ~RegistryContract() override {
    for (const HKEY key : open_)
      EXPECT_EQ(0, RegCloseKey(key));
  }
  // A key of the place, open until the test ends.
  HKEY Open(const std::string& subkey, REGSAM access) {
    HKEY key = nullptr;
    const std::string path = subkey.empty() ? place.key() : place.key() + "\\" + subkey;
    EXPECT_EQ(0, RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, access, &key)) << path;
    open_.push_back(key);
    return key;
  }

  Place place;

 private:
  std::vector<HKEY> open_;
};

// "error, type, size: bytes", the bytes as many as the call says there are. An error other than
// that of a short buffer stands alone.
std::string Answer(LONG error, DWORD type, DWORD size, const std::string& bytes) {
  if (error != 0 && error != 234) return std::to_string(error);
  std::string answer = std::to_string(error) + ", " +
                       (type == kNoType ? "no type" : std::to_string(type)) + ", " +
                       std::to_string(size);
  if (error == 0 && !bytes.empty() && size != 0) answer += ": " + Visible(bytes.substr(0, size));
  return answer;
}

std::string Query(HKEY key, const char* name, DWORD size) {
  std::string bytes(kRoom, '~');
  DWORD type = kNoType;
  const LONG error =
      RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(bytes.data()), &size);
  return Answer(error, type, size, bytes);
}

struct Value {
  const char* name;
  DWORD type;
  std::string_view data;
};

constexpr Value kValues[] = {{"", REG_SZ, "default\0"sv},
                             {"Text", REG_SZ, "value\0"sv},
                             {"Umlaut \xE4", REG_SZ, "\xF6\x80\0"sv},
                             {"Open", REG_SZ, "abc"sv},
                             {"Zero Inside", REG_SZ, "a\0b\0"sv},
                             {"Expand", REG_EXPAND_SZ, "%TEMP%\\x\0"sv},
                             {"Multi", REG_MULTI_SZ, "a\0bc\0\0"sv},
                             {"Open Multi", REG_MULTI_SZ, "a\0bc"sv},
                             {"Binary", REG_BINARY, "\x01\x02\0\xFF"sv},
                             {"Number", REG_DWORD, "\x78\x56\x34\x12"sv},
                             {"Half Number", REG_DWORD, "\x01\x02"sv},
                             {"Empty", REG_BINARY, ""sv},
                             {"Empty Text", REG_SZ, ""sv},
                             {"None", REG_NONE, "x"sv}};

std::string Expected(LONG error, const Value& value) {
  return Answer(error, value.type, static_cast<DWORD>(value.data.size()), std::string(value.data));
}

void MakeValues(Place& place) {
  for (const Value& value : kValues)
    place.SetValue("", value.name, value.type, value.data);
}

TEST_F(RegistryContract, QueryValue) {
  MakeValues(place);
  const HKEY key = Open("", KEY_QUERY_VALUE);
  for (const Value& value : kValues) {
    const std::string name = std::string("\"") + value.name + "\"";
    const DWORD size = static_cast<DWORD>(value.data.size());
    ExpectAnswer(name + ", room", Expected(0, value), Query(key, value.name, kRoom));
    ExpectAnswer(name + ", just fits", Expected(0, value), Query(key, value.name, size));
    if (size > 0) {
      ExpectAnswer(name + ", one short", Expected(234, value), Query(key, value.name, size - 1));
    }
    DWORD type = kNoType;
    DWORD needed = 0;
    const LONG error = RegQueryValueExA(key, value.name, nullptr, &type, nullptr, &needed);
    ExpectAnswer(name + ", size query", Answer(0, value.type, size, ""),
                 Answer(error, type, needed, ""));
  }
  ExpectAnswer("other case", "0, 1, 6: value|", Query(key, "tEXT", kRoom));
  ExpectAnswer("null is the default value", "0, 1, 8: default|", Query(key, nullptr, kRoom));
  ExpectAnswer("missing", "2", Query(key, "Missing", kRoom));
  ExpectAnswer("blank behind", "2", Query(key, "Text ", kRoom));
}

TEST_F(RegistryContract, OpenKey) {
  place.SetValue("Sub Key\\Deeper", "Text", REG_SZ, "value\0"s);
  place.MakeKey("Umlaut \xE4");
  static constexpr struct {
    const char* subkey;
    LONG expected;
  } kRows[] = {
      {"Sub Key", 0},         {"sub KEY", 0},   {"Sub Key\\Deeper", 0}, {"SUB KEY\\DEEPER", 0},
      {"Umlaut \xC4", 0},     {"Sub Key\\", 0}, {"Missing", 2},         {"Sub Key\\Missing", 2},
      {"Missing\\Deeper", 2}, {"Sub", 2},       {"Sub Key/Deeper", 2},  {"\\Sub Key", 161}};
  const HKEY root = Open("", KEY_READ);
  for (const auto& row : kRows) {
    HKEY key = nullptr;
    ExpectAnswer(row.subkey, row.expected,
                 RegOpenKeyExA(root, row.subkey, 0, KEY_QUERY_VALUE, &key));
    ExpectAnswer(std::string(row.subkey) + ", handle", row.expected == 0, key != nullptr);
    if (row.expected == 0) ExpectAnswer("close", 0, RegCloseKey(key));
  }
  const HKEY deeper = Open("Sub Key\\Deeper", KEY_READ);
  for (const char* subkey : {"", static_cast<const char*>(nullptr)}) {
    HKEY key = nullptr;
    ASSERT_EQ(0, RegOpenKeyExA(deeper, subkey, 0, KEY_QUERY_VALUE, &key));
    ExpectAnswer("the same key", "0, 1, 6: value|", Query(key, "Text", kRoom));
    RegCloseKey(key);
  }
}

TEST_F(RegistryContract, HandlesThatDoNotServe) {
  MakeValues(place);
  place.MakeKey("Sub");
  char name[64];
  const HKEY values = Open("", KEY_QUERY_VALUE);
  ExpectAnswer("enumerate with a right to query", 5, RegEnumKeyA(values, 0, name, 64));
  const HKEY subkeys = Open("", KEY_ENUMERATE_SUB_KEYS);
  ExpectAnswer("enumerate", 0, RegEnumKeyA(subkeys, 0, name, 64));
  ExpectAnswer("query with a right to enumerate", "5", Query(subkeys, "Text", kRoom));
  HKEY key = nullptr;
  ASSERT_EQ(0, RegOpenKeyExA(values, nullptr, 0, KEY_READ, &key));
  ExpectAnswer("close", 0, RegCloseKey(key));
  // A hive is never closed.
  RegCloseKey(HKEY_CURRENT_USER);
  ExpectAnswer("a hive, closed", 0, RegOpenKeyExA(HKEY_CURRENT_USER, nullptr, 0, KEY_READ, &key));
  RegCloseKey(key);
}

void MakeSubkeys(Place& place) {
  for (const char* name : {"beta", "Alpha", "longest subkey", "g\xE4mma"})
    place.MakeKey(name);
  place.MakeKey("Alpha\\Inner");
}

TEST_F(RegistryContract, EnumerateKeys) {
  MakeSubkeys(place);
  const HKEY key = Open("", KEY_ENUMERATE_SUB_KEYS);
  std::set<std::string> names;
  std::set<std::string> names_ex;
  char name[260];
  for (DWORD i = 0; i < 4; ++i) {
    ASSERT_EQ(0, RegEnumKeyA(key, i, name, sizeof name)) << i;
    names.insert(name);
    DWORD size = sizeof name;
    ASSERT_EQ(0, RegEnumKeyExA(key, i, name, &size, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(std::string(name).size(), size);
    names_ex.insert(name);
  }
  EXPECT_EQ((std::set<std::string>{"beta", "Alpha", "longest subkey", "g\xE4mma"}), names);
  EXPECT_EQ(names, names_ex);
  ExpectAnswer("behind the last", 259, RegEnumKeyA(key, 4, name, sizeof name));
  DWORD size = sizeof name;
  ExpectAnswer("behind the last, ex", 259,
               RegEnumKeyExA(key, 4, name, &size, nullptr, nullptr, nullptr, nullptr));
  const HKEY empty = Open("beta", KEY_READ);
  ExpectAnswer("no subkeys", 259, RegEnumKeyA(empty, 0, name, sizeof name));
}

TEST_F(RegistryContract, EnumerateValues) {
  MakeValues(place);
  const HKEY key = Open("", KEY_QUERY_VALUE);
  std::set<std::string> expected;
  std::set<std::string> came;
  DWORD index = 0;
  for (const Value& value : kValues) {
    expected.insert(value.name + (" = " + Expected(0, value)));
    char name[64] = "~";
    DWORD name_size = sizeof name;
    std::string bytes(kRoom, '~');
    DWORD size = kRoom;
    DWORD type = kNoType;
    const LONG error = RegEnumValueA(key, index++, name, &name_size, nullptr, &type,
                                     reinterpret_cast<BYTE*>(bytes.data()), &size);
    EXPECT_EQ(std::string(name).size(), name_size);
    came.insert(name + (" = " + Answer(error, type, size, bytes)));
  }
  EXPECT_EQ(expected, came);
  char name[64];
  DWORD size = sizeof name;
  ExpectAnswer("behind the last", 259,
               RegEnumValueA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(RegistryContract, EnumerateValuesIntoShortBuffers) {
  static constexpr struct {
    DWORD name_size;
    DWORD data_size;
    LONG expected;
  } kRows[] = {{5, 6, 0}, {4, 6, 234}, {5, 5, 234}, {1, 6, 234}};
  place.SetValue("", "Text", REG_SZ, "value\0"s);
  const HKEY key = Open("", KEY_QUERY_VALUE);
  for (const auto& row : kRows) {
    char name[64] = "";
    DWORD name_size = row.name_size;
    BYTE data[64] = {};
    DWORD data_size = row.data_size;
    const LONG error = RegEnumValueA(key, 0, name, &name_size, nullptr, nullptr, data, &data_size);
    const std::string text =
        "name " + std::to_string(row.name_size) + ", data " + std::to_string(row.data_size);
    ExpectAnswer(text, row.expected, error);
    if (row.data_size < 6) ExpectAnswer(text + ", size needed", 6, data_size);
  }
}

TEST_F(RegistryContract, KeyInformation) {
  MakeSubkeys(place);
  place.SetValue("", "Text", REG_SZ, "value\0"s);
  place.SetValue("", "Longest Name", REG_BINARY, "0123456789");
  const HKEY key = Open("", KEY_QUERY_VALUE);
  DWORD subkeys = 99, longest_subkey = 99, values = 99, longest_name = 99, longest_data = 99;
  ExpectAnswer("information", 0,
               RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &subkeys, &longest_subkey, nullptr,
                                &values, &longest_name, &longest_data, nullptr, nullptr));
  ExpectAnswer("subkeys", 4, subkeys);
  ExpectAnswer("longest subkey", 14, longest_subkey);
  ExpectAnswer("values", 2, values);
  ExpectAnswer("longest value name", 12, longest_name);
  ExpectAnswer("longest data: six characters of 16 bits", 12, longest_data);

  place.MakeKey("Nothing");
  const HKEY nothing = Open("Nothing", KEY_READ);
  RegQueryInfoKeyA(nothing, nullptr, nullptr, nullptr, &subkeys, &longest_subkey, nullptr, &values,
                   &longest_name, &longest_data, nullptr, nullptr);
  ExpectAnswer("empty key", 0, subkeys + longest_subkey + values + longest_name + longest_data);
}

}  // namespace
}  // namespace contract
