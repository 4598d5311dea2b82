#include "platform/host/ntdll.h"

#include <cstring>
#include <string>

#include "platform/host/code_page.h"
#include "platform/host/machine.h"

using namespace host;

namespace {

const LayerLibrary kNtdll({.name = "NTDLL.DLL",
                           .loaded_at_start = true,
                           .exports = {HOST_EXPORT(NtQuerySystemInformation)}});

constexpr ULONG kProcessInformation = 5;
constexpr std::size_t kThreadSize = 0x40;

// The bytes of one entry of the list, which lies at the address.
class ProcessEntry {
 public:
  ProcessEntry(const ListedProcess& process, bool counts_transfers, DWORD address)
      // From Windows 2000 on the counts of reads and writes stand before the threads.
      : bytes_(counts_transfers ? 0xB8 : 0x88, '\0') {
    Put(0x04, process.threads);
    Put(0x44, process.id);
    Put(0x4C, process.handles);
    Put(0x60, process.page_faults);
    Put(0x64, process.memory);
    Put(0x68, process.memory);
    Put(0x6C, process.paged_pool);
    Put(0x70, process.paged_pool);
    Put(0x74, process.non_paged_pool);
    Put(0x78, process.non_paged_pool);
    Put(0x7C, process.pagefile);
    Put(0x80, process.pagefile);
    Put(0x84, process.pagefile);
    bytes_.append(process.threads * kThreadSize, '\0');
    if (process.id != 0) AppendName(process.name, address);
    bytes_.append((8 - bytes_.size() % 8) % 8, '\0');
  }
  void LeadToNext() { Put(0, static_cast<DWORD>(bytes_.size())); }
  const std::string& bytes() const { return bytes_; }

 private:
  template <typename Number>
  void Put(std::size_t offset, Number number) {
    std::memcpy(bytes_.data() + offset, &number, sizeof number);
  }
  void AppendName(const std::string& name, DWORD address) {
    Put(0x38, static_cast<WORD>(name.size() * 2));
    Put(0x3A, static_cast<WORD>(name.size() * 2 + 2));
    Put(0x3C, static_cast<DWORD>(address + bytes_.size()));
    for (const char character : name + '\0') {
      const char16_t unit = UnicodeFromCodePage(character);
      bytes_ += static_cast<char>(unit & 0xFF);
      bytes_ += static_cast<char>(unit >> 8);
    }
  }

  std::string bytes_;
};

std::string ProcessList(const Machine& machine, DWORD address) {
  const std::vector<ListedProcess> running = RunningProcesses(machine);
  std::string list;
  for (const ListedProcess& process : running) {
    ProcessEntry entry(process, machine.version.major >= 5,
                       address + static_cast<DWORD>(list.size()));
    if (&process != &running.back()) entry.LeadToNext();
    list += entry.bytes();
  }
  return list;
}

}  // namespace

NTSTATUS WINAPI NtQuerySystemInformation(ULONG information_class, PVOID buffer, ULONG size,
                                         ULONG* returned) {
  if (const DWORD status = CallError("NtQuerySystemInformation"))
    return static_cast<NTSTATUS>(status);
  if (information_class != kProcessInformation) return STATUS_INVALID_INFO_CLASS;
  const auto address = reinterpret_cast<std::uintptr_t>(buffer);
  if (address != static_cast<DWORD>(address)) return STATUS_ACCESS_VIOLATION;
  const std::string list = ProcessList(CurrentMachine(), static_cast<DWORD>(address));
  if (returned != nullptr) *returned = static_cast<ULONG>(list.size());
  if (list.size() > size) return STATUS_INFO_LENGTH_MISMATCH;
  std::memcpy(buffer, list.data(), list.size());
  return 0;
}
