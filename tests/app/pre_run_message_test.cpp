#include "app/pre_run_message.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/host/machine.h"
#include "platform/win32.h"

namespace hostscope {
namespace {

std::string Replaced(const std::string& message, const PlaceholderValues& values) {
  char text[kLongTextSize] = {};
  CopyText(text, message.c_str());
  ReplacePlaceholders(text, values);
  return text;
}

TEST(Placeholders, AreReplacedOneKindAfterTheOther) {
  host::Machine machine;
  const host::UseMachine use(machine);
  const PlaceholderValues plain = {"r.txt", "C:\\Out", "C:\\Out\\r.txt"};
  struct Row {
    const char* message;
    PlaceholderValues values;
    const char* expected;
  };
  const Row rows[] = {
      {"", plain, ""},
      {"Nothing to replace", plain, "Nothing to replace"},
      {"#RFPATH#", plain, "C:\\Out\\r.txt"},
      {"#RFPATH# is #RFNAME# in #RFFOLDER#.", plain, "C:\\Out\\r.txt is r.txt in C:\\Out."},
      {"#RFNAME##RFNAME#, #RFNAME#", plain, "r.txtr.txt, r.txt"},
      {"#rfpath# #RFPath# #RFNAME", plain, "#rfpath# #RFPath# #RFNAME"},
      {"two\r\nlines: #RFNAME#\r\n", plain, "two\r\nlines: r.txt\r\n"},
      {"[#RFFOLDER#]", {"r.txt", "", "\\r.txt"}, "[]"},
      // A percent sign is a character like any other, in the text and in a value.
      {"100%s of #RFNAME#", {"%s%d.txt", "", ""}, "100%s of %s%d.txt"},
      // Replacing may put the parts of another placeholder together.
      {"#RFN#RFNAME#AME#", {"", "", ""}, ""},
      {"#RF#RFNAME#FOLDER#", {"", "C:\\Out", ""}, "C:\\Out"},
      // A value with a placeholder in it: a later kind is replaced, its own kind or an earlier one
      // stays.
      {"#RFNAME#", {"#RFPATH#.txt", "", "p"}, "p.txt"},
      {"#RFNAME#, #RFNAME#", {"<#RFNAME#>", "", ""}, "<#RFNAME#>, <#RFNAME#>"},
      {"#RFPATH#", {"r.txt", "", "C:\\#RFNAME#"}, "C:\\#RFNAME#"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(Replaced(row.message, row.values), row.expected) << row.message;
}

TEST(Placeholders, LeaveAtMost1023Characters) {
  host::Machine machine;
  const host::UseMachine use(machine);
  const std::string name(200, 'n');
  const PlaceholderValues values = {name.c_str(), "f", "p"};
  const std::string a(900, 'a'), b(115, 'b');
  EXPECT_EQ(Replaced(a + "#RFNAME#" + b, values), a + std::string(123, 'n'));
  // Cut in the middle of a placeholder, which is none any more.
  EXPECT_EQ(
      Replaced(std::string(10, 'c') + "#RFNAME#" + std::string(808, 'd') + "#RFPATH#", values),
      std::string(10, 'c') + name + std::string(808, 'd') + "#RFPA");
  EXPECT_TRUE(machine.handles.OpenObjects().empty());
}

TEST(Placeholders, StayWhenThereIsNoMemory) {
  host::Machine machine;
  const host::UseMachine use(machine);
  machine.faults.FailAlways("HeapAlloc", ERROR_NOT_ENOUGH_MEMORY);
  EXPECT_EQ(Replaced("#RFNAME#", {"r.txt", "", ""}), "#RFNAME#");
}

TEST(PreRunMessage, GoesOnUnlessCancelOrNoIsAnswered) {
  struct Row {
    std::int32_t buttons;
    int answer;
    UINT style;
    bool goes_on;
  };
  const Row rows[] = {
      {0, IDOK, 0x40, true},    {1, IDOK, 0x41, true},       {1, IDCANCEL, 0x41, false},
      {3, IDYES, 0x43, true},   {3, IDNO, 0x43, false},      {3, IDCANCEL, 0x43, false},
      {4, IDYES, 0x44, true},   {4, IDNO, 0x44, false},      {2, IDABORT, 0x42, true},
      {5, IDRETRY, 0x45, true}, {0x104, IDNO, 0x144, false}, {0x40, IDOK, 0x40, true},
  };
  for (const Row& row : rows) {
    host::Machine machine;
    const host::UseMachine use(machine);
    machine.desktop.StateAnswers({row.answer});
    const auto state = std::make_unique<RunState>();
    const auto settings = std::make_unique<ProfileSettings>();
    state->report_folder = DuplicateText("C:\\Out");
    state->report_path = DuplicateText("C:\\Out\\r.txt");
    CopyText(settings->report_file_name, "r.txt");
    CopyText(settings->message, "#RFNAME# in #RFFOLDER# is #RFPATH#");
    settings->message_buttons = row.buttons;
    EXPECT_EQ(ConfirmPreRunMessage(*state, *settings), row.goes_on)
        << row.buttons << " " << row.answer;
    const auto boxes = machine.desktop.MessageBoxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "r.txt in C:\\Out is C:\\Out\\r.txt");
    EXPECT_EQ(boxes[0].caption, "Hostscope");
    EXPECT_EQ(boxes[0].style, row.style);
    EXPECT_EQ(boxes[0].owner, nullptr);
    EXPECT_STREQ(state->message_text, boxes[0].text.c_str());
  }
}

}  // namespace
}  // namespace hostscope
