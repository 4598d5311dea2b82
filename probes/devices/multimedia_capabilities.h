// The devices of the multimedia library, which are asked alike: how many there are, and what each
// of them can do.
#pragma once

#include "platform/win32.h"
#include "util/library.h"
#include "util/record_array.h"

namespace hostscope {

// Appends make(capabilities) for each device whose capabilities can be read, in the order of their
// numbers. The names are those of the function that counts the devices and of the one that tells
// their capabilities. True when a record was appended; false without the library or memory, too.
template <typename Capabilities, typename Make>
bool ListCapabilities(const std::array<const char*, 2>& functions, RecordArray& records,
                      Make make) {
  using CountFunction = UINT(WINAPI*)();
  using CapabilitiesFunction = UINT(WINAPI*)(UINT_PTR, Capabilities*, UINT);
  BoundLibrary<2> multimedia;
  if (!multimedia.Bind("WINMM.DLL", functions)) return false;
  const UINT count = multimedia.Get<CountFunction>(0)();
  const auto read_capabilities = multimedia.Get<CapabilitiesFunction>(1);
  bool any = false;
  for (UINT device = 0; device < count; ++device) {
    Capabilities capabilities = {};
    if (read_capabilities(device, &capabilities, sizeof capabilities) != 0) continue;
    const auto record = make(capabilities);
    any |= records.Append(&record) >= 0;
  }
  return any && records.complete();
}

}  // namespace hostscope
