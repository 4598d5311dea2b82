#include "app/command_line.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "platform/host/machine.h"

namespace hostscope {
namespace {

std::optional<std::string> AsOptional(const OwnedText& text) {
  if (!text.present()) return std::nullopt;
  return text.c_str();
}

TEST(CommandLine, IsSplitIntoTwoArguments) {
  host::Machine machine;
  const host::UseMachine use(machine);
  using Text = std::optional<std::string>;
  struct Row {
    const char* line;
    Text first;
    Text second;
  };
  const Text none;
  const Row rows[] = {
      {"", none, none},
      {"hscope.exe", none, none},
      {"hscope.exe   ", none, none},
      {"\"C:\\Program Files\\hscope.exe\"", none, none},
      {"\"C:\\Program Files\\hscope.exe", none, none},
      {"\"C:\\Program Files\\hscope.exe\" \"my.ini\"", "my.ini", none},
      {"hscope \"my.ini\" \"C:\\Reports\"", "my.ini", "C:\\Reports"},
      {"hscope \"my own.ini\"\"C:\\My Reports\"", "my own.ini", "C:\\My Reports"},
      {"hscope   \"a\"   \"b\"   \"c\"", "a", "b"},
      {"hscope \"\" \"b\"", "", "b"},
      // What stands between two quoted arguments, or behind the last, does not count.
      {"hscope \"a\" x y \"b\" z", "a", "b"},
      {"hscope \"a\" x", "a", none},
      // The name itself ends at a space only; without one there is nothing behind it.
      {"\"hscope\"\"a\"", none, none},
      {"\"hscope\"x \"a\"", "a", none},
      // A quote that is not closed reaches to the end.
      {"hscope \"my own.ini", "my own.ini", none},
      {"hscope \"a\" \"b c", "a", "b c"},
      // Without quotes: to the next space.
      {"hscope my.ini", "my.ini", none},
      {"hscope my.ini C:\\Reports", "my.ini", "C:\\Reports"},
      {"hscope  my.ini   C:\\Reports  more", "my.ini", "C:\\Reports"},
      {"hscope my.ini \"C:\\My Reports\"", "my.ini", "C:\\My Reports"},
      {"hscope my.ini ", "my.ini", none},
      // A tab is a character like any other.
      {"hscope\t\"a\"", none, none},
      {"hscope \t \"a\"", "\t", "a"},
  };
  for (const Row& row : rows) {
    const CommandLineArguments arguments = SplitCommandLine(row.line);
    EXPECT_EQ(AsOptional(arguments.first), row.first) << row.line;
    EXPECT_EQ(AsOptional(arguments.second), row.second) << row.line;
  }
}

}  // namespace
}  // namespace hostscope
