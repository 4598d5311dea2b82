// The processes of the machine, and tool help.
#include <algorithm>
#include <memory>
#include <optional>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/tlhelp32.h"

namespace host {

std::vector<ListedProcess> RunningProcesses(const Machine& machine) {
  std::vector<ListedProcess> running = machine.processes.listed;
  const DWORD own_id = machine.processes.own_id;
  if (std::none_of(running.begin(), running.end(),
                   [own_id](const ListedProcess& process) { return process.id == own_id; })) {
    running.push_back({.id = own_id, .name = "hscope.exe"});
  }
  return running;
}

}  // namespace host

using namespace host;

namespace {

const LayerLibrary kKernel32(
    {.name = "KERNEL32.DLL",
     .exports = {HOST_EXPORT(CreateToolhelp32Snapshot), HOST_EXPORT(GetPriorityClass),
                 HOST_EXPORT(GetProcessVersion), HOST_EXPORT(Module32First),
                 HOST_EXPORT(Module32Next), HOST_EXPORT(OpenProcess), HOST_EXPORT(Process32First),
                 HOST_EXPORT(Process32Next)}});

struct OpenedProcess : Object {
  explicit OpenedProcess(const ListedProcess& opened) : Object("process"), process(opened) {}
  ListedProcess process;
};

struct Snapshot : Object {
  Snapshot() : Object("snapshot") {}
  std::vector<ListedProcess> processes = RunningProcesses(CurrentMachine());
  std::size_t next = 0;
};

template <typename Kind>
HANDLE Open(std::shared_ptr<Kind> object) {
  return reinterpret_cast<HANDLE>(CurrentMachine().handles.Open(std::move(object)));
}

template <typename Kind>
std::shared_ptr<Kind> Find(HANDLE handle) {
  auto found = CurrentMachine().handles.FindAs<Kind>(reinterpret_cast<std::uintptr_t>(handle));
  if (found == nullptr) SetLastError(ERROR_INVALID_HANDLE);
  return found;
}

// A process that lets others ask it; the last error says why there is none.
std::optional<ListedProcess> FindProcess(DWORD id) {
  const std::vector<ListedProcess> running = RunningProcesses(CurrentMachine());
  const auto found = std::find_if(running.begin(), running.end(),
                                  [id](const ListedProcess& process) { return process.id == id; });
  if (found != running.end() && !found->refused) return *found;
  SetLastError(found == running.end() ? ERROR_INVALID_PARAMETER : ERROR_ACCESS_DENIED);
  return std::nullopt;
}

BOOL HandOutNext(HANDLE handle, LPPROCESSENTRY32 entry, bool from_the_start) {
  const std::shared_ptr<Snapshot> snapshot = Find<Snapshot>(handle);
  if (snapshot == nullptr) return FALSE;
  if (entry->dwSize < sizeof *entry) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  if (from_the_start) snapshot->next = 0;
  if (snapshot->next == snapshot->processes.size()) {
    SetLastError(ERROR_NO_MORE_FILES);
    return FALSE;
  }
  const ListedProcess& process = snapshot->processes[snapshot->next++];
  *entry = {};
  entry->dwSize = sizeof *entry;
  entry->th32ProcessID = process.id;
  entry->cntThreads = process.threads;
  process.name.copy(entry->szExeFile, MAX_PATH - 1);
  return TRUE;
}

BOOL NoModules() {
  SetLastError(ERROR_NO_MORE_FILES);
  return FALSE;
}

}  // namespace

HANDLE WINAPI OpenProcess(DWORD, BOOL, DWORD id) {
  if (CallFails("OpenProcess")) return nullptr;
  // Nobody opens process 0.
  const std::optional<ListedProcess> process = FindProcess(id);
  if (process && id != 0) return Open(std::make_shared<OpenedProcess>(*process));
  if (process) SetLastError(ERROR_INVALID_PARAMETER);
  return nullptr;
}

DWORD WINAPI GetPriorityClass(HANDLE handle) {
  if (CallFails("GetPriorityClass")) return 0;
  const std::shared_ptr<OpenedProcess> opened = Find<OpenedProcess>(handle);
  return opened == nullptr ? 0 : opened->process.priority_class;
}

DWORD WINAPI GetProcessVersion(DWORD id) {
  if (CallFails("GetProcessVersion")) return 0;
  // For 0 the platform takes the calling process.
  const std::optional<ListedProcess> process =
      FindProcess(id == 0 ? CurrentMachine().processes.own_id : id);
  return process ? process->version : 0;
}

HANDLE WINAPI CreateToolhelp32Snapshot(DWORD flags, DWORD) {
  if (CallFails("CreateToolhelp32Snapshot")) return INVALID_HANDLE_VALUE;
  if (flags == TH32CS_SNAPPROCESS) return Open(std::make_shared<Snapshot>());
  SetLastError(ERROR_INVALID_PARAMETER);
  return INVALID_HANDLE_VALUE;
}

BOOL WINAPI Process32First(HANDLE snapshot, LPPROCESSENTRY32 entry) {
  return CallFails("Process32First") ? FALSE : HandOutNext(snapshot, entry, true);
}

BOOL WINAPI Process32Next(HANDLE snapshot, LPPROCESSENTRY32 entry) {
  return CallFails("Process32Next") ? FALSE : HandOutNext(snapshot, entry, false);
}

BOOL WINAPI Module32First(HANDLE, LPMODULEENTRY32) {
  return CallFails("Module32First") ? FALSE : NoModules();
}

BOOL WINAPI Module32Next(HANDLE, LPMODULEENTRY32) {
  return CallFails("Module32Next") ? FALSE : NoModules();
}
