// The environment variables of the program and its error mode.
#include <string>
#include <string_view>
#include <utility>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

using namespace host;

namespace {

// A name between two percent signs; one that no variable has stays, with both of them.
std::string Expand(std::string_view text) {
  const auto& environment = CurrentMachine().environment;
  std::string expanded;
  while (!text.empty()) {
    const std::size_t begin = text.find('%');
    const std::size_t end =
        begin == std::string_view::npos ? std::string_view::npos : text.find('%', begin + 1);
    if (end == std::string_view::npos) return expanded.append(text);
    const auto variable = environment.find(std::string(text.substr(begin + 1, end - begin - 1)));
    const bool known = variable != environment.end();
    expanded += text.substr(0, known ? begin : end + 1);
    if (known) expanded += variable->second;
    text.remove_prefix(end + 1);
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
