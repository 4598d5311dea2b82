// Writing a list of records: its label, "%s (total %u)", stands on the first line alone.
#pragma once

#include <cstddef>

#include "report/report_writer.h"
#include "util/record_array.h"

namespace hostscope {

// Room for a list label, terminator included: the largest number, and a list name of at most 44
// characters, three times as long as the program's longest.
inline constexpr std::size_t kListLabelSize = 64;

// "%s (total %u)" of the list name and the number of entries.
void FormatListLabel(char (&label)[kListLabelSize], const char* list_name, int count);

// The line of a list that could not be examined: its name alone. Answers false, as its item does.
bool WriteFailedList(ReportWriter& report, const char* list_name);
// The same without the blanks that fill up the label's column.
bool WriteFailedListUnpadded(ReportWriter& report, const char* list_name);

// The line of a list without entries: its label alone.
void WriteEmptyList(ReportWriter& report, const char* list_name);

// Calls write(report, label, record) for each record. The label is a buffer that the function may
// empty behind its first line; it is empty from the second record on.
template <typename Record, typename Write>
void WriteRecords(ReportWriter& report, const char* list_name, const RecordArray& records,
                  Write write) {
  char label[kListLabelSize];
  FormatListLabel(label, list_name, records.count());
  for (int i = 0; i < records.count(); ++i) {
    write(report, label, *records.GetAs<Record>(i));
    label[0] = '\0';
  }
}

// The same, or the empty list when there is no record.
template <typename Record, typename Write>
void WriteList(ReportWriter& report, const char* list_name, const RecordArray& records,
               Write write) {
  if (records.count() == 0) {
    WriteEmptyList(report, list_name);
  } else {
    WriteRecords<Record>(report, list_name, records, write);
  }
}

// A list of records of one line each, with an empty line behind the last one.
template <typename Record, typename Write>
void WriteLines(ReportWriter& report, const char* list_name, const RecordArray& records,
                Write write) {
  WriteList<Record>(report, list_name, records, write);
  if (records.count() != 0) report.WriteText(kLineEnd);
}

}  // namespace hostscope
