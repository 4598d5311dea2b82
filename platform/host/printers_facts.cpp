// The keys of machine.ini about printers.
#include "platform/host/fact.h"

namespace host {

std::span<const Fact> PrinterFacts() {
  return {};
}

}  // namespace host
