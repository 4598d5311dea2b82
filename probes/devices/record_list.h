// Writing a list of records: its label, "%s (total %u)", stands on the first line alone.
#pragma once

#include "probes/devices/device_list.h"
#include "report/report_writer.h"
#include "util/record_array.h"

namespace hostscope {

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

// The same for records of one line each, with an empty line behind the last one; the label alone
// when there is no record.
template <typename Record, typename Write>
void WriteLines(ReportWriter& report, const char* list_name, const RecordArray& records,
                Write write) {
  if (records.count() == 0) {
    char label[kListLabelSize];
    FormatListLabel(label, list_name, 0);
    report.WriteText(label);
  }
  WriteRecords<Record>(report, list_name, records, write);
  report.WriteText(kLineEnd);
}

// The line of a list that could not be examined.
inline bool WriteFailedList(ReportWriter& report, const char* list_name) {
  report.WriteFormatted("%-27s\r\n", list_name);
  return false;
}

}  // namespace hostscope
