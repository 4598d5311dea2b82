#include "report/probe_context.h"

namespace hostscope {
namespace {

constexpr std::array<const char*, static_cast<std::size_t>(SetupFunction::kCount)> kSetupFunctions =
    {"SetupDiEnumDeviceInfo", "SetupDiDestroyDeviceInfoList", "SetupDiGetClassDevsA",
     "SetupDiClassGuidsFromNameA", "SetupDiGetDeviceInstanceIdA"};

bool IsNtPlatform() {
  OSVERSIONINFOA version = {};
  version.dwOSVersionInfoSize = sizeof version;
  return GetVersionExA(&version) != 0 && version.dwPlatformId == VER_PLATFORM_WIN32_NT;
}

}  // namespace

ProbeContext::ProbeContext() : is_nt_(IsNtPlatform()) {
  page_files.Create(kPageFileRecordSize);
  setup_.Bind("SETUPAPI.DLL", kSetupFunctions);
}

}  // namespace hostscope
