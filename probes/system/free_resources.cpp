#include "probes/system/free_resources.h"

#include "util/library.h"

namespace hostscope {
namespace {

constexpr std::array<const char*, 1> kMeterFunctions = {"_MyGetFreeSystemResources32@4"};
using MeterFunction = std::uint32_t(WINAPI*)(std::uint32_t kind);

struct KindRow {
  ResourceKind kind;
  const char* name;
  Switch is_on;
};
constexpr KindRow kKinds[] = {
    {ResourceKind::kSystem, "System", &ProfileSettings::free_system_resources},
    {ResourceKind::kGdi, "GDI", &ProfileSettings::free_gdi_resources},
    {ResourceKind::kUser, "User", &ProfileSettings::free_user_resources},
};

}  // namespace

bool ReadFreeResources(std::uint32_t& percent, const ProbeContext& context, ResourceKind kind) {
  percent = 0;
  if (context.is_nt()) return false;
  BoundLibrary<kMeterFunctions.size()> meter;
  if (!meter.Bind("RSRC32.dll", kMeterFunctions)) return false;
  percent = meter.Get<MeterFunction>(0)(static_cast<std::uint32_t>(kind));
  return true;
}

bool WriteFreeResources(ItemRun& run) {
  const char* label = "Free resources";
  for (const KindRow& row : kKinds) {
    if (run.settings.*row.is_on == 0) continue;
    std::uint32_t percent = 0;
    if (ReadFreeResources(percent, run.context, row.kind)) {
      run.report.WriteFormatted("%-27s%-15s:  %u%%\r\n", label, row.name,
                                static_cast<unsigned>(percent));
    } else {
      run.report.WriteFormatted("%-27s%-15s:  \r\n", label, row.name);
    }
    label = "";
  }
  return true;
}

}  // namespace hostscope
