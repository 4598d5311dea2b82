// The common grammar of the entries of list sections: fields behind commas, counted from the end,
// and the abbreviations of registry hives.
#pragma once

#include <cstdint>
#include <span>

#include "platform/win32.h"

namespace hostscope {

// Ends the text at its last comma and answers what stood behind it; null, the text untouched, when
// it has no comma.
char* CutAtLastComma(char* text);

struct HiveName {
  const char* abbreviation;  // as entries have it
  const char* name;          // in full, as reports show it; no entry has it
  std::uint32_t root;        // the number of the predefined handle
};

// The hives that an entry may name.
std::span<const HiveName> Hives();

// A place in the registry as an entry names it.
struct RegistryPath {
  HKEY root = nullptr;              // null: the entry is no registry path
  const char* hive_name = nullptr;  // in full, as reports show it
  char* subkey = nullptr;           // null: the entry has no backslash
  char* item = nullptr;             // what stood behind the subkey's last comma; null for none
};

// HIVE\subkey or HIVE\subkey,item, HIVE one of the abbreviations HKCR, HKCC, HKCU, HKLM, HKU, HKDD
// and HKPD in any case. The entry is cut in place; the result points into it.
RegistryPath ParseRegistryPath(char* entry);

}  // namespace hostscope
