#include "platform/host/plug_ins.h"

#include <array>
#include <utility>

#include "platform/host/kernel32.h"
#include "platform/host/libraries.h"
#include "platform/host/machine.h"

namespace host {
namespace {

using Function = unsigned char (*)(HANDLE report);

template <std::size_t kNumber>
unsigned char Call(HANDLE report) {
  return CurrentMachine().plug_ins.Run(kNumber, report) ? 1 : 0;
}

template <std::size_t... kNumbers>
constexpr std::array<Function, sizeof...(kNumbers)> Calls(std::index_sequence<kNumbers...>) {
  return {Call<kNumbers>...};
}

constexpr auto kCalls = Calls(std::make_index_sequence<PlugIns::kMost>());

}  // namespace

FARPROC PlugIns::Add(PlugIn plug_in) {
  const std::lock_guard lock(mutex_);
  if (plug_ins_.size() == kMost) return nullptr;
  plug_ins_.push_back(std::move(plug_in));
  return Export(kCalls[plug_ins_.size() - 1]);
}

bool PlugIns::Run(std::size_t number, HANDLE report) const {
  PlugIn plug_in;
  {
    const std::lock_guard lock(mutex_);
    plug_in = plug_ins_[number];
  }
  DWORD written = 0;
  WriteFile(report, plug_in.text.data(), static_cast<DWORD>(plug_in.text.size()), &written,
            nullptr);
  return plug_in.succeeds;
}

}  // namespace host
