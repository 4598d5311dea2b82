#include "report/section_table.h"

#include "probes/devices/audio_codecs.h"
#include "probes/devices/cdroms.h"
#include "probes/devices/device_list.h"
#include "probes/devices/directx.h"
#include "probes/devices/disk_drives.h"
#include "probes/devices/display.h"
#include "probes/devices/joysticks.h"
#include "probes/devices/logical_disks.h"
#include "probes/devices/midi_devices.h"
#include "probes/devices/network.h"
#include "probes/devices/printers.h"
#include "probes/devices/processes.h"
#include "probes/devices/video_codecs.h"
#include "probes/devices/wave_devices.h"
#include "probes/devices/windows_sockets.h"
#include "probes/system/bios.h"
#include "probes/system/folders.h"
#include "probes/system/free_resources.h"
#include "probes/system/locale.h"
#include "probes/system/memory.h"
#include "probes/system/page_files.h"
#include "probes/system/processor.h"
#include "probes/system/user.h"
#include "probes/system/windows_version.h"
#include "probes/system/working_time.h"
#include "scans/custom_dlls.h"
#include "scans/dll_versions.h"
#include "scans/folder_tree.h"
#include "scans/key_scan.h"
#include "scans/registry_dump.h"

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
    {.progress_label = "BIOS vesion...",
     .report_label = "BIOS vesion",
     .switches = kAnyOf<&Settings::bios_version>,
     .collect_value = ReadBiosVersion},
    {.progress_label = "Number of processors...",
     .report_label = "Number of processors",
     .switches = kAnyOf<&Settings::processors_count>,
     .collect_value = FormatProcessorCount},
    {.progress_label = "Processor name...",
     .report_label = "Processor name",
     .switches = kAnyOf<&Settings::processor_name>,
     .collect_value = ReadProcessorName},
    {.progress_label = "Processor speed...",
     .report_label = "Processor speed",
     .switches = kAnyOf<&Settings::processor_speed>,
     .collect_value = FormatProcessorSpeed},
    {.progress_label = "Coprocessor...",
     .report_label = "Coprocessor",
     .switches = kAnyOf<&Settings::coprocessor>,
     .collect_value = FormatCoprocessor},
    {.progress_label = "MMX support...",
     .report_label = "MMX support",
     .switches = kAnyOf<&Settings::mmx>,
     .collect_value = FormatMMX},
    {.progress_label = "3DNow support...",
     .report_label = "3DNow support",
     .switches = kAnyOf<&Settings::three_d_now>,
     .collect_value = Format3DNow},
    {.progress_label = "Extended 3DNow...",
     .report_label = "Extended 3DNow",
     .switches = kAnyOf<&Settings::extended_three_d_now>,
     .collect_value = FormatExtended3DNow},
    {.progress_label = "SSE support...",
     .report_label = "SSE support",
     .switches = kAnyOf<&Settings::sse>,
     .collect_value = FormatSSE},
    {.progress_label = "SSE2 support...",
     .report_label = "SSE2 support",
     .switches = kAnyOf<&Settings::sse2>,
     .collect_value = FormatSSE2},
    {.progress_label = "Memory usage...",
     .report_label = "Memory usage",
     .switches = kAnyOf<&Settings::memory_usage>,
     .collect_value = FormatMemoryUsage},
    {.progress_label = "Physical memory...",
     .report_label = "Physical memory",
     .switches = kAnyOf<&Settings::physical_memory>,
     .collect_value = FormatPhysicalMemory},
    {.progress_label = "Pagefile space...",
     .switches = kAnyOf<&Settings::page_files>,
     .write_lines = WritePageFiles},
    {.progress_label = "Free resources...",
     .switches = kAnyOf<&Settings::free_system_resources, &Settings::free_gdi_resources,
                        &Settings::free_user_resources>,
     .write_lines = WriteFreeResources},
};

