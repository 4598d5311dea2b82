#include "scans/list_entry.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace hostscope {
namespace {

std::string Shown(const char* text) {
  return text == nullptr ? "none" : text;
}

TEST(ListEntry, RegistryPaths) {
  // Number of the root, hive, subkey, item.
  constexpr std::pair<const char*, const char*> kRows[] = {
      {"HKCR\\x", "0 HKEY_CLASSES_ROOT,x,none"},
      {"HKCC\\x", "5 HKEY_CURRENT_CONFIG,x,none"},
      {"HKCU\\x", "1 HKEY_CURRENT_USER,x,none"},
      {"HKU\\x", "3 HKEY_USERS,x,none"},
      {"HKDD\\x", "6 HKEY_DYN_DATA,x,none"},
      {"HKPD\\x", "4 HKEY_PERFORMANCE_DATA,x,none"},
      {"hklm\\software\\Example", "2 HKEY_LOCAL_MACHINE,software\\Example,none"},
      {"HkU", "3 HKEY_USERS,none,none"},
      {"HKU\\", "3 HKEY_USERS,,none"},
      {"HKU\\\\x", "3 HKEY_USERS,\\x,none"},
      {"HKLM\\a,b,c", "2 HKEY_LOCAL_MACHINE,a,b,c"},
      {"HKLM\\,a", "2 HKEY_LOCAL_MACHINE,,a"},
      {"HKLM\\a,", "2 HKEY_LOCAL_MACHINE,a,"},
  };
  for (const auto& [text, expected] : kRows) {
    std::string entry = text;
    const RegistryPath path = ParseRegistryPath(entry.data());
    const auto root = reinterpret_cast<std::uintptr_t>(path.root) - 0x80000000;
    EXPECT_EQ(std::to_string(root) + " " + Shown(path.hive_name) + "," + Shown(path.subkey) + "," +
                  Shown(path.item),
              expected)
        << text;
  }
  for (const char* other : {"HKEY_LOCAL_MACHINE\\Software", "HKL\\x", "HKLMX\\x", "HKLM,1",
                            " HKLM\\x", "C:\\x,y", "\\x", ""}) {
    std::string entry = other;
    EXPECT_EQ(ParseRegistryPath(entry.data()).root, nullptr) << other;
    EXPECT_EQ(entry, other);  // it stays whole
  }
}

}  // namespace
}  // namespace hostscope
