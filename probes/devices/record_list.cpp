#include "probes/devices/record_list.h"

#include "platform/win32.h"

namespace hostscope {

void FormatListLabel(char (&label)[kListLabelSize], const char* list_name, int count) {
  wsprintfA(label, "%s (total %u)", list_name, static_cast<unsigned>(count));
}

bool WriteFailedList(ReportWriter& report, const char* list_name) {
  report.WriteFormatted(kLabelLineFormat, list_name);
  return false;
}

bool WriteFailedListUnpadded(ReportWriter& report, const char* list_name) {
  report.WriteText(list_name);
  report.WriteText(kLineEnd);
  return false;
}

void WriteEmptyList(ReportWriter& report, const char* list_name) {
  char label[kListLabelSize];
  FormatListLabel(label, list_name, 0);
  report.WriteText(label);
  report.WriteText(kLineEnd);
}

}  // namespace hostscope
