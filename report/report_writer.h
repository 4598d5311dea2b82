// The report file: 8-bit text in the system code page, lines ended by CR LF, written strictly in
// order.
#pragma once

#include <cstddef>

#include "report/device_record.h"
#include "util/handles.h"
#include "util/heap.h"

namespace hostscope {

// Formats shared by the sections: a label of 27 columns, a field name of 15 columns, a colon and
// the value.
inline constexpr char kLabelFormat[] = "%-27s";
inline constexpr char kLabelLineFormat[] = "%-27s\r\n";
inline constexpr char kTextFieldFormat[] = "%-27s%-15s:  %s\r\n";
// The same with 21 columns for the field name.
inline constexpr char kWideTextFieldFormat[] = "%-27s%-21s:  %s\r\n";
inline constexpr char kWideNumberFieldFormat[] = "%-27s%-21s:  %u\r\n";
inline constexpr char kLineEnd[] = "\r\n";

// Room for the text of FormatReportDate, terminator included.
inline constexpr std::size_t kReportDateSize = 64;

class ReportWriter {
 public:
  // A writer without a file; whatever is written to it is dropped.
  ReportWriter() = default;
  // Creates the report file, or truncates it. The writer has no file when that fails. What is
  // written is gathered until Flush, Close or a full buffer hands it to the file; a write that
  // fails is not noticed.
  explicit ReportWriter(const char* path);
  ~ReportWriter() { Close(); }
  ReportWriter(const ReportWriter&) = delete;
  ReportWriter& operator=(const ReportWriter&) = delete;

  bool open() const { return file_.open(); }
  // The text's bytes as they stand.
  void WriteText(const char* text);
  // At most 1023 characters by the platform's formatter (wsprintfA); a longer result is cut there.
  void WriteFormatted(const char* format, ...) __attribute__((format(printf, 2, 3)));
  // Begins the line of a value that is still to be found. The label is in the file before that, so
  // that a report cut short shows which item it was in.
  void BeginItem(const char* label);
  // The three lines of a section's head: an empty line first, then the title (at most 80
  // characters) centred between two rules of 84 "=".
  void WriteBanner(const char* title);
  // The three field lines of a device. Only the first carries the label; it is made empty then, so
  // that a list of devices shows its label once.
  void WriteDeviceBlock(char* label, const DeviceRecord& record);

  // The open file, for whoever writes to it directly, at its end; everything written so far is in
  // it. Null for a writer without a file.
  HANDLE FlushedFile();
  // Everything written so far is in the file afterwards.
  void Flush();
  void Close();

 private:
  void WriteBytes(const char* bytes, std::size_t size);
  void WriteRun(char character, std::size_t count);
  void WriteThrough(const char* bytes, std::size_t size);

  FileHandle file_;
  HeapBuffer gathered_;
  std::size_t gathered_size_ = 0;
};

// The local date and time, as in "07 March 2002 09:05".
void FormatReportDate(char (&text)[kReportDateSize]);

}  // namespace hostscope
