// The keys of machine.ini about disks.
#include "platform/host/fact.h"

namespace host {

std::span<const Fact> DiskFacts() {
  return {};
}

}  // namespace host
