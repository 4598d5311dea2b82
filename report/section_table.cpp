#include "report/section_table.h"

#include "probes/system/folders.h"
#include "probes/system/locale.h"
#include "probes/system/user.h"
#include "probes/system/windows_version.h"
#include "probes/system/working_time.h"
#include "scans/dll_versions.h"
#include "scans/folder_tree.h"

namespace hostscope {
namespace {

using Settings = ProfileSettings;

void WriteEmptyLine(ItemRun& run) {
  run.report.WriteText(kLineEnd);
}

constexpr Item kSystemItems[] = {
    {.progress_label = "Windows version...",
     .report_label = "Operating system",
     .switches = kAnyOf<&Settings::windows_version>,
     .collect_value = FormatWindowsVersion},
    {.progress_label = "Windows working time...",
     .report_label = "Working time (d.h.m.s)",
     .switches = kAnyOf<&Settings::working_time>,
     .collect_value = FormatWorkingTime},
    {.progress_label = "Computer name...",
     .report_label = "Computer name",
     .switches = kAnyOf<&Settings::computer_name>,
     .collect_value = ReadComputerName},
    {.progress_label = "User name...",
     .report_label = "User name",
     .switches = kAnyOf<&Settings::user_name>,
     .collect_value = ReadUserName},
    {.progress_label = "User locale...",
     .report_label = "User locale",
     .switches = kAnyOf<&Settings::user_locale>,
     .collect_value = FormatUserLocale},
    {.progress_label = "Windows folder...",
     .report_label = "Windows folder",
     .switches = kAnyOf<&Settings::windows_folder>,
     .collect_value = ReadWindowsFolder},
    {.progress_label = "System folder...",
     .report_label = "System folder",
     .switches = kAnyOf<&Settings::system_folder>,
     .collect_value = ReadSystemFolder},
    {.progress_label = "Temp folder...",
     .report_label = "Temp folder",
     .switches = kAnyOf<&Settings::temp_folder>,
     .collect_value = ReadTempFolder},
};

constexpr Item kNetworkItems[] = {
    // Between the addresses and the cards, in every report.
    {.step = WriteEmptyLine},
};

constexpr Item kDllItems[] = {
    {.progress_label = "Dlls versions...", .write_lines = WriteDllVersions},
};

constexpr Item kFolderItems[] = {
    {.progress_label = "Folders...", .write_lines = WriteFolders},
};

constexpr Section kSections[] = {
    {.banner = "SYSTEM INFORMATION",
     .profile_section = "SYSTEM",
     .always_empty_line = true,
     .items = kSystemItems},
    {.banner = "MULTIMEDIA", .profile_section = "MULTIMEDIA"},
    {.banner = "DISPLAY", .profile_section = "DISPLAY"},
    {.banner = "DIRECTX", .profile_section = "DIRECTX"},
    {.banner = "INPUT", .profile_section = "INPUT"},
    {.banner = "NETWORK", .profile_section = "NETWORK", .items = kNetworkItems},
    {.banner = "COMMUNICATION", .profile_section = "COMMUNICATION"},
    {.banner = "PORTS", .profile_section = "PORT"},
    {.banner = "DISK DRIVES", .profile_section = "DISK DRIVE"},
    {.banner = "DISK CONTROLLERS", .profile_section = "DISK CONTROLLER"},
    {.banner = "USB CONTROLLERS", .profile_section = "USB"},
    {.banner = "PRINTERS", .profile_section = "PRINTER"},
    {.banner = "PROCESSES", .profile_section = "PROCESS"},
    {.banner = "DLLS VERSIONS", .list = &Settings::dlls, .items = kDllItems},
    {.banner = "REGISTRY KEYS", .list = &Settings::registry_keys},
    // The scan that appends to the folders below; it has no banner.
    {.list = &Settings::scan_keys},
    {.banner = "Folders & files", .list = &Settings::folders, .items = kFolderItems},
    {.banner = "ADDITIONAL INFORMATION", .list = &Settings::custom_dlls},
};

}  // namespace

std::span<const Section> SectionTable() {
  return kSections;
}

}  // namespace hostscope
