#include "scans/registry_dump.h"

#include "scans/key_walk.h"
#include "scans/list_entry.h"
#include "scans/registry_value.h"
#include "util/numbers.h"
#include "util/registry.h"

namespace hostscope {
namespace {

// Four blanks for each level, several levels at a time.
void WriteIndent(ReportWriter& report, unsigned level) {
  constexpr char kBlanks[] = "                                ";
  constexpr unsigned kLevels = sizeof kBlanks / 4;
  for (; level > kLevels; level -= kLevels)
    report.WriteText(kBlanks);
  report.WriteText(kBlanks + std::size_t{4} * (kLevels - level));
}

void WriteSubkeyLine(ReportWriter& report, const char* name) {
  report.WriteText("\\");
  report.WriteText(name);
  report.WriteText(kLineEnd);
}

void WriteValueLine(ReportWriter& report, const KeyWalk& walk) {
  const OwnedText text = FormatRegistryValue(walk.type(), walk.data());
  report.WriteText(walk.name()[0] == '\0' ? "(Default)" : walk.name());
  report.WriteText("=");
  report.WriteText(text.present() ? text.c_str() : "(not enough memory)");
  report.WriteText(kLineEnd);
}

// In pieces: an entry may be longer than what the platform formats at once.
void WriteHeading(ReportWriter& report, const RegistryPath& path) {
  report.WriteText(path.hive_name);
  if (path.subkey != nullptr) {
    report.WriteText("\\");
    report.WriteText(path.subkey);
  }
  report.WriteText(kLineEnd);
}

// Whether the entry's key could be opened.
bool WriteEntry(ReportWriter& report, char* entry) {
  const std::uint32_t subtree = ParseProfileNumber(CutAtLastComma(entry));
  const RegistryPath path = ParseRegistryPath(entry);
  if (path.root == nullptr) return false;
  WriteHeading(report, path);
  const RegistryKey key = RegistryKey::OpenAsWritten(path.root, path.subkey, kWalkAccess);
  if (key.open()) {
    DumpRegistryKey(report, key.get(), subtree != 0, 1);
  } else {
    report.WriteText("can not open the registry key.\r\n");
  }
  report.WriteText(kLineEnd);
  return key.open();
}

}  // namespace

void DumpRegistryKey(ReportWriter& report, HKEY key, bool subtree, unsigned level) {
  KeyWalk walk(key, subtree ? WalkReach::kSubtree : WalkReach::kSubkeyNames, level);
  for (WalkStep step = walk.Next(); step != WalkStep::kEnd; step = walk.Next()) {
    WriteIndent(report, walk.level());
    if (step == WalkStep::kSubkey) {
      WriteSubkeyLine(report, walk.name());
    } else {
      WriteValueLine(report, walk);
    }
  }
}

bool WriteRegistryKeys(ItemRun& run) {
  const StringList& entries = run.settings.registry_keys;
  bool any_opened = false;
  for (int i = 0; i < entries.count(); ++i) {
    // An entry fits into the work area, which the profile has been read by.
    CopyText(run.work.data(), run.work.size(), entries.Get(i));
    if (WriteEntry(run.report, run.work.data())) any_opened = true;
  }
  return any_opened;
}

}  // namespace hostscope
