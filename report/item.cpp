#include "report/item.h"

namespace hostscope {
namespace {

bool IsSwitchedOn(const Item& item, const ProfileSettings& settings) {
  if (item.switches.empty()) return true;
  for (const Switch one : item.switches) {
    if (settings.*one != 0) return true;
  }
  return false;
}

// What the list shows as done is in the file.
void ShowResult(const Item& item, ItemRun& run, bool succeeded) {
  run.report.Flush();
  run.progress.ReplaceWithStatus(item.progress_label, succeeded ? "Ok" : "Failed");
}

void RunValueItem(const Item& item, ItemRun& run) {
  run.report.BeginItem(item.report_label);
  run.work.front() = '\0';
  const bool succeeded = item.collect_value(run.context, run.work);
  if (succeeded) run.report.WriteText(run.work.data());
  ShowResult(item, run, succeeded);
  run.report.WriteText(kLineEnd);
}

void RunLinesItem(const Item& item, ItemRun& run) {
  run.report.Flush();
  const bool succeeded = item.write_lines(run);
  if (item.progress_label != nullptr) ShowResult(item, run, succeeded);
}

}  // namespace

void RunItem(const Item& item, ItemRun& run) {
  if (!IsSwitchedOn(item, run.settings)) return;
  if (item.step != nullptr) {
    run.report.Flush();
    item.step(run);
    return;
  }
  if (item.progress_label != nullptr) run.progress.AddProgressLine(item.progress_label);
  if (item.collect_value != nullptr) {
    RunValueItem(item, run);
  } else {
    RunLinesItem(item, run);
  }
}

}  // namespace hostscope
