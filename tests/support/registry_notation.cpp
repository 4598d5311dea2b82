#include "tests/support/registry_notation.h"

#include <gtest/gtest.h>

#include <regex>

#include "platform/host/reg_file.h"

namespace hostscope::test {
namespace {

std::string Expanded(std::string exports) {
  const std::pair<const char*, std::string> rows[] = {
      {R"(\[class (\w+) (\w+)\])", "[CCS\\Control\\Class\\<$1>]\n\"Class\"=\"$2\""},
      {R"(\[device (\w+) (.+)\])",
       "[CCS\\Enum\\$2\\Control]\n[CCS\\Enum\\$2]\n\"ClassGUID\"=\"<$1>\""},
      {R"(\[CCS)", "[HKLM\\SYSTEM\\CurrentControlSet"},
      {"<(9..)>", "{4d36e$1-E325-11CE-BFC1-08002BE10318}"},
      {"<N>", std::string(300, 'n')},
      {"  ", "\n"},
  };
  for (const auto& [token, text] : rows)
    exports = std::regex_replace(exports, std::regex(token), text);
  return exports;
}

}  // namespace

void ReadRegistryNotation(host::Machine& machine, const std::string& exports) {
  const auto error = host::ReadRegText("REGEDIT4\n" + Expanded(exports), machine.registry);
  EXPECT_FALSE(error) << error->line << ": " << error->reason;
}

}  // namespace hostscope::test
