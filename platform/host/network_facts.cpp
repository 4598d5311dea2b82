// The keys of machine.ini about network.
#include "platform/host/fact.h"

namespace host {

std::span<const Fact> NetworkFacts() {
  return {};
}

}  // namespace host
