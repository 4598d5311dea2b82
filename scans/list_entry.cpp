#include "scans/list_entry.h"

#include "util/text.h"

namespace hostscope {
namespace {

constexpr HiveName kHiveTable[] = {
    {"HKCR", "HKEY_CLASSES_ROOT", 0x80000000},
    {"HKCC", "HKEY_CURRENT_CONFIG", 0x80000005},
    {"HKCU", "HKEY_CURRENT_USER", 0x80000001},
    {"HKLM", "HKEY_LOCAL_MACHINE", 0x80000002},
    {"HKU", "HKEY_USERS", 0x80000003},
    {"HKDD", "HKEY_DYN_DATA", 0x80000006},
    {"HKPD", "HKEY_PERFORMANCE_DATA", 0x80000004},
};

// By the characters before the backslash; they are compared on a copy, so that the entry of another
// kind stays whole.
const HiveName* FindHive(const char* entry, const char* backslash) {
  char abbreviation[8] = {};
  const std::size_t length =
      backslash == nullptr ? TextLength(entry) : static_cast<std::size_t>(backslash - entry);
  if (length >= sizeof abbreviation) return nullptr;
  CopyText(abbreviation, length + 1, entry);
  for (const HiveName& hive : kHiveTable) {
    if (SameTextIgnoringCase(abbreviation, hive.abbreviation)) return &hive;
  }
  return nullptr;
}

}  // namespace

std::span<const HiveName> Hives() {
  return kHiveTable;
}

char* CutAtLastComma(char* text) {
  const char* const comma = FindLastCharacter(text, ',');
  if (comma == nullptr) return nullptr;
  text[comma - text] = '\0';
  return text + (comma - text) + 1;
}

RegistryPath ParseRegistryPath(char* entry) {
  char* const backslash = FindCharacter(entry, '\\');
  const HiveName* const hive = FindHive(entry, backslash);
  if (hive == nullptr) return {};
  RegistryPath path;
  path.root = reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(hive->root));
  path.hive_name = hive->name;
  if (backslash != nullptr) {
    path.subkey = backslash + 1;
    path.item = CutAtLastComma(path.subkey);
  }
  return path;
}

}  // namespace hostscope
