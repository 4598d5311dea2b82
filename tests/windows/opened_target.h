// Stands in for the web browser: for the life of an object, the system opens web addresses with
// this test program, which writes down what it was given.
#pragma once

#include <optional>
#include <string>

#include "tests/windows/surroundings.h"

namespace drive {

// The first argument of the test program when it is to write down a target instead of testing.
inline constexpr char kRecordSwitch[] = "--record-opened-target";

struct OpenedTarget {
  std::string target;
  int show_command = 0;  // SW_... that the opened program was asked to appear with
};

class WebBrowser {
 public:
  explicit WebBrowser(const Folder& folder);
  // Nothing when no address was opened.
  std::optional<OpenedTarget> WaitForTarget() const;

 private:
  std::string record_path_;
  RegistryValue command_;
};

// Returns the exit code of the process.
int RecordOpenedTarget(const char* record_path, const char* target);

}  // namespace drive
