// The machine's printers.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/host/windows_types.h"

namespace host {

struct Printer {
  std::string name;
  std::optional<std::string> port;        // here as below: none is a null pointer in the records
  std::optional<std::string> server;      // that a connection leads to
  std::optional<std::string> share_name;  // under which others find it
  DWORD attributes = 0;
  DWORD open_error = 0;  // opening it fails with this
};

struct Printers {
  std::vector<Printer> installed;
};

}  // namespace host
