#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "platform/host/advapi32.h"
#include "platform/host/machine.h"

namespace {

using namespace std::string_literals;
using host::Machine;

struct Family {
  const char* name;
  DWORD platform_id;
};
constexpr Family kFamilies[] = {{"Windows 95/98/Me", 1}, {"NT", 2}};

class RegistryCalls : public testing::Test {
 protected:
  void SetFamily(const Family& family) { machine_.version.platform_id = family.platform_id; }
  void SetNt(bool nt) { machine_.version.platform_id = nt ? 2 : 1; }

  HKEY Open(HKEY root, const char* path, REGSAM access = KEY_READ) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(root, path, 0, access, &key), 0) << path;
    return key;
  }

  Machine machine_;
  host::UseMachine use_{machine_};
};

TEST_F(RegistryCalls, OpeningKeys) {
  machine_.registry.MakeKey("HKLM\\Software\\Classes\\CLSID");
  machine_.registry.DenyAccess("HKLM\\Security");
  machine_.registry.MakeKey("HKLM\\Security\\Policy");
  HKEY stranger = reinterpret_cast<HKEY>(ULONG_PTR{0x4321});
  const struct {
    const char* what;
    HKEY root;
    const char* path;
    LONG windows;
    LONG nt;
  } rows[] = {
      {"case does not count", HKEY_LOCAL_MACHINE, "SOFTWARE\\classes", 0, 0},
      {"final and double separators", HKEY_LOCAL_MACHINE, "Software\\\\Classes\\", 0, 0},
      {"no subkey is the key itself", HKEY_LOCAL_MACHINE, nullptr, 0, 0},
      {"an empty one too", HKEY_CURRENT_USER, "", 0, 0},
      {"a missing key", HKEY_LOCAL_MACHINE, "Software\\Missing", 2, 2},
      {"a missing key on the way", HKEY_LOCAL_MACHINE, "Missing\\Classes", 2, 2},
      {"a leading separator", HKEY_LOCAL_MACHINE, "\\Software", 2, 161},
      {"which NT takes for classes", HKEY_CLASSES_ROOT, "\\CLSID", 2, 0},
      {"but not two of them", HKEY_CLASSES_ROOT, "\\\\CLSID", 2, 161},
      {"a denied key", HKEY_LOCAL_MACHINE, "Security", 5, 5},
      {"a key below it", HKEY_LOCAL_MACHINE, "Security\\Policy", 0, 0},
      {"no key", nullptr, "Software", 6, 6},
      {"a handle that was never given", stranger, "Software", 6, 6},
      {"no registry of performance data", HKEY_PERFORMANCE_DATA, nullptr, 6, 6},
      {"dynamic data, of Windows 95/98/Me only", HKEY_DYN_DATA, nullptr, 0, 6},
      {"sign-extended", reinterpret_cast<HKEY>(LONG_PTR{LONG(0x80000002)}), "Software", 0, 0},
  };
  for (const Family& family : kFamilies) {
    SetFamily(family);
    for (const auto& row : rows) {
      HKEY key = nullptr;
      const LONG expected = family.platform_id == 2 ? row.nt : row.windows;
      EXPECT_EQ(RegOpenKeyExA(row.root, row.path, 0, 1, &key), expected)
          << family.name << ": " << row.what;
      EXPECT_EQ(key != nullptr, expected == 0) << row.what;
      if (key == nullptr) continue;
      EXPECT_EQ(RegCloseKey(key), 0) << row.what;
    }
  }
  EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software", 0, 1, nullptr), 87);
  EXPECT_TRUE(machine_.handles.OpenObjects().empty());
}

TEST_F(RegistryCalls, ClosingKeys) {
  machine_.registry.MakeKey("HKLM\\Software");
  HKEY key = Open(HKEY_LOCAL_MACHINE, "Software");
  EXPECT_EQ(machine_.handles.OpenObjects(), (std::map<std::string, int>{{"key", 1}}));
  EXPECT_EQ(RegCloseKey(key), 0);
  EXPECT_EQ(RegCloseKey(key), 6);
  DWORD size = 0;
  EXPECT_EQ(RegQueryValueExA(key, "", nullptr, nullptr, nullptr, &size), 6);
  EXPECT_EQ(RegCloseKey(nullptr), 6);
  EXPECT_EQ(RegCloseKey(HKEY_LOCAL_MACHINE), 0);
}

