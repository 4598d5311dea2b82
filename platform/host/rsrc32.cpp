// The library of the resource meter (RSRC32), which only machines have that state what it answers.
#include "platform/host/hardware.h"
#include "platform/host/machine.h"

namespace {

DWORD WINAPI MyGetFreeSystemResources32(UINT kind) {
  if (host::CallFails("_MyGetFreeSystemResources32@4")) return 0;
  const auto& percentages = host::CurrentMachine().hardware.free_resources;
  return kind < percentages.size() ? percentages[kind] : 0;
}

}  // namespace

void host::StateFreeResources(Machine& machine, unsigned kind, DWORD percent) {
  machine.hardware.free_resources.at(kind) = percent;
  machine.libraries.Add(
      {.name = "RSRC32.DLL",
       .exports = {{"_MyGetFreeSystemResources32@4", Export(&MyGetFreeSystemResources32)}}});
}
