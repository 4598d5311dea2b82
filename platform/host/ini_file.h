// Reader of the INI files that describe machines. It is strict, unlike the platform's own reader of
// profiles: what it does not understand is an error.
//
// The file is UTF-8, with or without byte-order mark, lines end in LF or CR LF. A line is empty, a
// comment (";" first), "[section]" or "key = value"; blanks around names and values do not count. A
// value between double quotes is what stands between them. Names are kept and values given in the
// machine's code page; a character that it does not have is an error, and so are a section or a key
// of a section that stands twice (case ignored), an empty name and a key before the first section.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/load_error.h"

namespace host {

struct IniEntry {
  std::string key;
  std::string value;
  std::size_t line = 0;
};

struct IniSection {
  std::string name;
  std::size_t line = 0;
  std::vector<IniEntry> entries;
};

// Reads the bytes of a file into sections, in file order; absent when all is well. The error's file
// is empty.
std::optional<LoadError> ReadIniText(std::string_view bytes, std::vector<IniSection>& sections);

}  // namespace host
