#include "report/probe_context.h"

#include "util/windows_version.h"

namespace hostscope {
namespace {

constexpr std::array<const char*, static_cast<std::size_t>(SetupFunction::kCount)> kSetupFunctions =
    {"SetupDiEnumDeviceInfo", "SetupDiDestroyDeviceInfoList", "SetupDiGetClassDevsA",
     "SetupDiClassGuidsFromNameA", "SetupDiGetDeviceInstanceIdA"};

bool IsNtPlatform() {
  OSVERSIONINFOA version;
  return ReadWindowsVersion(version) && version.dwPlatformId == VER_PLATFORM_WIN32_NT;
}

}  // namespace

ProbeContext::ProbeContext() : is_nt_(IsNtPlatform()) {
  page_files.Create(kPageFileRecordSize);
  setup_.Bind("SETUPAPI.DLL", kSetupFunctions);
}

}  // namespace hostscope
