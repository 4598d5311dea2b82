// Stands in for the program that opens a kind of file, or web addresses: for the life of an object,
// the system opens these with this test program, which writes down what it was given.
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

class OpeningProgram {
 public:
  // `kind` is a class of files below HKEY_CLASSES_ROOT, or a scheme of addresses.
  OpeningProgram(const Folder& folder, const std::string& kind);
  // Nothing when nothing was opened.
  std::optional<OpenedTarget> WaitForTarget() const;

 private:
  std::string record_path_;
  RegistryValue command_;
};

// Returns the exit code of the process.
int RecordOpenedTarget(const char* record_path, const char* target);

}  // namespace drive
