#include "platform/host/comctl32.h"

#include "platform/host/faults.h"
#include "platform/host/libraries.h"

namespace host {
namespace {

const LayerLibrary kLibrary({.name = "COMCTL32.DLL", .loaded_at_start = true});

}  // namespace
}  // namespace host

void InitCommonControls() {
  static_cast<void>(host::CallFails("InitCommonControls"));
}
