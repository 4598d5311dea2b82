// Threads, waiting, and the end of the process.
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"
#include "platform/host/threads.h"

namespace host {
namespace {

// As on NT, identifiers are multiples of 4.
std::atomic<DWORD> next_thread_id = 0x104;
thread_local DWORD current_thread_id = 0;

}  // namespace

Thread::Thread() : Object("thread"), id_(next_thread_id.fetch_add(4)) {}

void Thread::BecomeCurrent() const {
  current_thread_id = id_;
}

}  // namespace host

using namespace host;

HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE start,
                           LPVOID parameter, DWORD, LPDWORD id) {
  if (EndableCallFails("CreateThread")) return nullptr;
  const auto thread = std::make_shared<Thread>();
  if (id != nullptr) *id = thread->id();
  const std::uintptr_t handle = CurrentMachine().handles.Open(thread);
  StartThread(thread, [start, parameter] { start(parameter); });
  return reinterpret_cast<HANDLE>(handle);
}

DWORD WINAPI WaitForSingleObject(HANDLE object, DWORD milliseconds) {
  if (EndableCallFails("WaitForSingleObject")) return WAIT_FAILED;
  const auto thread =
      CurrentMachine().handles.FindAs<Thread>(reinterpret_cast<std::uintptr_t>(object));
  if (thread == nullptr) {
    SetLastError(ERROR_INVALID_HANDLE);
    return WAIT_FAILED;
  }
  const auto limit = milliseconds == INFINITE
                         ? std::nullopt
                         : std::optional(std::chrono::milliseconds(milliseconds));
  return WaitForThread(*thread, limit) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

HANDLE WINAPI GetCurrentThread() {
  if (CallFails("GetCurrentThread")) return nullptr;
  return reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-2));
}

HANDLE WINAPI GetCurrentProcess() {
  if (CallFails("GetCurrentProcess")) return nullptr;
  return reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1));
}

DWORD WINAPI GetCurrentThreadId() {
  if (CallFails("GetCurrentThreadId")) return 0;
  if (current_thread_id == 0) current_thread_id = next_thread_id.fetch_add(4);
  return current_thread_id;
}

DWORD WINAPI GetCurrentProcessId() {
  if (CallFails("GetCurrentProcessId")) return 0;
  return CurrentMachine().processes.own_id;
}

void WINAPI ExitProcess(UINT code) {
  static_cast<void>(CallFails("ExitProcess"));
  EndProcess(code);
}

void WINAPI Sleep(DWORD milliseconds) {
  if (EndableCallFails("Sleep")) return;
  SleepFor(std::chrono::milliseconds(milliseconds));
}
