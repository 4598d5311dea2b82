#include "profile/catalogue.h"

#include "util/text.h"

namespace hostscope {
namespace {

using Settings = ProfileSettings;
using Number = std::int32_t ProfileSettings::*;

template <auto kField>
std::span<char> TextOf(Settings& settings) {
  return settings.*kField;
}

// An integer key that switches an item of its section.
constexpr CatalogueRow Switch(const char* section, const char* key, Number number) {
  return {.section = section,
          .key = key,
          .method = ReadMethod::kInteger,
          .moment = ReadMoment::kWorker,
          .number = number,
          .switches_section = true};
}

constexpr CatalogueRow Integer(const char* section, const char* key, ReadMoment moment,
                               Number number, std::int32_t default_number = 0) {
  return {.section = section,
          .key = key,
          .method = ReadMethod::kInteger,
          .moment = moment,
          .number = number,
          .default_number = default_number};
}

template <auto kField>
constexpr CatalogueRow Text(const char* section, const char* key, ReadMoment moment,
                            const char* default_text = "") {
  return {.section = section,
          .key = key,
          .method = ReadMethod::kString,
          .moment = moment,
          .text = TextOf<kField>,
          .default_text = default_text};
}

template <auto kField>
constexpr CatalogueRow SecondName(const char* section, const char* key) {
  CatalogueRow row = Text<kField>(section, key, ReadMoment::kWorker);
  row.only_when_empty = true;
  return row;
}

constexpr CatalogueRow List(const char* section, StringList Settings::*list) {
  return {.section = section,
          .key = nullptr,
          .method = ReadMethod::kList,
          .moment = ReadMoment::kWorker,
          .list = list};
}

template <auto kField>
constexpr CatalogueRow FreeText(const char* section, ReadMoment moment) {
  return {.section = section,
          .key = nullptr,
          .method = ReadMethod::kFreeText,
          .moment = moment,
          .text = TextOf<kField>};
}

constexpr CatalogueRow kCatalogue[] = {
    {.section = "GENERAL",
     .key = "Sign",
     .method = ReadMethod::kString,
     .moment = ReadMoment::kSearch},
    Integer("GENERAL", "OutputFolder", ReadMoment::kStartUp, &Settings::output_folder),
    Text<&Settings::report_file_name>("GENERAL", "ReportFileName", ReadMoment::kStartUp,
                                      "hscope.txt"),
    Integer("GENERAL", "CreateMessageBox", ReadMoment::kStartUp, &Settings::create_message_box),
    FreeText<&Settings::message>("MESSAGE", ReadMoment::kMessage),
    Integer("GENERAL", "MessageButtons", ReadMoment::kMessage, &Settings::message_buttons),

    Switch("SYSTEM", "WindowsVersion", &Settings::windows_version),
    Switch("SYSTEM", "WorkingTime", &Settings::working_time),
    Switch("SYSTEM", "ComputerName", &Settings::computer_name),
    Switch("SYSTEM", "UserName", &Settings::user_name),
    Switch("SYSTEM", "UserLocale", &Settings::user_locale),
    Switch("SYSTEM", "WindowsFolder", &Settings::windows_folder),
    Switch("SYSTEM", "SystemFolder", &Settings::system_folder),
    Switch("SYSTEM", "TempFolder", &Settings::temp_folder),
    Switch("SYSTEM", "BIOSVersion", &Settings::bios_version),
    Switch("SYSTEM", "ProcessorsCount", &Settings::processors_count),
    Switch("SYSTEM", "ProcessorName", &Settings::processor_name),
    Switch("SYSTEM", "ProcessorSpeed", &Settings::processor_speed),
    Switch("SYSTEM", "CoProcessor", &Settings::coprocessor),
    Switch("SYSTEM", "MMX", &Settings::mmx),
    Switch("SYSTEM", "3DNow", &Settings::three_d_now),
    Switch("SYSTEM", "Extended3DNow", &Settings::extended_three_d_now),
    Switch("SYSTEM", "SSE", &Settings::sse),
    Switch("SYSTEM", "SSE2", &Settings::sse2),
    Switch("SYSTEM", "MemoryUsage", &Settings::memory_usage),
    Switch("SYSTEM", "PhysicalMemory", &Settings::physical_memory),
    Switch("SYSTEM", "Pagefiles", &Settings::page_files),
    Switch("SYSTEM", "FreeSystemResources", &Settings::free_system_resources),
    Switch("SYSTEM", "FreeGDIResources", &Settings::free_gdi_resources),
    Switch("SYSTEM", "FreeUserResources", &Settings::free_user_resources),

    Switch("MULTIMEDIA", "CDROMs", &Settings::cdroms),
    Switch("MULTIMEDIA", "MediaDevices", &Settings::media_devices),
    Switch("MULTIMEDIA", "AudioCodecs", &Settings::audio_codecs),
    Switch("MULTIMEDIA", "VideoCodecs", &Settings::video_codecs),
    Switch("MULTIMEDIA", "WaveIn", &Settings::wave_in),
    Switch("MULTIMEDIA", "WaveOut", &Settings::wave_out),
    Switch("MULTIMEDIA", "MIDIIn", &Settings::midi_in),
    Switch("MULTIMEDIA", "MIDIOut", &Settings::midi_out),

    Switch("DISPLAY", "Monitors", &Settings::monitors),
    Switch("DISPLAY", "VideoAdapters", &Settings::video_adapters),
    Switch("DISPLAY", "CurrentResolusion", &Settings::current_resolution),
    Switch("DISPLAY", "MaxResolusion", &Settings::max_resolution),
    Switch("DISPLAY", "CurrentBitsPixel", &Settings::current_bits_pixel),
    Switch("DISPLAY", "MaxBitsPixel", &Settings::max_bits_pixel),
    Switch("DISPLAY", "LargeFont", &Settings::large_font),

    Switch("DIRECTX", "Version", &Settings::directx_version),
    Switch("DIRECTX", "3DAcceleration", &Settings::three_d_acceleration),

    Switch("INPUT", "Mouse", &Settings::mouse),
    Switch("INPUT", "Keyboard", &Settings::keyboard),
    Switch("INPUT", "Joysticks", &Settings::joysticks),

    Switch("NETWORK", "WinsockInfo", &Settings::winsock_info),
    Switch("NETWORK", "DomainName", &Settings::domain_name),
    Switch("NETWORK", "HostName", &Settings::host_name),
    Switch("NETWORK", "Aliases", &Settings::aliases),
    Switch("NETWORK", "IPAddresses", &Settings::ip_addresses),
    Switch("NETWORK", "NetCards", &Settings::net_cards),
    Integer("NETWORK", "NetProtocols", ReadMoment::kWorker, &Settings::net_protocols),
    Switch("NETWORK", "NetClients", &Settings::net_clients),
    Switch("NETWORK", "NetServices", &Settings::net_services),
    Switch("NETWORK", "DefaultEmailClient", &Settings::default_email_client),

    Switch("COMMUNICATION", "Modems", &Settings::modems),

    Switch("PORT", "Ports", &Settings::ports),

    Switch("DISK CONTROLLER", "FDC", &Settings::fdc),
    Switch("DISK CONTROLLER", "HDC", &Settings::hdc),
    Switch("DISK CONTROLLER", "SCSI", &Settings::scsi),

    Switch("DISK DRIVE", "DiskDrives", &Settings::disk_drives),
    Switch("DISK DRIVE", "TotalSpace", &Settings::total_space),
    Switch("DISK DRIVE", "FreeSpace", &Settings::free_space),
    Switch("DISK DRIVE", "AvailableFreeSpace", &Settings::available_free_space),
    Switch("DISK DRIVE", "Label", &Settings::label),
    Switch("DISK DRIVE", "FileSystemType", &Settings::file_system_type),
    Switch("DISK DRIVE", "FileSystemFlags", &Settings::file_system_flags),

    Switch("PRINTER", "Default", &Settings::default_printer),
    Switch("PRINTER", "DefaultLocal", &Settings::default_local),
    Switch("PRINTER", "DefaultShared", &Settings::default_shared),
    Switch("PRINTER", "Printers", &Settings::printers),

    Switch("PROCESS", "Processes", &Settings::processes),

    Switch("USB", "Controllers", &Settings::usb_controllers),

    List("DLLS", &Settings::dlls),
    List("REGISTRY KEYS", &Settings::registry_keys),
    List("FOLDERS", &Settings::folders),
    List("SCAN KEYS", &Settings::scan_keys),
    List("CUSTOM DLLS", &Settings::custom_dlls),

    Integer("POST-RUN", "Email", ReadMoment::kDialog, &Settings::email),
    Integer("POST-RUN", "EmailCheckBox", ReadMoment::kDialog, &Settings::email_check_box, 1),
    Integer("POST-RUN", "Open", ReadMoment::kWorker, &Settings::open),
    Text<&Settings::recipient_address>("POST-RUN", "To", ReadMoment::kWorker),
    SecondName<&Settings::recipient_address>("POST-RUN", "Address"),
    Text<&Settings::recipient_name>("POST-RUN", "Name", ReadMoment::kWorker),
    Text<&Settings::cc>("POST-RUN", "CC", ReadMoment::kWorker),
    Text<&Settings::bcc>("POST-RUN", "BCC", ReadMoment::kWorker),
    Text<&Settings::subject>("POST-RUN", "Subject", ReadMoment::kWorker),
    FreeText<&Settings::email_body>("EMAIL TEXT", ReadMoment::kWorker),
};

}  // namespace

std::span<const CatalogueRow> Catalogue() {
  return kCatalogue;
}

void CreateLists(ProfileSettings& settings) {
  for (const CatalogueRow& row : kCatalogue) {
    if (row.list != nullptr) (settings.*row.list).Create();
  }
}

void DestroyLists(ProfileSettings& settings) {
  for (const CatalogueRow& row : kCatalogue) {
    if (row.list != nullptr) (settings.*row.list).Destroy();
  }
}

bool AnySwitchOn(const ProfileSettings& settings, const char* section) {
  for (const CatalogueRow& row : kCatalogue) {
    if (row.switches_section && SameText(row.section, section) && settings.*row.number != 0)
      return true;
  }
  return false;
}

}  // namespace hostscope
