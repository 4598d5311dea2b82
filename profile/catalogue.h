// The catalogue of the profile: every section and key, how and when it is read, its default and the
// member of ProfileSettings that it fills.
#pragma once

#include <cstdint>
#include <span>

#include "profile/profile_settings.h"

namespace hostscope {

enum class ReadMethod : std::uint8_t {
  kInteger,   // a decimal integer key
  kString,    // a string key, cut to its field
  kList,      // a whole section, one list element per entry
  kFreeText,  // a whole section as one text; its header is matched letter for letter
};

// When a row is read. A profile is read in this order.
enum class ReadMoment : std::uint8_t {
  kSearch,   // while a profile is looked for
  kStartUp,  // before anything is shown
  kMessage,  // for the pre-run message, only when it is asked for
  kDialog,   // what the dialog shows
  kWorker,   // everything else, once, by the report worker
};

struct CatalogueRow {
  const char* section;
  const char* key;  // null for a row that is a whole section
  ReadMethod method;
  ReadMoment moment;
  // Which member the row fills; one of the three, none for a key that only the search looks at.
  std::int32_t ProfileSettings::*number = nullptr;
  StringList ProfileSettings::*list = nullptr;
  std::span<char> (*text)(ProfileSettings&) = nullptr;
  // The default: of an integer and of a string key.
  std::int32_t default_number = 0;
  const char* default_text = "";
  // A second name of a string key: read only when the first left the field empty.
  bool only_when_empty = false;
  // The key counts among the switches of its section.
  bool switches_section = false;
};

// All rows, in catalogue order.
std::span<const CatalogueRow> Catalogue();

// What the key Sign of section GENERAL must hold for a file to be a profile.
inline constexpr char kProfileSign[] = "Hostscope INI file";

// Makes the lists of all list sections present and empty; one that cannot be made stays absent.
void CreateLists(ProfileSettings& settings);
// Releases them, in catalogue order; nothing happens to absent ones.
void DestroyLists(ProfileSettings& settings);

// Whether any of the section's switches is on.
bool AnySwitchOn(const ProfileSettings& settings, const char* section);

}  // namespace hostscope
