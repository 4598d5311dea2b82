// What is wrong with a file that describes a machine.
#pragma once

#include <cstddef>
#include <string>

namespace host {

struct LoadError {
  std::string file;      // as it was named to the reader, or below the machine folder
  std::size_t line = 0;  // from 1; 0: the file as a whole
  std::string reason;    // UTF-8

  // "software.reg:12: ..."
  bool operator==(const LoadError&) const = default;

  std::string Text() const {
    return file + (line == 0 ? "" : ":" + std::to_string(line)) + ": " + reason;
  }
};

}  // namespace host
