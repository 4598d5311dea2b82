#include "platform/host/winmm.h"

#include <chrono>

#include "platform/host/machine.h"

namespace host {
namespace {

const LayerLibrary kLibrary({.name = "WINMM.DLL", .exports = {HOST_EXPORT(timeGetTime)}});

}  // namespace
}  // namespace host

DWORD WINAPI timeGetTime() {
  if (host::CallFails("timeGetTime")) return 0;
  host::Hardware& hardware = host::CurrentMachine().hardware;
  if (!hardware.processor.real) return static_cast<DWORD>(++hardware.timer);
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}