TEST_F(RegistryCalls, NtHandlesAllowWhatTheyWereOpenedFor) {
  machine_.registry.MakeKey("HKLM\\K\\Sub");
  machine_.registry.SetText("HKLM\\K", "v", "x");
  const struct {
    REGSAM access;
    LONG values;
    LONG subkeys;
  } rows[] = {{KEY_QUERY_VALUE, 0, 5}, {KEY_ENUMERATE_SUB_KEYS, 5, 0}, {9, 0, 0},
              {KEY_READ, 0, 0},        {MAXIMUM_ALLOWED, 0, 0},        {0x80000000, 0, 0},
              {KEY_NOTIFY, 5, 5}};
  for (const Family& family : kFamilies) {
    SetFamily(family);
    for (const auto& row : rows) {
      const bool nt = machine_.IsNt();
      HKEY key = Open(HKEY_LOCAL_MACHINE, "K", row.access);
      char name[10];
      DWORD size = 10;
      DWORD count = 0;
      const LONG values = nt ? row.values : 0;
      const LONG subkeys = nt ? row.subkeys : 0;
      EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, nullptr, &count), values)
          << row.access;
      EXPECT_EQ(RegEnumValueA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr), values);
      EXPECT_EQ(RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, nullptr, nullptr),
                values);
      EXPECT_EQ(RegEnumKeyA(key, 0, name, 10), subkeys) << row.access;
      size = 10;
      EXPECT_EQ(RegEnumKeyExA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr), subkeys);
      EXPECT_EQ(RegCloseKey(key), 0);
    }
    for (const REGSAM access : {KEY_READ | KEY_SET_VALUE, KEY_ALL_ACCESS, KEY_WRITE}) {
      HKEY key = nullptr;
      EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "K", 0, access, &key),
                machine_.IsNt() ? ERROR_ACCESS_DENIED : ERROR_SUCCESS)
          << access;
      if (key != nullptr) RegCloseKey(key);
    }
  }
}

TEST_F(RegistryCalls, QueryingValues) {
  machine_.registry.SetText("HKCU\\K", "text", "abc");
  machine_.registry.SetValue("HKCU\\K", "open", REG_SZ, "abc");
  machine_.registry.SetValue("HKCU\\K", "raw", REG_BINARY, "abc");
  machine_.registry.SetValue("HKCU\\K", "none", REG_NONE, "");
  machine_.registry.SetText("HKCU\\K", "", "d");
  constexpr DWORD kNoBuffer = 0xFFFFFFFF;
  const struct {
    const char* name;
    DWORD room;
    LONG error;
    DWORD type;
    DWORD size;
    std::string windows;  // the first bytes of a buffer of '#'
    std::string nt;
  } rows[] = {
      {"text", kNoBuffer, 0, REG_SZ, 4, "####", "####"},
      {"TEXT", 10, 0, REG_SZ, 4, "abc\0#"s, "abc\0#"s},
      {"text", 4, 0, REG_SZ, 4, "abc\0#"s, "abc\0#"s},
      {"text", 3, 234, REG_SZ, 4, "####", "####"},
      {"text", 0, 234, REG_SZ, 4, "####", "####"},
      {"open", 3, 0, REG_SZ, 3, "abc##", "abc##"},
      {"open", 4, 0, REG_SZ, 3, "abc##", "abc\0#"s},  // NT ends it, where there is room
      {"raw", 9, 0, REG_BINARY, 3, "abc##", "abc##"},
      {"none", 0, 0, REG_NONE, 0, "####", "####"},
      {"none", 5, 0, REG_NONE, 0, "####", "####"},
      {"", 5, 0, REG_SZ, 2, "d\0##"s, "d\0##"s},
      {nullptr, 5, 0, REG_SZ, 2, "d\0##"s, "d\0##"s},
      {"missing", 5, 2, 77, 5, "####", "####"},
      {"missing", kNoBuffer, 2, 77, kNoBuffer, "####", "####"},
  };
  for (const Family& family : kFamilies) {
    SetFamily(family);
    for (const auto& row : rows) {
      const std::string what = std::string(family.name) + ": " + (row.name ? row.name : "null") +
                               " into " + std::to_string(row.room);
      std::array<char, 16> buffer;
      buffer.fill('#');
      BYTE* const data = row.room == kNoBuffer ? nullptr : reinterpret_cast<BYTE*>(buffer.data());
      DWORD type = 77;
      DWORD size = row.room;
      HKEY key = Open(HKEY_CURRENT_USER, "K");
      EXPECT_EQ(RegQueryValueExA(key, row.name, nullptr, &type, data, &size), row.error) << what;
      RegCloseKey(key);
      const bool cleared = row.error == 2 && !machine_.IsNt();
      EXPECT_EQ(type, cleared ? REG_NONE : row.type) << what;
      EXPECT_EQ(size, row.size) << what;
      const std::string& expected = machine_.IsNt() ? row.nt : row.windows;
      EXPECT_EQ(std::string(buffer.data(), expected.size()), expected) << what;
    }
  }
  BYTE data[8];
  DWORD reserved = 0;
  DWORD size = 8;
  HKEY key = Open(HKEY_CURRENT_USER, "K");
  EXPECT_EQ(RegQueryValueExA(key, "text", nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(RegQueryValueExA(key, "text", nullptr, nullptr, data, nullptr), 87);
  EXPECT_EQ(RegQueryValueExA(key, "text", &reserved, nullptr, data, &size), 87);
  RegCloseKey(key);
}

TEST_F(RegistryCalls, EnumeratingSubkeys) {
  for (const char* name : {"Zeta", "Al", "Beta"})
    machine_.registry.MakeKey("HKLM\\K\\"s + name);
  for (const Family& family : kFamilies) {
    SetFamily(family);
    HKEY key = Open(HKEY_LOCAL_MACHINE, "K");
    std::string names;
    char name[8];
    DWORD size = sizeof(name);
    DWORD index = 0;
    for (; RegEnumKeyExA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) == 0;
         ++index) {
      EXPECT_EQ(size, std::strlen(name));
      names += name + " "s;
      EXPECT_EQ(RegEnumKeyA(key, index, name, sizeof(name)), 0);
      names += name + " "s;
      size = sizeof(name);
    }
    EXPECT_EQ(names, machine_.IsNt() ? "Al Al Beta Beta Zeta Zeta " : "Zeta Zeta Al Al Beta Beta ");
    EXPECT_EQ(RegEnumKeyExA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr), 259);
    EXPECT_EQ(RegEnumKeyA(key, index, name, sizeof(name)), 259);
    EXPECT_EQ(RegEnumKeyA(key, 0xFFFFFFFF, name, sizeof(name)), 259);
    RegCloseKey(key);
  }
}

