#pragma once

#include "profile/profile_settings.h"
#include "report/run_state.h"

namespace hostscope {

// What stands in for the placeholders of the pre-run message.
struct PlaceholderValues {
  const char* report_name;    // #RFNAME#
  const char* report_folder;  // #RFFOLDER#
  const char* report_path;    // #RFPATH#
};

// Replaces every placeholder, one kind after the other in the order above, letter for letter. Each
// replacement leaves at most 1023 characters of the text. A message whose work area cannot be had
// stays as it is.
void ReplacePlaceholders(char (&message)[kLongTextSize], const PlaceholderValues& values);

// Puts the profile's message together, keeps it in the run state and shows it. False when the user
// answers Cancel or No.
bool ConfirmPreRunMessage(RunState& state, const ProfileSettings& settings);

}  // namespace hostscope