constexpr Item kMultimediaItems[] = {
    {.progress_label = "CDROM...",
     .switches = kAnyOf<&Settings::cdroms>,
     .write_lines = WriteCdroms},
    {.progress_label = "Media devices...",
     .switches = kAnyOf<&Settings::media_devices>,
     .write_lines = WriteDevices<kMediaDevices>},
    {.progress_label = "Audio codecs...",
     .switches = kAnyOf<&Settings::audio_codecs>,
     .write_lines = WriteAudioCodecs},
    {.progress_label = "Video codecs...",
     .switches = kAnyOf<&Settings::video_codecs>,
     .write_lines = WriteVideoCodecs},
    {.progress_label = "Wave input...",
     .switches = kAnyOf<&Settings::wave_in>,
     .write_lines = WriteWaveInputs},
    {.progress_label = "Wave output...",
     .switches = kAnyOf<&Settings::wave_out>,
     .write_lines = WriteWaveOutputs},
    {.progress_label = "MIDI input...",
     .switches = kAnyOf<&Settings::midi_in>,
     .write_lines = WriteMidiInputs},
    {.progress_label = "MIDI output...",
     .switches = kAnyOf<&Settings::midi_out>,
     .write_lines = WriteMidiOutputs},
};

constexpr Item kDisplayItems[] = {
    {.progress_label = "Monitors...",
     .switches = kAnyOf<&Settings::monitors>,
     .write_lines = WriteDevices<kMonitors>},
    {.progress_label = "Video adapters...",
     .switches = kAnyOf<&Settings::video_adapters>,
     .write_lines = WriteDevices<kVideoAdapters>},
    {.progress_label = "Display resolution...",
     .switches = kAnyOf<&Settings::current_resolution, &Settings::max_resolution>,
     .write_lines = WriteResolution},
    {.progress_label = "Display colors...",
     .switches = kAnyOf<&Settings::current_bits_pixel, &Settings::max_bits_pixel>,
     .write_lines = WriteColors},
    {.progress_label = "Large font...",
     .report_label = "Large font",
     .switches = kAnyOf<&Settings::large_font>,
     .collect_value = FormatLargeFont},
};

constexpr Item kDirectXItems[] = {
    {.progress_label = "DirectX version...",
     .switches = kAnyOf<&Settings::directx_version>,
     .write_lines = WriteDirectXVersion},
    {.progress_label = "3D acceleration...",
     .report_label = "3D acceleration",
     .switches = kAnyOf<&Settings::three_d_acceleration>,
     .collect_value = Format3DAcceleration},
};

constexpr Item kInputItems[] = {
    {.progress_label = "Mouse...",
     .switches = kAnyOf<&Settings::mouse>,
     .write_lines = WriteDevices<kMouse>},
    {.progress_label = "Keyboard...",
     .switches = kAnyOf<&Settings::keyboard>,
     .write_lines = WriteDevices<kKeyboard>},
    {.progress_label = "Joystick...",
     .report_label = "Joystick",
     .switches = kAnyOf<&Settings::joysticks>,
     .collect_value = FormatJoysticks},
};

constexpr Item kNetworkItems[] = {
    {.step = StartSocketsForSection},
    {.progress_label = "Windows sockets...",
     .switches = kAnyOf<&Settings::winsock_info>,
     .write_lines = WriteWindowsSockets},
    {.progress_label = "Domain name...",
     .report_label = "Domain name",
     .switches = kAnyOf<&Settings::domain_name>,
     .collect_value = ReadDomainName},
    {.progress_label = "Host name...",
     .report_label = "Host name",
     .switches = kAnyOf<&Settings::host_name>,
     .collect_value = ReadHostName},
    {.progress_label = "Aliases...",
     .switches = kAnyOf<&Settings::aliases>,
     .write_lines = WriteHostAliases},
    {.progress_label = "IP addresses...",
     .switches = kAnyOf<&Settings::ip_addresses>,
     .write_lines = WriteHostAddresses},
    // Between the addresses and the cards, in every report.
    {.step = WriteEmptyLine},
    {.progress_label = "Net cards...",
     .switches = kAnyOf<&Settings::net_cards>,
     .write_lines = WriteDevices<kNetCards>},
    {.progress_label = "Net clients...",
     .switches = kAnyOf<&Settings::net_clients>,
     .write_lines = WriteNetClients},
    {.progress_label = "Net services...",
     .switches = kAnyOf<&Settings::net_services>,
     .write_lines = WriteNetServices},
    {.step = StopSocketsOfSection},
    {.progress_label = "Default email client...",
     .report_label = "Default email client",
     .switches = kAnyOf<&Settings::default_email_client>,
     .collect_value = ReadDefaultEmailClient},
};

