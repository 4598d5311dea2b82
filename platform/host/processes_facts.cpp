// The keys of machine.ini about processes.
#include "platform/host/fact.h"

namespace host {

std::span<const Fact> ProcessFacts() {
  return {};
}

}  // namespace host
