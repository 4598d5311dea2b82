// What the plug-in libraries of a machine write into a report: a machine states the text and the
// result of each function, and gets a function that does just that.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/host/windows_types.h"

namespace host {

struct PlugIn {
  bool succeeds = true;
  std::string text = {};  // in the code page, written as it stands
};

class PlugIns {
 public:
  // A function without a state of its own can tell itself from so many others.
  static constexpr std::size_t kMost = 32;

  // What a library exports for the plug-in; null when there are kMost already.
  FARPROC Add(PlugIn plug_in);

  // For the functions given out: does what the plug-in of that number does.
  bool Run(std::size_t number, HANDLE report) const;

 private:
  mutable std::mutex mutex_;
  std::vector<PlugIn> plug_ins_;
};

}  // namespace host