TEST_F(RegistryCalls, ShortBuffersOfEnumerations) {
  machine_.registry.MakeKey("HKLM\\K\\Four");
  machine_.registry.SetText("HKLM\\K", "Name", "text");
  HKEY key = Open(HKEY_LOCAL_MACHINE, "K");
  const struct {
    DWORD name_room, data_room;
    LONG subkey_error, value_error;
    DWORD name_size, data_size;
  } rows[] = {{5, 5, 0, 0, 4, 5},
              {4, 5, 234, 234, 4, 5},
              {0, 5, 234, 234, 0, 5},
              {5, 4, 0, 234, 4, 5},
              {9, 0, 0, 234, 4, 5}};
  for (const auto& row : rows) {
    char name[10];
    BYTE data[10];
    const std::string what = std::to_string(row.name_room) + " " + std::to_string(row.data_room);
    DWORD size = row.name_room;
    EXPECT_EQ(RegEnumKeyExA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
              row.subkey_error)
        << what;
    EXPECT_EQ(RegEnumKeyA(key, 0, name, row.name_room), row.subkey_error) << what;
    size = row.name_room;
    DWORD data_size = row.data_room;
    DWORD type = 77;
    EXPECT_EQ(RegEnumValueA(key, 0, name, &size, nullptr, &type, data, &data_size), row.value_error)
        << what;
    EXPECT_EQ(size, row.name_size) << what;
    EXPECT_EQ(data_size, row.data_size) << what;
    EXPECT_EQ(type, REG_SZ) << what;
  }
  char name[10];
  DWORD size = 10;
  BYTE data[10];
  EXPECT_EQ(RegEnumValueA(key, 1, name, &size, nullptr, nullptr, nullptr, nullptr), 259);
  EXPECT_EQ(RegEnumValueA(key, 0, nullptr, &size, nullptr, nullptr, nullptr, nullptr), 87);
  EXPECT_EQ(RegEnumValueA(key, 0, name, nullptr, nullptr, nullptr, nullptr, nullptr), 87);
  EXPECT_EQ(RegEnumValueA(key, 0, name, &size, nullptr, nullptr, data, nullptr), 87);
  EXPECT_EQ(RegEnumKeyExA(key, 0, name, nullptr, nullptr, nullptr, nullptr, nullptr), 87);
  EXPECT_EQ(RegEnumKeyA(key, 0, nullptr, 5), 87);
  RegCloseKey(key);
}

