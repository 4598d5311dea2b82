// What a row of the section table is made of.
#pragma once

#include <array>
#include <span>

#include "profile/profile_settings.h"
#include "report/probe_context.h"
#include "report/progress_lines.h"
#include "report/report_writer.h"

namespace hostscope {

// What an item may work with. `work` is the one work area of the run, used by one item at a time.
struct ItemRun {
  // Where the program file lies; the current folder of the whole run.
  const char* program_folder;
  ProfileSettings& settings;
  ProbeContext& context;
  ReportWriter& report;
  ProgressLines& progress;
  std::span<char> work;
};

using Switch = std::int32_t ProfileSettings::*;

// The switches of an item, of which any one turns it on.
template <Switch... kSwitches>
inline constexpr std::array<Switch, sizeof...(kSwitches)> kAnyOf{kSwitches...};

// One row of a section. Exactly one of its three functions is set.
struct Item {
  // Added to the progress list when the item starts, then replaced by the label with its status
  // word. Null for an item that has no line there, or shows its own.
  const char* progress_label = nullptr;
  const char* report_label = nullptr;  // of a single value
  std::span<const Switch> switches = {};

  // A single value: fills `text` and answers true, or answers false and the item has failed.
  bool (*collect_value)(ProbeContext& context, std::span<char> text) = nullptr;
  // An item that writes its own lines; false when it has failed.
  bool (*write_lines)(ItemRun& run) = nullptr;
  // A step that happens whatever the switches say, with no progress line.
  void (*step)(ItemRun& run) = nullptr;
};

struct Section {
  const char* banner = nullptr;
  // What turns the section on: any switch of a profile section, or a list that is not empty.
  const char* profile_section = nullptr;
  StringList ProfileSettings::*list = nullptr;
  // The empty line after the banner is written even when the banner is not.
  bool always_empty_line = false;
  std::span<const Item> items = {};
};

// Runs one item: skipped when none of its switches is on; announced in the progress list,
// collected, written, and marked "Ok" or "Failed". Whatever was written before it, and its label,
// is in the file before the item collects anything, so that a report cut short shows which item it
// was in.
void RunItem(const Item& item, ItemRun& run);

}  // namespace hostscope
