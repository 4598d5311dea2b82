#include "platform/host/machine.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace host {
namespace {

std::atomic<Machine*> current_machine = nullptr;

}  // namespace

Machine::Machine() = default;
Machine::~Machine() = default;

Machine& CurrentMachine() {
  Machine* machine = current_machine.load();
  if (machine == nullptr) {
    std::fputs(
        "host layer: a platform function was called, but no machine is in use (UseMachine)\n",
        stderr);
    std::abort();
  }
  return *machine;
}

UseMachine::UseMachine(Machine& machine) : previous_(current_machine.exchange(&machine)) {}

UseMachine::~UseMachine() {
  current_machine.store(previous_);
}

}  // namespace host
