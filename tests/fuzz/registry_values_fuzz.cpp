// Keys, values and links of any kind through the whole registry dump and the scan for folders,
// while calls fail and the registry changes: nothing crashes and nothing stays open.

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/host/machine.h"
#include "platform/win32.h"
#include "profile/catalogue.h"
#include "report/item.h"
#include "scans/key_scan.h"
#include "scans/registry_dump.h"

namespace {

constexpr const char* kFunctions[] = {"RegQueryInfoKeyA",  "RegEnumKeyExA", "RegEnumValueA",
                                      "RegOpenKeyExA",     "HeapAlloc",     "HeapReAlloc",
                                      "GetFileAttributesA"};

// A key that lies below "HKLM\K", at most as deep as there are names to choose from.
std::string PickKey(FuzzedDataProvider& input) {
  std::string path = "HKLM\\K";
  const int depth = input.ConsumeIntegralInRange(0, 6);
  for (int i = 0; i < depth; ++i) {
    path += '\\';
    path += input.ConsumeBool() ? input.PickValueInArray({"a", "b", "c"})
                                : input.ConsumeRandomLengthString(255);
  }
  return path;
}

void PutValue(FuzzedDataProvider& input, host::Registry& registry) {
  const std::string key = PickKey(input);
  const std::string name = input.ConsumeRandomLengthString(300);
  const DWORD type = input.ConsumeBool() ? input.ConsumeIntegralInRange<DWORD>(0, 12)
                                         : input.ConsumeIntegral<DWORD>();
  registry.SetValue(key, name, type, input.ConsumeRandomLengthString(2000));
}

void Change(FuzzedDataProvider& input, host::Machine& machine) {
  host::Registry& registry = machine.registry;
  switch (input.ConsumeIntegralInRange(0, 3)) {
    case 0:
      PutValue(input, registry);
      break;
    case 1:
      registry.RemoveKey(PickKey(input));
      break;
    case 2:
      registry.RemoveValue(PickKey(input), input.ConsumeRandomLengthString(300));
      break;
    default:
      machine.faults.FailNth(input.PickValueInArray(kFunctions),
                             input.ConsumeIntegralInRange(1U, 40U), input.ConsumeIntegral<DWORD>());
  }
}

void Describe(FuzzedDataProvider& input, host::Machine& machine) {
  machine.version.platform_id = input.ConsumeBool() ? 2 : 1;
  // Of links that lead to each other every order is a way of its own, so that there are few.
  const int links = input.ConsumeIntegralInRange(0, 3);
  for (int i = 0; i < links; ++i) {
    const std::string path = PickKey(input);
    if (path != "HKLM\\K") machine.registry.MakeLink(path, PickKey(input));
  }
  const int values = input.ConsumeIntegralInRange(0, 40);
  for (int i = 0; i < values; ++i)
    PutValue(input, machine.registry);
}

void RunBoth(FuzzedDataProvider& input, hostscope::ProfileSettings& settings) {
  const std::string entry = input.ConsumeRandomLengthString(300);
  for (hostscope::StringList* list : {&settings.registry_keys, &settings.scan_keys}) {
    list->Append("HKLM\\K,1");
    list->Append(entry.c_str());
  }
  hostscope::ReportWriter report("/dev/null");
  hostscope::ProbeContext context;
  hostscope::ProgressLines progress(nullptr);
  hostscope::ItemRun run{"", settings, context, report, progress, {}};
  hostscope::WriteRegistryKeys(run);
  hostscope::ScanKeys(run);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  host::Machine machine;
  const host::UseMachine use(machine);
  Describe(input, machine);
  const auto settings = std::make_unique<hostscope::ProfileSettings>();
  hostscope::CreateLists(*settings);
  const char* const at = input.PickValueInArray(kFunctions);
  machine.faults.AtCall(at, [&] {
    if (input.remaining_bytes() > 0) Change(input, machine);
  });
  RunBoth(input, *settings);
  hostscope::DestroyLists(*settings);
  if (!machine.handles.OpenObjects().empty()) std::abort();
  return 0;
}
