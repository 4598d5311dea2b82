// Fault injection: a test can make the n-th call of any function of the layer fail, with a given
// error code, or have something happen at a call.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/host/windows_types.h"

namespace host {

// A name that is none of the layer's functions (functions.h) ends the process with a message, in
// every call but the counts.
class Faults {
 public:
  // The n-th call from now on (1 is the next one) of the function fails with the error. Several
  // calls of one function may be told to fail.
  void FailNth(std::string_view function, unsigned n, DWORD error);
  // Every call from now on fails with the error, but for those stated by FailNth.
  void FailAlways(std::string_view function, DWORD error);
  // Runs at every call of the function, on the calling thread, before the call does its work. An
  // empty action ends that.
  void AtCall(std::string_view function, std::function<void()> action);
  // Nothing is stated any more; the counts stay.
  void Forget();
  // How often the function has been called on this machine.
  unsigned CallCount(std::string_view function) const;
  // Every function that has been called on this machine, with its count.
  std::map<std::string, unsigned> CallCounts() const;

  // For the layer's functions: counts the call, runs the action stated for it and answers the error
  // with which it must fail now, if any.
  std::optional<DWORD> Enter(std::string_view function);

 private:
  struct Entry {
    unsigned calls = 0;
    std::map<unsigned, DWORD> fail_at;  // number of the call to error
    std::optional<DWORD> fail_always;
    std::function<void()> action;
  };
  Entry& EntryOf(std::string_view function);

  mutable std::mutex mutex_;
  std::map<std::string, Entry, std::less<>> entries_;
};

// What every function of the layer does first: counts the call on the current machine. When the
// call must fail it sets the last error of the calling thread to the stated code and answers true.
bool CallFails(const char* function);
// The same for functions that answer their error code themselves (the registry): the code, else 0.
DWORD CallError(const char* function);
// The same for functions that answer an HRESULT and hand out an object: the code, if any. One that
// is not negative, 0 too, stands for a success that hands out nothing.
std::optional<HRESULT> CallFault(const char* function);

}  // namespace host
