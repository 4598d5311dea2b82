#include "scans/dll_versions.h"

#include <cstddef>
#include <cstdint>

#include "platform/win32.h"
#include "util/file_version.h"
#include "util/library.h"
#include "util/text.h"

namespace hostscope {
namespace {

// What DllGetVersion fills, after the first field has told it which layout is meant.
struct DllVersionRecord {
  std::uint32_t size;
  std::uint32_t major;
  std::uint32_t minor;
  std::uint32_t build;
  std::uint32_t platform;
  // Here the older layout ends.
  std::uint32_t flags;
  std::uint64_t version;  // four parts of 16 bits
};
static_assert(sizeof(DllVersionRecord) == 32);
inline constexpr std::uint32_t kOlderSize = offsetof(DllVersionRecord, flags);
static_assert(kOlderSize == 20);

using DllGetVersionFunction = HRESULT(CALLBACK*)(DllVersionRecord*);

bool Ask(DllGetVersionFunction dll_get_version, std::uint32_t size, DllVersionRecord& record) {
  record = {};
  record.size = size;
  return dll_get_version(&record) == 0;
}

bool AskDll(const char* name, FileVersion& version) {
  BoundLibrary<1> dll;
  if (!dll.BindLoaded(LoadLibraryA(name), {"DllGetVersion"})) return false;
  const auto dll_get_version = dll.Get<DllGetVersionFunction>(0);
  DllVersionRecord record;
  if (Ask(dll_get_version, sizeof record, record)) {
    version = {static_cast<std::uint32_t>(record.version >> 32),
               static_cast<std::uint32_t>(record.version)};
    return true;
  }
  if (!Ask(dll_get_version, kOlderSize, record)) return false;
  version = {record.major << 16 | (record.minor & 0xFFFF), record.build << 16};
  return true;
}

bool ReadResource(const char* name, FileVersion& version) {
  VersionResource resource(name);
  return resource.present() &&
         resource.FindFixedVersion(VersionResource::RecordLength::kAny, version);
}

// In a column of 27 characters. A longer entry is not cut, not even to what a formatted text may
// hold.
void WriteEntry(ReportWriter& report, const char* entry) {
  if (TextLength(entry) < kFormattedSize) {
    report.WriteFormatted(kLabelFormat, entry);
  } else {
    report.WriteText(entry);
  }
}

}  // namespace

bool ReadDllVersion(const char* name, std::span<char> text) {
  if (text.empty()) return false;
  text.front() = '\0';
  FileVersion version;
  if (!AskDll(name, version) && !ReadResource(name, version)) return false;
  FormatFileVersion(version, text);
  return true;
}

bool WriteDllVersions(ItemRun& run) {
  ReportWriter& report = run.report;
  report.WriteFormatted("%-27s%s\r\n", "[dll name]", "[version]");
  bool any_found = false;
  const StringList& entries = run.settings.dlls;
  for (int i = 0; i < entries.count(); ++i) {
    WriteEntry(report, entries.Get(i));
    // A library that takes the program down with it stands in the report as the last one.
    report.Flush();
    char version[kVersionTextSize];
    const bool found = ReadDllVersion(entries.Get(i), version);
    report.WriteText(found ? version : "dll is missing");
    report.WriteText(kLineEnd);
    any_found |= found;
  }
  return any_found;
}

}  // namespace hostscope