TEST_F(RegistryCalls, KeyInformation) {
  machine_.registry.MakeKey("HKLM\\K\\Longest");
  machine_.registry.MakeKey("HKLM\\K\\x");
  machine_.registry.SetText("HKLM\\K", "text", "123456");
  machine_.registry.SetValue("HKLM\\K", "the longest", REG_BINARY, "12345678901");
  for (const Family& family : kFamilies) {
    SetFamily(family);
    HKEY key = Open(HKEY_LOCAL_MACHINE, "K");
    DWORD subkeys = 9, subkey = 9, class_length = 9, values = 9, name = 9, data = 9, security = 9;
    char class_name[4] = "xyz";
    DWORD class_size = sizeof(class_name);
    EXPECT_EQ(RegQueryInfoKeyA(key, class_name, &class_size, nullptr, &subkeys, &subkey,
                               &class_length, &values, &name, &data, &security, nullptr),
              0);
    EXPECT_EQ(subkeys, 2u);
    EXPECT_EQ(subkey, 7u);
    EXPECT_EQ(values, 2u);
    EXPECT_EQ(name, 11u);
    // NT counts the 16-bit characters of the text and its zero.
    EXPECT_EQ(data, machine_.IsNt() ? 14u : 11u) << family.name;
    EXPECT_EQ(class_length, 0u);
    EXPECT_STREQ(class_name, "");
    EXPECT_EQ(class_size, 0u);
    EXPECT_EQ(RegQueryInfoKeyA(key, class_name, nullptr, nullptr, &subkeys, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
              machine_.IsNt() ? 87 : 0);
    RegCloseKey(key);
  }
}

TEST_F(RegistryCalls, AKeyRemovedWhileItIsOpen) {
  machine_.registry.SetText("HKLM\\a\\b", "v", "x");
  HKEY key = Open(HKEY_LOCAL_MACHINE, "a\\b");
  machine_.registry.RemoveKey("HKLM\\a");
  DWORD size = 0;
  EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, nullptr, &size), 1018);
  HKEY below = nullptr;
  EXPECT_EQ(RegOpenKeyExA(key, "c", 0, KEY_READ, &below), 1018);
  EXPECT_EQ(RegCloseKey(key), 0);
}

TEST_F(RegistryCalls, NamesOutsideTheCodePageAreListedButNotFound) {
  machine_.registry.SetText("HKLM\\K\\"s + "a?" + '\0' + "a\xD0\x96", "?" + "\0\xD0\x96"s, "x");
  HKEY key = Open(HKEY_LOCAL_MACHINE, "K");
  char name[3];
  DWORD longest = 0;
  EXPECT_EQ(RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, &longest, nullptr, nullptr,
                             nullptr, nullptr, nullptr, nullptr),
            0);
  EXPECT_EQ(longest, 2u);
  EXPECT_EQ(RegEnumKeyA(key, 0, name, sizeof(name)), 0);
  EXPECT_STREQ(name, "a?");
  HKEY below = nullptr;
  EXPECT_EQ(RegOpenKeyExA(key, name, 0, KEY_READ, &below), 2);
  RegCloseKey(key);
}

TEST_F(RegistryCalls, StatedFaults) {
  machine_.registry.SetText("HKLM\\K\\Sub", "v", "x");
  HKEY key = Open(HKEY_LOCAL_MACHINE, "K");
  HKEY below = nullptr;
  char name[10];
  DWORD size = 10;
  const struct {
    const char* function;
    std::function<LONG()> call;
  } rows[] = {
      {"RegOpenKeyExA", [&] { return RegOpenKeyExA(key, "Sub", 0, KEY_READ, &below); }},
      {"RegQueryValueExA",
       [&] { return RegQueryValueExA(key, "v", nullptr, nullptr, nullptr, &size); }},
      {"RegEnumKeyA", [&] { return RegEnumKeyA(key, 0, name, 10); }},
      {"RegEnumKeyExA",
       [&] { return RegEnumKeyExA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr); }},
      {"RegEnumValueA",
       [&] { return RegEnumValueA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr); }},
      {"RegQueryInfoKeyA",
       [&] {
         return RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &size, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, nullptr, nullptr);
       }},
      {"RegCloseKey", [&] { return RegCloseKey(key); }},
  };
  for (const auto& row : rows) {
    machine_.faults.FailNth(row.function, 1, 1450);
    EXPECT_EQ(row.call(), 1450) << row.function;
  }
  EXPECT_EQ(below, nullptr);
  EXPECT_EQ(RegCloseKey(key), 0) << "the failed close left it open";
}

}  // namespace
