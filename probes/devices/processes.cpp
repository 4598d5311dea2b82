#include "probes/devices/processes.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "probes/devices/record_list.h"
#include "util/handles.h"
#include "util/low_block.h"
#include "util/number_text.h"
#include "util/text.h"
#include "util/wide_text.h"

namespace hostscope {
namespace {

constexpr char kListName[] = "Processes";

// An entry of NT's list, as the 32-bit system lays it out; the entry's threads follow, and the name
// lies behind them.
struct NtProcess {
  std::uint32_t next_entry;  // offset from this entry; 0 in the last one
  std::uint32_t threads;
  std::uint32_t times[12];
  std::uint16_t name_length;  // of the 16-bit text, in bytes
  std::uint16_t name_maximum_length;
  std::uint32_t name_address;
  std::int32_t base_priority;
  std::uint32_t id;
  std::uint32_t parent_id;
  std::uint32_t handles;
  std::uint32_t session[2];
  std::uint32_t peak_virtual_size;
  std::uint32_t virtual_size;
  std::uint32_t page_faults;
  std::uint32_t peak_working_set;
  std::uint32_t working_set;
  std::uint32_t peak_paged_pool;
  std::uint32_t paged_pool;
  std::uint32_t peak_non_paged_pool;
  std::uint32_t non_paged_pool;
  std::uint32_t pagefile_usage;
  std::uint32_t peak_pagefile_usage;
};
static_assert(offsetof(NtProcess, name_length) == 0x38 && offsetof(NtProcess, id) == 0x44 &&
              offsetof(NtProcess, handles) == 0x4C && offsetof(NtProcess, page_faults) == 0x60 &&
              offsetof(NtProcess, working_set) == 0x68 && offsetof(NtProcess, paged_pool) == 0x70 &&
              offsetof(NtProcess, non_paged_pool) == 0x78 &&
              offsetof(NtProcess, pagefile_usage) == 0x7C && sizeof(NtProcess) == 0x84);

constexpr ULONG kProcessInformation = 5;
constexpr std::uint32_t kListSize = 65536;
using NtQuerySystemInformationFunction = LONG(WINAPI*)(ULONG information_class, PVOID list,
                                                       ULONG size, ULONG* returned);

using CreateSnapshotFunction = decltype(&CreateToolhelp32Snapshot);
using ProcessEntryFunction = decltype(&Process32First);
static_assert(sizeof(PROCESSENTRY32) == 296);
// Far more than any system that is asked by tool help can run: its walk might not end.
constexpr int kMostEntries = 4096;

class Snapshot : public KernelHandle {
 public:
  explicit Snapshot(HANDLE handle)
      : KernelHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
};

class OpenedProcess : public KernelHandle {
 public:
  explicit OpenedProcess(std::uint32_t id)
      : KernelHandle(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id)) {}
};
static_assert((PROCESS_QUERY_INFORMATION | PROCESS_VM_READ) == 0x410);

bool OpensForQuerying(std::uint32_t id) {
  // Two processes of NT itself have the numbers 0 and, up to 4.0, 2.
  if (id == GetCurrentProcessId() || id == 0 || id == 2) return true;
  return OpenedProcess(id).open();
}

// Copies the name, unless it does not lie in the list.
template <std::size_t kSize>
void CopyName(const LowBlock& list, const NtProcess& process, char (&name)[kSize]) {
  const std::uint32_t length = std::min(process.name_length, process.name_maximum_length);
  const std::uint32_t offset = process.name_address - list.address();
  if (offset > kListSize || length > kListSize - offset || offset % sizeof(WCHAR) != 0) return;
  HeapBuffer text(std::size_t{process.name_maximum_length} + 1);
  NarrowText(reinterpret_cast<const WCHAR*>(list.data() + offset), length / sizeof(WCHAR),
             {text.data(), text.size()});
  CopyText(name, text.data());
}

ProcessRecord RecordOf(const LowBlock& list, const NtProcess& process) {
  ProcessRecord record;
  record.id = process.id;
  if (process.id == 0) {
    CopyText(record.image_name, "System idle process");
  } else {
    CopyName(list, process, record.image_name);
  }
  record.threads = process.threads;
  record.handles = process.handles;
  record.memory_usage = process.working_set;
  record.pagefile_usage = process.pagefile_usage;
  record.page_faults = process.page_faults;
  record.paged_pool = process.paged_pool;
  record.non_paged_pool = process.non_paged_pool;
  return record;
}

ProcessRecord RecordOf(const PROCESSENTRY32& entry) {
  ProcessRecord record;
  record.id = entry.th32ProcessID;
  CopyText(record.image_name, entry.szExeFile);
  return record;
}

void AppendWithDetails(ProcessRecord&& record, RecordArray& processes) {
  FillProcessDetails(record);
  processes.Append(&record);
}

bool CollectFromNt(NtQuerySystemInformationFunction query, RecordArray& processes) {
  LowBlock list(kListSize);
  if (!list.present() || query(kProcessInformation, list.data(), kListSize, nullptr) != 0)
    return false;
  NtProcess process = {};
  // An offset that leads into its own entry or out of the list ends it, as 0 does.
  for (std::uint32_t at = 0; kListSize - at >= sizeof process; at += process.next_entry) {
    std::memcpy(&process, list.data() + at, sizeof process);
    AppendWithDetails(RecordOf(list, process), processes);
    if (process.next_entry < sizeof process || process.next_entry > kListSize - at) break;
  }
  return true;
}

bool CollectByToolHelp(const BoundLibrary<5>& tool_help, RecordArray& processes) {
  const Snapshot snapshot(tool_help.Get<CreateSnapshotFunction>(0)(TH32CS_SNAPPROCESS, 0));
  if (!snapshot.open()) return false;
  PROCESSENTRY32 entry = {};
  const auto step = [&](std::size_t row) {
    entry.dwSize = sizeof entry;
    return tool_help.Get<ProcessEntryFunction>(row)(snapshot.get(), &entry) != FALSE;
  };
  bool more = step(1);
  for (int entries = 0; more && entries < kMostEntries; ++entries) {
    AppendWithDetails(RecordOf(entry), processes);
    more = step(2);
  }
  return true;
}

struct NumberField {
  const char* name;
  const char* unit;
  std::uint32_t ProcessRecord::*number;
};
constexpr NumberField kNtFields[] = {
    {"Memory usage", " b", &ProcessRecord::memory_usage},
    {"Pagefile usage", " b", &ProcessRecord::pagefile_usage},
    {"Paged pool", " b", &ProcessRecord::paged_pool},
    {"Non-paged pool", " b", &ProcessRecord::non_paged_pool},
    {"Threads", "", &ProcessRecord::threads},
    {"Handles", "", &ProcessRecord::handles},
    {"Page faults", "", &ProcessRecord::page_faults},
};

void WritePriority(ReportWriter& report, std::uint32_t priority_class) {
  if (priority_class == ProcessRecord::kUnset) {
    report.WriteFormatted(kTextFieldFormat, "", "Priority", "unknown");
    return;
  }
  report.WriteFormatted("%-27s%-15s:  %s (0x%X)\r\n", "", "Priority",
                        PriorityClassName(priority_class), static_cast<unsigned>(priority_class));
}

void WriteProcess(ReportWriter& report, const char* label, const ProcessRecord& process,
                  bool is_nt) {
  const auto id = static_cast<unsigned>(process.id);
  report.WriteFormatted("%-27s%-15s:  0x%x (%u)\r\n", label, "PID", id, id);
  report.WriteFormatted(kTextFieldFormat, "", "Image", process.image_name);
  report.WriteFormatted(kTextFieldFormat, "", "Valid", YesOrNo(process.valid != 0));
  WritePriority(report, process.priority_class);
  report.WriteFormatted("%-27s%-15s:  %u.%u\r\n", "", "Version",
                        static_cast<unsigned>(process.version >> 16),
                        static_cast<unsigned>(process.version & 0xFFFF));
  for (const NumberField& field : kNtFields) {
    if (!is_nt) break;
    report.WriteFormatted("%-27s%-15s:  %u%s\r\n", "", field.name,
                          static_cast<unsigned>(process.*field.number), field.unit);
  }
  report.WriteText(kLineEnd);
}

}  // namespace

