#include "platform/host/dll_version.h"

#include <cstring>
#include <utility>

#include "platform/host/faults.h"
#include "platform/host/machine.h"
#include "platform/host/shell32.h"

namespace host {
namespace {

// The record as the caller lays it out; the older one ends before the flags.
struct Record {
  DWORD size, major, minor, build, platform;
  DWORD flags;
  std::uint64_t version;
};
constexpr DWORD kPlainSize = 20;
constexpr DWORD kExtendedSize = 32;
static_assert(sizeof(Record) == kExtendedSize);

HRESULT Answer(std::size_t slot, void* record) {
  if (CallFails("DllGetVersion")) return E_FAIL;
  const DllVersionAnswer& answer = CurrentMachine().dll_versions[slot];
  Record filled = {};
  std::memcpy(&filled.size, record, sizeof filled.size);
  const bool extended = filled.size == kExtendedSize;
  if (extended ? !answer.extended : filled.size != kPlainSize || !answer.plain) return E_INVALIDARG;
  filled.major = answer.parts[0];
  filled.minor = answer.parts[1];
  filled.build = answer.parts[2];
  filled.platform = CurrentMachine().IsNt() ? 2 : 1;
  for (const WORD part : answer.parts)
    filled.version = filled.version << 16 | part;
  std::memcpy(record, &filled, filled.size);
  return S_OK;
}

template <std::size_t kSlot>
HRESULT CALLBACK DllGetVersion(void* record) {
  return Answer(kSlot, record);
}

template <std::size_t... kSlots>
std::array<FARPROC, sizeof...(kSlots)> Functions(std::index_sequence<kSlots...>) {
  return {Export(&DllGetVersion<kSlots>)...};
}

}  // namespace

std::string StateDllVersion(Machine& machine, std::string_view library,
                            const DllVersionAnswer& answer) {
  static const auto functions = Functions(std::make_index_sequence<kMostDllVersions>());
  const std::size_t slot = machine.dll_versions.size();
  if (slot == kMostDllVersions) {
    return "there are more than " + std::to_string(kMostDllVersions) + " of them";
  }
  machine.dll_versions.push_back(answer);
  Library answering = LibraryNamed(library);
  answering.exports.emplace("DllGetVersion", functions[slot]);
  machine.libraries.Add(answering);
  return "";
}

}  // namespace host
