#pragma once

#include "report/item.h"

namespace hostscope {

// Calls the plug-ins that the profile names, one after another, and shows how each call went: below
// the heading "Custom dlls:" one line with the plug-in's name and "Absent" (the library cannot be
// loaded), "NoFunc" (it has no function of that name), "Failed" or "Ok" (what the function said).
// The plug-ins write into the report themselves; sdk/hsplugin.h is what they are built with.
bool RunCustomDlls(ItemRun& run);

}  // namespace hostscope
