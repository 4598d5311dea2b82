#include "scans/custom_dlls.h"

#include <cstring>

#include "scans/list_entry.h"
#include "util/library.h"
#include "util/paths.h"
#include "util/text.h"

namespace hostscope {
namespace {

// By the C convention: the caller takes the argument off the stack again. Of the result only the
// low eight bits count; whatever the function left above them is not looked at.
using PlugInFunction = unsigned char (*)(HANDLE report);

// An entry without a function's name has none: the platform is asked for real names only.
PlugInFunction FindPlugIn(const LoadedLibrary& library, const char* name) {
  if (name == nullptr || name[0] == '\0') return nullptr;
  return library.Find<PlugInFunction>(name);
}

const char* StatusOf(PlugInFunction plug_in, ReportWriter& report) {
  if (plug_in == nullptr) return "NoFunc";
  return plug_in(report.FlushedFile()) != 0 ? "Ok" : "Failed";
}

// "DLL...", with room for the status word in a line that is formatted.
void MakeLabel(const char* dll, char (&label)[kFormattedSize]) {
  constexpr char kDots[] = "...";
  constexpr std::size_t kMost = kFormattedSize - sizeof kDots - sizeof "Absent";
  CopyText(label, kMost, dll);
  std::memcpy(label + TextLength(label), kDots, sizeof kDots);
}

void RunEntry(ItemRun& run, char* entry) {
  const char* const name = CutAtLastComma(entry);
  char label[kFormattedSize];
  MakeLabel(entry, label);
  run.progress.AddProgressLine(label);
  LoadedLibrary library;
  const char* const status =
      library.Load(entry) ? StatusOf(FindPlugIn(library, name), run.report) : "Absent";
  run.progress.ReplaceWithStatus(label, status);
  library.Release();
  // The library may have made another folder current, also one that could not be loaded.
  EnterFolder(run.program_folder);
}

}  // namespace

bool RunCustomDlls(ItemRun& run) {
  run.progress.AddProgressLine("Custom dlls:");
  const StringList& entries = run.settings.custom_dlls;
  for (int i = 0; i < entries.count(); ++i) {
    // An entry fits into the work area, which the profile has been read by.
    CopyText(run.work.data(), run.work.size(), entries.Get(i));
    RunEntry(run, run.work.data());
  }
  return true;
}

}  // namespace hostscope
