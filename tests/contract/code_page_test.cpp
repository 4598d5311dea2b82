// The way of 16-bit texts to the code page.
#include <gtest/gtest.h>

#include <string>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

TEST(CodePageContract, WideCharToMultiByte) {
  const Place place;
  static constexpr WCHAR kText[] = {'a', 0xE4, 0x20AC, 0x4E2D, 0};
  static constexpr WCHAR kComposed[] = {'e', 0x301, 0};
  const struct {
    const char* what;
    DWORD flags;
    const WCHAR* text;
    int size;
    const char* expected;
    KnownDifference known = {};
  } rows[] = {
      {"room", 0x210, kText, 8, R"(5 a\xE4\x80?|~~~)"},
      {"no flags", 0, kText, 5, R"(5 a\xE4\x80?|~~~)"},
      {"one short", 0x210, kText, 4, R"(0 a\xE4\x80?~~~~ 122)"},
      {"composed",
       0x210,
       kComposed,
       8,
       R"(2 \xE9|~~~~~~)",
       {Platform::kHostLayer, "no machine can state such a text"}},
  };
  for (const auto& row : rows) {
    std::string bytes(8, '~');
    const int answer = WideCharToMultiByte(CP_ACP, row.flags, row.text, -1, bytes.data(), row.size,
                                           nullptr, nullptr);
    const std::string error = answer == 0 ? " " + std::to_string(GetLastError()) : "";
    ExpectAnswer(row.what, row.expected, std::to_string(answer) + " " + Visible(bytes) + error,
                 row.known);
  }
}

}  // namespace
}  // namespace contract
