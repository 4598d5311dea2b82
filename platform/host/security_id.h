// Security identifiers of accounts: as text ("S-1-5-21-...-1003") and as the platform's record.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

// The record's bytes: revision 1, the count of sub-authorities, the authority in six bytes, highest
// first, and the sub-authorities in four bytes each, lowest first. Absent when the text is none of
// this kind.
std::optional<std::string> SecurityIdBytes(std::string_view text);
// The same identifier with its last sub-authority one higher; the record must be a valid one.
std::string NextSecurityId(std::string record);
// The record that the program's pointer leads to, or absent when it is no such record.
std::optional<std::string> SecurityIdAt(const void* record);

}  // namespace host
