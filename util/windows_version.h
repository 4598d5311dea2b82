#pragma once

#include "platform/win32.h"

namespace hostscope {

// The version of the running system in the plain record, which every release fills; false, the
// record without a version, when the system does not say.
inline bool ReadWindowsVersion(OSVERSIONINFOA& version) {
  static_assert(sizeof version == 148);
  version = {};
  version.dwOSVersionInfoSize = sizeof version;
  return GetVersionExA(&version) != 0;
}

}  // namespace hostscope
