#include <gtest/gtest.h>

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

  HKEY Open(HKEY root, const char* path) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(root, path, 0, KEY_READ, &key), 0) << path;
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
      {"final and double separators", HKEY_LOCAL_MACHINE, "Software\\\\Classes\\", 0, 0},
      {"a leading separator", HKEY_LOCAL_MACHINE, "\\Software", 2, 161},
      {"which NT takes for classes", HKEY_CLASSES_ROOT, "\\CLSID", 2, 0},
      {"but not two of them", HKEY_CLASSES_ROOT, "\\\\CLSID", 2, 161},
      {"a denied key", HKEY_LOCAL_MACHINE, "Security", 5, 5},
      {"a key below it", HKEY_LOCAL_MACHINE, "Security\\Policy", 0, 0},
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
  EXPECT_TRUE(machine_.handles.OpenObjects().empty());
}

// NT ends a text where there is room; Windows 95/98/Me clear the type of a value that is not there.
TEST_F(RegistryCalls, QueryingValues) {
  machine_.registry.SetValue("HKCU\\K", "open", REG_SZ, "abc");
  machine_.registry.SetValue("HKCU\\K", "raw", REG_BINARY, "abc");
  const struct {
    const char* name;
    DWORD room, type_windows, type_nt, size;
    std::string windows, nt;  // the first bytes of a buffer of '#'
  } rows[] = {{"open", 3, REG_SZ, REG_SZ, 3, "abc##", "abc##"},
              {"open", 4, REG_SZ, REG_SZ, 3, "abc##", "abc\0#"s},
              {"raw", 9, REG_BINARY, REG_BINARY, 3, "abc##", "abc##"},
              {"missing", 5, REG_NONE, 77, 5, "####", "####"}};
  for (const Family& family : kFamilies) {
    SetFamily(family);
    HKEY key = Open(HKEY_CURRENT_USER, "K");
    for (const auto& row : rows) {
      SCOPED_TRACE(std::string(family.name) + ": " + row.name + " into " +
                   std::to_string(row.room));
      std::string buffer(16, '#');
      DWORD type = 77, size = row.room;
      EXPECT_EQ(RegQueryValueExA(key, row.name, nullptr, &type,
                                 reinterpret_cast<BYTE*>(buffer.data()), &size),
                row.name == "missing"s ? 2 : 0);
      EXPECT_EQ(type, machine_.IsNt() ? row.type_nt : row.type_windows);
      EXPECT_EQ(size, row.size);
      const std::string& expected = machine_.IsNt() ? row.nt : row.windows;
      EXPECT_EQ(buffer.substr(0, expected.size()), expected);
    }
    RegCloseKey(key);
  }
}

TEST_F(RegistryCalls, OrderOfSubkeysAndSizeOfTexts) {
  for (const char* name : {"Zeta", "Al", "Beta"})
    machine_.registry.MakeKey("HKLM\\K\\"s + name);
  machine_.registry.SetText("HKLM\\K", "text", "123456");
  machine_.registry.SetValue("HKLM\\K", "the longest", REG_BINARY, "12345678901");
  for (const Family& family : kFamilies) {
    SetFamily(family);
    HKEY key = Open(HKEY_LOCAL_MACHINE, "K");
    std::string names;
    char name[8];
    for (DWORD index = 0; RegEnumKeyA(key, index, name, sizeof(name)) == 0; ++index)
      names += name + " "s;
    EXPECT_EQ(names, machine_.IsNt() ? "Al Beta Zeta " : "Zeta Al Beta ");
    // NT counts the 16-bit characters of the text and its zero.
    DWORD data = 0;
    EXPECT_EQ(RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, &data, nullptr, nullptr),
              0);
    EXPECT_EQ(data, machine_.IsNt() ? 14u : 11u) << family.name;
    RegCloseKey(key);
  }
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

}  // namespace
