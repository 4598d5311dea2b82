#include "probes/system/page_files.h"

#include <algorithm>

#include "util/dos_call.h"
#include "util/handles.h"
#include "util/low_block.h"
#include "util/numbers.h"
#include "util/registry.h"
#include "util/text.h"

namespace hostscope {
namespace {

constexpr char kLabel[] = "Pagefile space";
constexpr char kUnknown[] = "?";

// Copies the word at the front of the text into the field, cut to fit, and takes it off with the
// blank behind it.
void TakeWord(const char*& text, std::span<char> field) {
  const char* const blank = FindCharacter(text, ' ');
  const std::size_t length =
      blank == nullptr ? TextLength(text) : static_cast<std::size_t>(blank - text);
  CopyText(field.data(), std::min(field.size(), length + 1), text);
  text += length + (blank == nullptr ? 0 : 1);
}

// Megabytes, low 32 bits; 0 for a file that is not there.
std::uint32_t FileMegabytes(const char* path) {
  const FileSearch file(path);
  if (!file.found()) return 0;
  const std::uint64_t size =
      static_cast<std::uint64_t>(file.entry().nFileSizeHigh) << 32 | file.entry().nFileSizeLow;
  return static_cast<std::uint32_t>(size >> 20);
}

template <std::size_t kSize>
void FormatMegabytes(char (&field)[kSize], std::uint32_t megabytes) {
  static_assert(kSize > 10);
  wsprintfA(field, "%u", static_cast<unsigned>(megabytes));
}

bool ReadNtPageFiles(RecordArray& page_files) {
  const OwnedText list =
      ReadRegistryValue(HKEY_LOCAL_MACHINE,
                        "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Memory Management",
                        "PagingFiles")
          .AsText();
  if (!list.present()) return false;
  const char* rest = list.c_str();
  for (PageFileRecord record; TakePageFile(rest, record);) {
    FormatMegabytes(record.size, FileMegabytes(record.name));
    page_files.Append(&record);
  }
  return page_files.complete();
}

// A setting of the section for enhanced mode, cut to the field.
void ReadEnhancedModeSetting(const char* key, const char* fallback, std::span<char> field) {
  CopyText(field.data(), field.size(), fallback);
  GetPrivateProfileStringA("386Enh", key, fallback, field.data(), static_cast<DWORD>(field.size()),
                           "system.ini");
}

// Asks DOS for the path and the size of the swap file in use; false, the record as it was, when it
// does not say.
bool AskForSwapFile(PageFileRecord& record) {
  constexpr std::uint32_t kFindSwapFile = 0x486E;
  LowBlock name(sizeof record.name);
  if (!name.present()) return false;
  DosRegisters registers = {};
  registers.edx = name.address();
  registers.ecx = kFindSwapFile;
  registers.eax = kDosGenericIoctl;
  if (!CallDos(registers) || name.data()[0] == '\0') return false;
  CopyText(record.name, name.data());
  const std::uint64_t pages = static_cast<std::uint64_t>(registers.ecx) << 32 | registers.ebx;
  FormatMegabytes(record.size, static_cast<std::uint32_t>(pages >> 8));
  return true;
}

// Where the swap file lies as a rule: on the drive that system.ini names, else in the Windows
// folder.
void GuessSwapFile(PageFileRecord& record) {
  ReadEnhancedModeSetting("PagingDrive", "", record.name);
  if (record.name[0] == '\0') GetWindowsDirectoryA(record.name, sizeof record.name);
  record.name[sizeof record.name - 1] = '\0';
  const std::size_t length = TextLength(record.name);
  CopyText(record.name + length, sizeof record.name - length, "\\Win386.swp");
  FormatMegabytes(record.size, FileMegabytes(record.name));
}

// system.ini holds kilobytes.
template <std::size_t kSize>
void ReadLimit(const char* key, char (&field)[kSize]) {
  ReadEnhancedModeSetting(key, kUnknown, field);
  if (!SameText(field, kUnknown)) FormatMegabytes(field, ParseProfileNumber(field) >> 10);
}

void ReadWindows9xPageFile(RecordArray& page_files) {
  PageFileRecord record = {};
  if (!AskForSwapFile(record)) GuessSwapFile(record);
  ReadLimit("MinPagingFileSize", record.minimum);
  ReadLimit("MaxPagingFileSize", record.maximum);
  page_files.Append(&record);
}

}  // namespace

bool TakePageFile(const char*& list, PageFileRecord& record) {
  record = {};
  if (*list == '\0') return false;
  TakeWord(list, record.name);
  TakeWord(list, record.minimum);
  TakeWord(list, record.maximum);
  return true;
}

bool ReadPageFiles(ProbeContext& context) {
  // Emptied in place: of Windows 95/98/Me there is a record also when memory is short.
  context.page_files.Clear();
  if (!context.page_files.present() && !context.page_files.Create(kPageFileRecordSize))
    return false;
  if (context.is_nt()) return ReadNtPageFiles(context.page_files);
  ReadWindows9xPageFile(context.page_files);
  return true;
}

bool WritePageFiles(ItemRun& run) {
  if (!ReadPageFiles(run.context)) {
    run.report.WriteFormatted(kLabelLineFormat, kLabel);
    return false;
  }
  const RecordArray& page_files = run.context.page_files;
  for (int i = 0; i < page_files.count(); ++i) {
    const auto& file = *page_files.GetAs<PageFileRecord>(i);
    run.report.WriteFormatted("%-27s%s, size %s Mb, min %s Mb, max %s Mb\r\n", i == 0 ? kLabel : "",
                              file.name, file.size, file.minimum, file.maximum);
  }
  return true;
}

}  // namespace hostscope
