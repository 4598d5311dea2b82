// Reader of the registry editor's exports: "REGEDIT4" (8-bit text) and "Windows Registry Editor
// Version 5.00" (16-bit text with its byte-order mark; also UTF-8 or 8-bit text).
//
//   file      header line, then lines in any number and order
//   key       "[" hive "\" path "]"   the key is made; the values that follow go into it
//   deletion  "[-" hive "\" path "]"
//   value     ( "@" | quoted ) "=" ( "-" | quoted | "dword:" digits | hex )
//   quoted    '"' characters '"'      \\ and \" stand for \ and "; line breaks may stand in it
//   hex       "hex" [ "(" digits ")" ] ":" [ byte { "," byte } ]
//                                     goes on in the next line after a "\" between bytes or commas
//   comment   ";" to the end of a line, alone or after anything but within a hex list
//
// Lines end in LF or CR LF; blanks may stand around everything but within words and numbers. Data
// of hex(1), hex(2) and hex(7) is 16-bit text in version 5 and is kept in the code page. Anything
// else is an error.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "platform/host/load_error.h"
#include "platform/host/registry.h"

namespace host {

// Adds what the file says to the registry; absent when all is well. After an error the registry
// holds what came before it. The error names the file by its last component.
std::optional<LoadError> ReadRegFile(const std::filesystem::path& file, Registry& registry);

// The same for the bytes of a file; the error's file is empty.
std::optional<LoadError> ReadRegText(std::string_view bytes, Registry& registry);

}  // namespace host
