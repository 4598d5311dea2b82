// The described machine: one value that answers everything the program asks of its platform.
// A test builds one in code; LoadMachine reads one from a machine folder.
//
// All texts are in the machine's code page (Windows-1252), not in UTF-8, unless said otherwise.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/host/com_threads.h"
#include "platform/host/desktop.h"
#include "platform/host/disks.h"
#include "platform/host/display.h"
#include "platform/host/dll_version.h"
#include "platform/host/faults.h"
#include "platform/host/file_system.h"
#include "platform/host/handles.h"
#include "platform/host/hardware.h"
#include "platform/host/libraries.h"
#include "platform/host/mail.h"
#include "platform/host/multimedia.h"
#include "platform/host/network.h"
#include "platform/host/plug_ins.h"
#include "platform/host/printers.h"
#include "platform/host/processes.h"
#include "platform/host/registry.h"
#include "platform/host/windows_types.h"

namespace host {

// What GetVersionExA answers. The defaults describe nothing: a machine states its own.
struct WindowsVersion {
  DWORD major = 5;
  DWORD minor = 1;
  DWORD build = 2600;
  DWORD platform_id = 2;
  std::string service_pack_text;  // szCSDVersion
  BYTE product_type = 1;
  WORD service_pack_major = 0;
  WORD service_pack_minor = 0;
  WORD suite_mask = 0;
  bool extended_record = true;  // the 156-byte record is accepted (NT 4.0 SP6, Windows 2000 and on)
};

struct LocalTime {
  WORD year = 2002;
  WORD month = 3;
  WORD day_of_week = 4;
  WORD day = 7;
  WORD hour = 9;
  WORD minute = 5;
  WORD second = 0;
  WORD milliseconds = 0;
};

struct User {
  std::string name;     // GetUserNameA; empty: nobody is logged on
  std::string account;  // of the process token; empty: the account has no name
  std::string domain;   // of that account
  // Account of the thread's own token, when it has one: "NAME" of the same domain or
  // "DOMAIN\\NAME".
  std::optional<std::string> imitated;
  // Security identifier of the account. That of the imitated account ends in a number one higher.
  std::string sid = "S-1-5-21-1482476501-1644491937-682003330-1003";
  // Key of HKEY_USERS that is HKEY_CURRENT_USER. Read from machine.ini; a machine made in code
  // calls Registry::SetCurrentUser, or leaves it at ".DEFAULT".
  std::optional<std::string> registry_key;
};

struct Locale {
  std::optional<std::string> language;          // LOCALE_SLANGUAGE, in the user's language
  std::optional<std::string> english_language;  // LOCALE_SENGLANGUAGE
};

struct Machine {
  Machine();
  ~Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  bool IsNt() const { return version.platform_id == 2; }

  WindowsVersion version;
  LocalTime local_time;
  DWORD tick_count = 0;
  std::string computer_name;
  User user;
  Locale locale;
  std::string windows_folder;  // "C:\WINDOWS"
  std::string system_folder;
  std::string temp_folder;  // with its final backslash, as GetTempPathA answers
  std::map<int, std::string>
      special_folders;  // CSIDL number to path; absent: the shell cannot give it

  std::map<std::string, std::string, NoCaseLess> environment;  // of the program
  UINT error_mode = 0;                                         // SetErrorMode

  std::string command_line;  // GetCommandLineA
  std::string module_path;   // GetModuleFileNameA of the program itself

  Hardware hardware;
  Registry registry;
  FileSystem files;
  Libraries libraries;
  PlugIns plug_ins;
  std::vector<DllVersionAnswer> dll_versions;  // by StateDllVersion
  Desktop desktop;
  Display display;
  DirectX direct_x;
  ComThreads com_threads;
  Joysticks joysticks;
  Multimedia multimedia;
  Network network;
  Disks disks;
  Printers printers;
  Processes processes;
  HandleTable handles;
  Faults faults;
  // Gets what OutputDebugStringA hands on, on the calling thread; empty: nobody listens.
  std::function<void(const std::string&)> debugger;
  std::vector<std::string> opened_targets;  // what ShellExecuteA was asked to open, in order
  std::vector<SentMail> mail;               // what MAPISendMail was handed, in order
};

// The machine that the layer's functions answer for. One per process at a time; a test replaces it.
Machine& CurrentMachine();
// Makes the machine the current one until the object goes; they nest.
class UseMachine {
 public:
  explicit UseMachine(Machine& machine);
  ~UseMachine();
  UseMachine(const UseMachine&) = delete;
  UseMachine& operator=(const UseMachine&) = delete;

 private:
  Machine* previous_;
};

}  // namespace host
