#include "report/report_writer.h"

#include <cstdarg>
#include <cstring>
#include <iterator>

#include "platform/win32.h"
#include "util/text.h"

namespace hostscope {
namespace {

inline constexpr std::size_t kGatheredSize = 8192;
inline constexpr std::size_t kRuleWidth = 84;
inline constexpr std::size_t kLongestTitle = 80;

constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};

}  // namespace

ReportWriter::ReportWriter(const char* path) : file_(FileHandle::CreateForWriting(path)) {
  // Without the buffer every write goes straight to the file.
  if (file_.open()) gathered_ = HeapBuffer(kGatheredSize);
}

void ReportWriter::WriteText(const char* text) {
  WriteBytes(text, TextLength(text));
}

void ReportWriter::WriteFormatted(const char* format, ...) {
  char text[kFormattedSize + 1] = {};
  std::va_list values;
  va_start(values, format);
  wvsprintfA(text, format, values);
  va_end(values);
  EndFormatted(text);
  WriteText(text);
}

void ReportWriter::BeginItem(const char* label) {
  WriteFormatted(kLabelFormat, label);
  Flush();
}

void ReportWriter::WriteBanner(const char* title) {
  const std::size_t length = TextLength(title) < kLongestTitle ? TextLength(title) : kLongestTitle;
  const std::size_t run = (kRuleWidth - length) / 2 - 1;
  WriteText(kLineEnd);
  WriteRun('=', kRuleWidth);
  WriteText(kLineEnd);
  WriteRun('=', run);
  WriteText(" ");
  WriteBytes(title, length);
  WriteText(" ");
  WriteRun('=', kRuleWidth - length - 2 - run);
  WriteText(kLineEnd);
  WriteRun('=', kRuleWidth);
  WriteText(kLineEnd);
}

void ReportWriter::WriteDeviceBlock(char* label, const DeviceRecord& record) {
  WriteFormatted(kTextFieldFormat, label, "Description", record.name);
  label[0] = '\0';
  WriteFormatted(kTextFieldFormat, label, "Manufacturer", record.manufacturer);
  WriteFormatted(kTextFieldFormat, label, "Driver date", record.driver_date);
}

void ReportWriter::WriteRun(char character, std::size_t count) {
  char run[kRuleWidth];
  std::memset(run, character, count);
  WriteBytes(run, count);
}

void ReportWriter::WriteBytes(const char* bytes, std::size_t size) {
  if (!file_.open() || size == 0) return;
  if (size > gathered_.size() - gathered_size_) Flush();
  if (size > gathered_.size()) {
    WriteThrough(bytes, size);
    return;
  }
  std::memcpy(gathered_.data() + gathered_size_, bytes, size);
  gathered_size_ += size;
}

void ReportWriter::Flush() {
  if (gathered_size_ > 0) WriteThrough(gathered_.data(), gathered_size_);
  gathered_size_ = 0;
}

HANDLE ReportWriter::FlushedFile() {
  Flush();
  return file_.get();
}

void ReportWriter::WriteThrough(const char* bytes, std::size_t size) {
  DWORD written = 0;
  WriteFile(file_.get(), bytes, static_cast<DWORD>(size), &written, nullptr);
}

void ReportWriter::Close() {
  Flush();
  file_.Close();
}

void FormatReportDate(char (&text)[kReportDateSize]) {
  SYSTEMTIME now = {};
  text[0] = '\0';
  GetLocalTime(&now);
  const bool named = now.wMonth >= 1 && now.wMonth <= std::size(kMonths);
  wsprintfA(text, "%02u %s %u %02u:%02u", now.wDay, named ? kMonths[now.wMonth - 1] : "", now.wYear,
            now.wHour, now.wMinute);
}

}  // namespace hostscope
