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
  struct Row {
    const char* entry;
    std::uint32_t root;
    const char* hive;
    const char* subkey;
    const char* item;
  };
  const Row rows[] = {
      {"HKCR\\x", 0x80000000, "HKEY_CLASSES_ROOT", "x", "none"},
      {"HKCC\\x", 0x80000005, "HKEY_CURRENT_CONFIG", "x", "none"},
      {"HKCU\\x", 0x80000001, "HKEY_CURRENT_USER", "x", "none"},
      {"HKLM\\x", 0x80000002, "HKEY_LOCAL_MACHINE", "x", "none"},
      {"HKU\\x", 0x80000003, "HKEY_USERS", "x", "none"},
      {"HKDD\\x", 0x80000006, "HKEY_DYN_DATA", "x", "none"},
      {"HKPD\\x", 0x80000004, "HKEY_PERFORMANCE_DATA", "x", "none"},
      {"hklm\\software\\Example", 0x80000002, "HKEY_LOCAL_MACHINE", "software\\Example", "none"},
      {"HkU", 0x80000003, "HKEY_USERS", "none", "none"},
      {"HKU\\", 0x80000003, "HKEY_USERS", "", "none"},
      {"HKU\\\\x", 0x80000003, "HKEY_USERS", "\\x", "none"},
      {"HKLM\\a,b,c", 0x80000002, "HKEY_LOCAL_MACHINE", "a,b", "c"},
      {"HKLM\\a,", 0x80000002, "HKEY_LOCAL_MACHINE", "a", ""},
      {"HKLM\\,a", 0x80000002, "HKEY_LOCAL_MACHINE", "", "a"},
      {"HKEY_LOCAL_MACHINE\\Software", 0, "none", "none", "none"},
      {"HKL\\x", 0, "none", "none", "none"},
      {"HKLMX\\x", 0, "none", "none", "none"},
      {"HKLM,1", 0, "none", "none", "none"},
      {" HKLM\\x", 0, "none", "none", "none"},
      {"C:\\x,y", 0, "none", "none", "none"},
      {"\\x", 0, "none", "none", "none"},
      {"", 0, "none", "none", "none"},
  };
  for (const Row& row : rows) {
    std::string entry = row.entry;
    const RegistryPath path = ParseRegistryPath(entry.data());
    EXPECT_EQ(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(path.root)), row.root)
        << row.entry;
    EXPECT_EQ(Shown(path.hive_name), row.hive) << row.entry;
    EXPECT_EQ(Shown(path.subkey), row.subkey) << row.entry;
    EXPECT_EQ(Shown(path.item), row.item) << row.entry;
    if (row.root == 0) {
      EXPECT_EQ(entry, row.entry);  // what is no registry path stays whole
    }
  }
}

}  // namespace
}  // namespace hostscope
