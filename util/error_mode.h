#pragma once

#include "platform/win32.h"

namespace hostscope {

// While it lives the system shows no message boxes of its own, those of the mode, which would wait
// for somebody to answer them. The mode is that of the whole process; started programs inherit it.
class ErrorMode {
 public:
  explicit ErrorMode(UINT mode) : previous_(SetErrorMode(mode)) {}
  ~ErrorMode() { SetErrorMode(previous_); }
  ErrorMode(const ErrorMode&) = delete;
  ErrorMode& operator=(const ErrorMode&) = delete;

 private:
  UINT previous_;
};

}  // namespace hostscope
