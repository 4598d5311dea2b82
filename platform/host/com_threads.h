// Which threads of the program have initialised COM, and how often.
#pragma once

#include <map>
#include <mutex>
#include <thread>

namespace host {

class ComThreads {
 public:
  // For the calling thread: once more, whether it is the first time; once less, whether there was a
  // time.
  bool Initialize() {
    const std::lock_guard lock(mutex_);
    return ++times_[std::this_thread::get_id()] == 1;
  }
  bool Uninitialize() {
    const std::lock_guard lock(mutex_);
    int& times = times_[std::this_thread::get_id()];
    if (times == 0) return false;
    --times;
    return true;
  }
  bool IsInitialized() {
    const std::lock_guard lock(mutex_);
    return times_[std::this_thread::get_id()] != 0;
  }

 private:
  std::mutex mutex_;
  std::map<std::thread::id, int> times_;
};

}  // namespace host
