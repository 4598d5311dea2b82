// The environment variables of the program and its error mode.
#include <string>
#include <string_view>
#include <utility>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

using namespace host;

namespace {

// A name between two percent signs; what is none, or no variable, stays.
std::string Expand(std::string_view text) {
  const auto& environment = CurrentMachine().environment;
  std::string expanded;
  while (!text.empty()) {
    const std::size_t end = text[0] == '%' ? text.find('%', 1) : std::string_view::npos;
    const auto variable = end == std::string_view::npos
                              ? environment.end()
                              : environment.find(std::string(text.substr(1, end - 1)));
    if (variable != environment.end()) {
      expanded += variable->second;
      text.remove_prefix(end + 1);
    } else {
      expanded += text[0];
      text.remove_prefix(1);
    }
  }
  return expanded;
}

}  // namespace

DWORD WINAPI ExpandEnvironmentStringsA(LPCSTR text, LPSTR buffer, DWORD size) {
  if (CallFails("ExpandEnvironmentStringsA")) return 0;
  const std::string expanded = Expand(text);
  const auto needed = static_cast<DWORD>(expanded.size() + 1);
  if (needed <= size) expanded.copy(buffer, expanded.size());
  if (needed <= size) buffer[expanded.size()] = '\0';
  return needed;
}

UINT WINAPI SetErrorMode(UINT mode) {
  if (CallFails("SetErrorMode")) return 0;
  return std::exchange(CurrentMachine().error_mode, mode);
}