const char* PriorityClassName(std::uint32_t priority_class) {
  constexpr NumberText kNames[] = {{NORMAL_PRIORITY_CLASS, "normal"},
                                   {IDLE_PRIORITY_CLASS, "idle"},
                                   {HIGH_PRIORITY_CLASS, "high"},
                                   {REALTIME_PRIORITY_CLASS, "real-time"}};
  return TextOfNumber(kNames, priority_class, "unknown");
}

bool LoadProcessFunctions(ProbeContext& context) {
  ProcessListingState& listing = context.process_listing;
  if (context.is_nt()) {
    return listing.native.bound() || listing.native.Bind("ntdll.dll", {"NtQuerySystemInformation"});
  }
  return listing.tool_help.bound() ||
         listing.tool_help.Bind("KERNEL32.DLL", {"CreateToolhelp32Snapshot", "Process32First",
                                                 "Process32Next", "Module32First", "Module32Next"});
}

void FillProcessDetails(ProcessRecord& process) {
  process.valid = OpensForQuerying(process.id) ? 1 : 0;
  process.version = GetProcessVersion(process.id);
  const OpenedProcess opened(process.id);
  if (opened.open()) process.priority_class = GetPriorityClass(opened.get());
}

bool CollectProcesses(ProbeContext& context, RecordArray& processes) {
  if (!LoadProcessFunctions(context)) return false;
  ProcessListingState& listing = context.process_listing;
  const bool collected =
      context.is_nt()
          ? CollectFromNt(listing.native.Get<NtQuerySystemInformationFunction>(0), processes)
          : CollectByToolHelp(listing.tool_help, processes);
  listing.native.Release();
  listing.tool_help.Release();
  return collected && processes.complete();
}

bool WriteProcesses(ItemRun& run) {
  RecordArray processes;
  if (!processes.Create(sizeof(ProcessRecord)) || !CollectProcesses(run.context, processes)) {
    return WriteFailedListUnpadded(run.report, kListName);
  }
  WriteList<ProcessRecord>(
      run.report, kListName, processes,
      [&run](ReportWriter& report, const char* label, const ProcessRecord& process) {
        WriteProcess(report, label, process, run.context.is_nt());
      });
  return true;
}

}  // namespace hostscope