constexpr Item kCommunicationItems[] = {
    {.progress_label = "Modems...",
     .switches = kAnyOf<&Settings::modems>,
     .write_lines = WriteDevices<kModems>},
};

constexpr Item kPortItems[] = {
    {.progress_label = "Ports...",
     .switches = kAnyOf<&Settings::ports>,
     .write_lines = WriteDevices<kPorts>},
};

constexpr Item kDiskDriveItems[] = {
    {.progress_label = "Disk drives...",
     .switches = kAnyOf<&Settings::disk_drives>,
     .write_lines = WriteDiskDrives},
    {.progress_label = "Logical disks...",
     .switches =
         kAnyOf<&Settings::total_space, &Settings::free_space, &Settings::available_free_space,
                &Settings::label, &Settings::file_system_type, &Settings::file_system_flags>,
     .write_lines = WriteLogicalDisks},
};

constexpr Item kDiskControllerItems[] = {
    {.progress_label = "FDC...",
     .switches = kAnyOf<&Settings::fdc>,
     .write_lines = WriteDevices<kFloppyControllers>},
    {.progress_label = "HDC...",
     .switches = kAnyOf<&Settings::hdc>,
     .write_lines = WriteDevices<kDiskControllers>},
    {.progress_label = "SCSI...",
     .switches = kAnyOf<&Settings::scsi>,
     .write_lines = WriteDevices<kScsiAdapters>},
};

constexpr Item kUsbItems[] = {
    {.progress_label = "USB...",
     .switches = kAnyOf<&Settings::usb_controllers>,
     .write_lines = WriteDevices<kUsbControllers>},
};

constexpr Item kPrinterItems[] = {
    {.progress_label = "Default printer...",
     .switches = kAnyOf<&Settings::default_printer>,
     .write_lines = WriteDefaultPrinter},
    {.progress_label = "Printers...",
     .switches = kAnyOf<&Settings::printers>,
     .write_lines = WritePrinters},
};

constexpr Item kProcessItems[] = {
    {.progress_label = "Processes...",
     .switches = kAnyOf<&Settings::processes>,
     .write_lines = WriteProcesses},
};

constexpr Item kRegistryItems[] = {
    {.progress_label = "Registry keys...", .write_lines = WriteRegistryKeys},
};

constexpr Item kKeyScanItems[] = {
    {.write_lines = ScanKeys},
};

constexpr Item kCustomDllItems[] = {
    {.write_lines = RunCustomDlls},
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
    {.banner = "MULTIMEDIA", .profile_section = "MULTIMEDIA", .items = kMultimediaItems},
    {.banner = "DISPLAY", .profile_section = "DISPLAY", .items = kDisplayItems},
    {.banner = "DIRECTX", .profile_section = "DIRECTX", .items = kDirectXItems},
    {.banner = "INPUT", .profile_section = "INPUT", .items = kInputItems},
    {.banner = "NETWORK", .profile_section = "NETWORK", .items = kNetworkItems},
    {.banner = "COMMUNICATION", .profile_section = "COMMUNICATION", .items = kCommunicationItems},
    {.banner = "PORTS", .profile_section = "PORT", .items = kPortItems},
    {.banner = "DISK DRIVES", .profile_section = "DISK DRIVE", .items = kDiskDriveItems},
    {.banner = "DISK CONTROLLERS",
     .profile_section = "DISK CONTROLLER",
     .items = kDiskControllerItems},
    {.banner = "USB CONTROLLERS", .profile_section = "USB", .items = kUsbItems},
    {.banner = "PRINTERS", .profile_section = "PRINTER", .items = kPrinterItems},
    {.banner = "PROCESSES", .profile_section = "PROCESS", .items = kProcessItems},
    {.banner = "DLLS VERSIONS", .list = &Settings::dlls, .items = kDllItems},
    {.banner = "REGISTRY KEYS", .list = &Settings::registry_keys, .items = kRegistryItems},
    // The scan that appends to the folders below; it has no banner.
    {.list = &Settings::scan_keys, .items = kKeyScanItems},
    {.banner = "Folders & files", .list = &Settings::folders, .items = kFolderItems},
    {.banner = "ADDITIONAL INFORMATION", .list = &Settings::custom_dlls, .items = kCustomDllItems},
};

}  // namespace

std::span<const Section> SectionTable() {
  return kSections;
}

}  // namespace hostscope
