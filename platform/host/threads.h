// What stands behind the thread functions of KERNEL32; for the layer's own files.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "platform/host/handles.h"
#include "platform/host/windows_types.h"

namespace host {

class Thread : public Object {
 public:
  Thread();
  DWORD id() const { return id_; }

  // Whether it has ended: process.cpp guards it by its own lock.
  bool ended() const { return ended_; }
  void SetEnded() { ended_ = true; }
  // Its id is that of the calling thread from now on.
  void BecomeCurrent() const;

 private:
  DWORD id_;
  bool ended_ = false;
};

// Runs the routine on a new thread of the caller's process.
void StartThread(const std::shared_ptr<Thread>& thread, std::function<void()> routine);
// False when the time is over first; no limit waits as long as it takes.
bool WaitForThread(const Thread& thread, std::optional<std::chrono::milliseconds> limit);
void SleepFor(std::chrono::milliseconds time);
[[noreturn]] void EndProcess(UINT code);

}  // namespace host
