#include "platform/host/process.h"

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <exception>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/host/faults.h"
#include "platform/host/machine.h"
#include "platform/host/threads.h"

namespace host {
namespace {

// One lock for everything that a thread can wait for here: the ends of threads and of processes.
std::mutex wait_mutex;
std::condition_variable something_ended;

struct Process {
  bool ended = false;  // with wait_mutex
  UINT code = 0;
  std::vector<std::thread> threads;
};

thread_local Process* own_process = nullptr;  // none: not a thread of RunProcess's program
thread_local bool is_first_thread = false;

// Ends the process; its first end counts.
void End(Process& process, UINT code) {
  {
    const std::lock_guard lock(wait_mutex);
    if (process.ended) return;
    process.ended = true;
    process.code = code;
  }
  something_ended.notify_all();
  CurrentMachine().desktop.Wake();
}

void JoinThreads(Process& process) {
  while (true) {
    std::vector<std::thread> threads;
    {
      const std::lock_guard lock(wait_mutex);
      threads.swap(process.threads);
    }
    if (threads.empty()) return;
    for (std::thread& thread : threads)
      thread.join();
  }
}

// The time that RunProcess is on this thread's stack.
class Running {
 public:
  explicit Running(Process& process)
      : process_(process),
        outer_process_(std::exchange(own_process, &process)),
        was_first_thread_(std::exchange(is_first_thread, true)) {}
  ~Running() {
    End(process_, 0);
    JoinThreads(process_);
    own_process = outer_process_;
    is_first_thread = was_first_thread_;
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  Process& process_;
  Process* outer_process_;
  bool was_first_thread_;
};

void RunThread(Process* process, const std::shared_ptr<Thread>& thread,
               const std::function<void()>& routine) {
  own_process = process;
  thread->BecomeCurrent();
  try {
    routine();
  } catch (const ThreadEnded&) {
  }
  {
    const std::lock_guard lock(wait_mutex);
    thread->SetEnded();
  }
  something_ended.notify_all();
}

}  // namespace

int RunProcess(Machine& machine, const std::function<void()>& program) {
  const UseMachine use(machine);
  // The program cuts its command line up in place; another run finds it whole.
  const std::string command_line = machine.command_line;
  Process process;
  {
    const Running running(process);
    try {
      program();
    } catch (const ProcessEnded&) {
    }
  }
  machine.command_line = command_line;
  return static_cast<int>(process.code);
}

bool ProcessHasEnded() {
  const std::lock_guard lock(wait_mutex);
  return own_process != nullptr && own_process->ended;
}

void EndThreadIfProcessEnded() {
  if (std::uncaught_exceptions() > 0 || !ProcessHasEnded()) return;
  if (is_first_thread) throw ProcessEnded{own_process->code};
  throw ThreadEnded();
}

bool EndableCallFails(const char* function) {
  EndThreadIfProcessEnded();
  return CallFails(function);
}

void EndProcess(UINT code) {
  if (own_process == nullptr) {
    std::fflush(nullptr);
    _exit(static_cast<int>(code));
  }
  End(*own_process, code);
  if (!is_first_thread) throw ThreadEnded();
  // The way out releases what the program's frames hold, and no thread may be using it then.
  JoinThreads(*own_process);
  throw ProcessEnded{own_process->code};
}

void StartThread(const std::shared_ptr<Thread>& thread, std::function<void()> routine) {
  Process* const process = own_process;
  std::thread started(RunThread, process, thread, std::move(routine));
  if (process == nullptr) {
    started.detach();
    return;
  }
  const std::lock_guard lock(wait_mutex);
  process->threads.push_back(std::move(started));
}

bool WaitForThread(const Thread& thread, std::optional<std::chrono::milliseconds> limit) {
  const auto over = [&] {
    return thread.ended() || (own_process != nullptr && own_process->ended);
  };
  bool ended = false;
  {
    std::unique_lock lock(wait_mutex);
    if (limit) {
      something_ended.wait_for(lock, *limit, over);
    } else {
      something_ended.wait(lock, over);
    }
    ended = thread.ended();
  }
  // When the process has ended the waiting thread goes with it, though the other was quicker.
  EndThreadIfProcessEnded();
  return ended;
}

void SleepFor(std::chrono::milliseconds time) {
  {
    std::unique_lock lock(wait_mutex);
    something_ended.wait_for(lock, time,
                             [] { return own_process != nullptr && own_process->ended; });
  }
  EndThreadIfProcessEnded();
}

}  // namespace host
