#include "report/report_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/host/machine.h"
#include "tests/support/test_folder.h"

namespace hostscope {
namespace {

class Writing : public testing::Test {
 protected:
  std::string Content() const { return folder_.Read("r.txt"); }

  host::Machine machine_;
  host::UseMachine use_{machine_};
  test::TestFolder folder_;
  ReportWriter writer_{folder_.PathOf("r.txt").c_str()};
};

TEST_F(Writing, FormattedLinesAreCutAndColumnsAreNot) {
  writer_.WriteFormatted("%-27s%-15s:  %u b\r\n", "A label of 27 characters...", "Size", 4096U);
  writer_.WriteFormatted("%-27s%s\r\n", "A label that is longer than 27 characters", "value");
  writer_.WriteFormatted("%s\r\n", std::string(2000, 'x').c_str());
  writer_.Close();
  EXPECT_EQ(Content(),
            "A label of 27 characters...Size           :  4096 b\r\n"
            "A label that is longer than 27 charactersvalue\r\n" +
                std::string(1023, 'x'));
}

TEST_F(Writing, EverythingIsInTheFileAfterAFlush) {
  std::string expected;
  for (std::size_t size : {1U, 8191U, 1U, 8192U, 8193U, 30000U, 5U}) {
    const std::string text(size, static_cast<char>('a' + size % 26));
    writer_.WriteText(text.c_str());
    expected += text;
    writer_.Flush();
    EXPECT_EQ(Content(), expected) << size;
  }
  writer_.WriteText("at the end");
  writer_.Close();
  EXPECT_EQ(Content(), expected + "at the end");
}

TEST_F(Writing, GoesOnWhenWritesFailOrMemoryIsShort) {
  machine_.faults.FailNth("WriteFile", 1, ERROR_WRITE_PROTECT);
  writer_.WriteText("lost");
  writer_.Flush();
  writer_.WriteText("kept");
  writer_.Close();
  EXPECT_EQ(Content(), "kept");
  writer_.WriteText("no file any more");
  machine_.faults.FailNth("HeapAlloc", 1, ERROR_NOT_ENOUGH_MEMORY);
  ReportWriter unbuffered(folder_.PathOf("u.txt").c_str());
  unbuffered.WriteText("straight");
  EXPECT_EQ(folder_.Read("u.txt"), "straight");
}

TEST_F(Writing, NoFile) {
  ReportWriter none(folder_.PathOf("missing\\r.txt").c_str());
  EXPECT_FALSE(none.open());
  none.WriteText("x");
  none.WriteBanner("x");
  none.Flush();
}

TEST_F(Writing, Dates) {
  const std::pair<host::LocalTime, const char*> rows[] = {
      {{.year = 2002, .month = 3, .day = 7, .hour = 9, .minute = 5}, "07 March 2002 09:05"},
      {{.year = 1999, .month = 12, .day = 31, .hour = 23, .minute = 59}, "31 December 1999 23:59"},
      {{.year = 2000, .month = 1, .day = 1, .hour = 0, .minute = 0}, "01 January 2000 00:00"},
      // A clock that is out of its mind.
      {{.year = 65535, .month = 0, .day = 65535, .hour = 65535, .minute = 65535},
       "65535  65535 65535:65535"},
  };
  for (const auto& [time, expected] : rows) {
    machine_.local_time = time;
    char text[kReportDateSize] = {};
    FormatReportDate(text);
    EXPECT_STREQ(text, expected);
  }
}

}  // namespace
}  // namespace hostscope
