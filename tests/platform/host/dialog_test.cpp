// Modal dialogs as the person in front of them meets them. What single calls answer is held by the
// contract tests.
#include <gtest/gtest.h>

#include "tests/platform/host/dialog_run.h"

namespace host {
namespace {

struct Stroke {
  WPARAM key;
  bool shift = false;
  bool alt = false;
};

TEST(DialogKeys, MoveTheFocusAndSendCommands) {
  const struct {
    const char* name;
    std::vector<Stroke> strokes;
    int focus;  // afterwards
    const char* log;
  } kRows[] = {
      {"Shift+Tab", {{VK_TAB, true}}, kButton, ""},
      {"arrows are the list's own", {{VK_DOWN}, {VK_RIGHT}}, kList, ""},
      {"arrows elsewhere move on", {{VK_TAB}, {VK_DOWN}}, kButton, ""},
      {"arrows elsewhere move back", {{VK_TAB}, {VK_LEFT}}, kList, ""},
      {"a list takes letters", {{'S'}}, kList, ""},
      {"a letter elsewhere is a mnemonic", {{VK_TAB}, {'G'}}, kButton, "command 13"},
      {"Alt and a letter, from everywhere", {{'S', false, true}}, kCheck, "command 11"},
      {"the mnemonic of what is disabled", {{'O', false, true}}, kList, ""},
      {"a letter that is none", {{VK_TAB}, {'X'}}, kCheck, ""},
  };
  for (const auto& row : kRows) {
    DialogRun run;
    run.Start();
    for (const Stroke& stroke : row.strokes) {
      EXPECT_TRUE(run.desktop().KeyPress(stroke.key, stroke.shift, stroke.alt)) << row.name;
    }
    EXPECT_EQ(run.FocusId(), row.focus) << row.name;
    EXPECT_EQ(run.TakeLog(), row.log) << row.name;
  }
}

}  // namespace
}  // namespace host
