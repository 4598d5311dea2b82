#include "report/report_worker.h"

#include "delivery/open_report.h"
#include "profile/read_profile.h"
#include "report/section_table.h"
#include "util/error_mode.h"
#include "util/handles.h"
#include "util/heap.h"
#include "util/paths.h"

namespace hostscope {
namespace {

bool IsSectionOn(const Section& section, const ProfileSettings& settings) {
  if (section.list != nullptr) return (settings.*section.list).count() > 0;
  return AnySwitchOn(settings, section.profile_section);
}

void RunSection(const Section& section, ItemRun& run) {
  const bool on = IsSectionOn(section, run.settings);
  const bool has_banner = on && section.banner != nullptr;
  if (has_banner) run.report.WriteBanner(section.banner);
  if (has_banner || section.always_empty_line) run.report.WriteText(kLineEnd);
  for (const Item& item : section.items) {
    if (on || item.step != nullptr) RunItem(item, run);
  }
}

void WriteHeader(ReportWriter& report) {
  char date[kReportDateSize];
  FormatReportDate(date);
  report.WriteFormatted("Report generated on %s\r\n", date);
}

// Between the creation of the report file and its closing.
void WriteReport(const RunState& state, ReportWriter& report, ProfileSettings& settings,
                 ProgressLines& progress, HeapBuffer& work) {
  // Probes touch drives without a disk and libraries that are broken.
  const ErrorMode quiet(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  ProbeContext context;
  WriteHeader(report);
  ItemRun run{state.program_folder.c_str(), settings, context, report, progress,
              {work.data(), work.size()}};
  for (const Section& section : SectionTable())
    RunSection(section, run);
  work.Release();
  report.Close();
}

// Null when the report has been written, else the progress line that says why not.
const char* MakeReport(const RunState& state, ProfileSettings& settings, ProgressLines& progress) {
  if (!FileHandle::OpenForReading(state.profile_path.c_str()).open())
    return "Can not open ini file!";
  HeapBuffer work(kWorkAreaSize);
  if (!work.present()) return "Not enough memory!";
  ReadProfile(state.profile_path.c_str(), ReadMoment::kWorker, settings,
              {work.data(), work.size()});
  ReportWriter report(state.report_path.c_str());
  if (!report.open()) return "Can not open output file!";
  WriteReport(state, report, settings, progress, work);
  return nullptr;
}

}  // namespace

void ReportWorker(RunState& state, ProfileSettings& settings, ProgressLines& progress) {
  CreateLists(settings);
  EnterFolder(state.program_folder.c_str());
  const char* const obstacle = MakeReport(state, settings, progress);
  if (obstacle != nullptr) {
    progress.AddProgressLine(obstacle);
    return;
  }
  // The report is closed: whoever opens it finds all of it.
  if (settings.open != 0) OpenReport(state.report_path.c_str());
  state.run_complete = true;
}

}  // namespace hostscope
