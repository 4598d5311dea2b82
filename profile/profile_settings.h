// Everything that a profile says.
#pragma once

#include <cstdint>

#include "util/string_list.h"

namespace hostscope {

// Sizes of the fixed texts, terminator included.
inline constexpr std::size_t kSignSize = 256;
inline constexpr std::size_t kShortTextSize = 260;
inline constexpr std::size_t kLongTextSize = 1024;

// One number per integer key of the catalogue (0 is off, any other value on, unless the key says
// otherwise), the five list sections, and the texts. It lives as long as the process.
struct ProfileSettings {
  // GENERAL
  std::int32_t output_folder = 0;
  char report_file_name[kShortTextSize] = {};
  std::int32_t create_message_box = 0;
  std::int32_t message_buttons = 0;
  char message[kLongTextSize] = {};

  // SYSTEM
  std::int32_t windows_version = 0;
  std::int32_t working_time = 0;
  std::int32_t computer_name = 0;
  std::int32_t user_name = 0;
  std::int32_t user_locale = 0;
  std::int32_t windows_folder = 0;
  std::int32_t system_folder = 0;
  std::int32_t temp_folder = 0;
  std::int32_t bios_version = 0;
  std::int32_t processors_count = 0;
  std::int32_t processor_name = 0;
  std::int32_t processor_speed = 0;
  std::int32_t coprocessor = 0;
  std::int32_t mmx = 0;
  std::int32_t three_d_now = 0;
  std::int32_t extended_three_d_now = 0;
  std::int32_t sse = 0;
  std::int32_t sse2 = 0;
  std::int32_t memory_usage = 0;
  std::int32_t physical_memory = 0;
  std::int32_t page_files = 0;
  std::int32_t free_system_resources = 0;
  std::int32_t free_gdi_resources = 0;
  std::int32_t free_user_resources = 0;

  // MULTIMEDIA
  std::int32_t cdroms = 0;
  std::int32_t media_devices = 0;
  std::int32_t audio_codecs = 0;
  std::int32_t video_codecs = 0;
  std::int32_t wave_in = 0;
  std::int32_t wave_out = 0;
  std::int32_t midi_in = 0;
  std::int32_t midi_out = 0;

  // DISPLAY
  std::int32_t monitors = 0;
  std::int32_t video_adapters = 0;
  std::int32_t current_resolution = 0;
  std::int32_t max_resolution = 0;
  std::int32_t current_bits_pixel = 0;
  std::int32_t max_bits_pixel = 0;
  std::int32_t large_font = 0;

  // DIRECTX
  std::int32_t directx_version = 0;
  std::int32_t three_d_acceleration = 0;

  // INPUT
  std::int32_t mouse = 0;
  std::int32_t keyboard = 0;
  std::int32_t joysticks = 0;

  // NETWORK
  std::int32_t winsock_info = 0;
  std::int32_t domain_name = 0;
  std::int32_t host_name = 0;
  std::int32_t aliases = 0;
  std::int32_t ip_addresses = 0;
  std::int32_t net_cards = 0;
  std::int32_t net_protocols = 0;  // read, and switches nothing
  std::int32_t net_clients = 0;
  std::int32_t net_services = 0;
  std::int32_t default_email_client = 0;

  // COMMUNICATION, PORT
  std::int32_t modems = 0;
  std::int32_t ports = 0;

  // DISK CONTROLLER
  std::int32_t fdc = 0;
  std::int32_t hdc = 0;
  std::int32_t scsi = 0;

  // DISK DRIVE
  std::int32_t disk_drives = 0;
  std::int32_t total_space = 0;
  std::int32_t free_space = 0;
  std::int32_t available_free_space = 0;
  std::int32_t label = 0;
  std::int32_t file_system_type = 0;
  std::int32_t file_system_flags = 0;

  // PRINTER
  std::int32_t default_printer = 0;
  std::int32_t default_local = 0;
  std::int32_t default_shared = 0;
  std::int32_t printers = 0;

  // PROCESS, USB
  std::int32_t processes = 0;
  std::int32_t usb_controllers = 0;

  // The list sections. The report worker creates and fills them, the entry point destroys them.
  StringList dlls;
  StringList registry_keys;
  StringList folders;  // the scan of SCAN KEYS appends to it
  StringList scan_keys;
  StringList custom_dlls;

  // POST-RUN
  std::int32_t email = 0;  // the dialog's check box may change it
  std::int32_t email_check_box = 0;
  std::int32_t open = 0;
  char recipient_address[kShortTextSize] = {};
  char recipient_name[kShortTextSize] = {};
  char cc[kLongTextSize] = {};
  char bcc[kLongTextSize] = {};
  char subject[kShortTextSize] = {};
  char email_body[kLongTextSize] = {};
};

}  // namespace hostscope
