#include "tests/contract/contract_machine.h"

#include <gtest/gtest.h>
#include <utime.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <optional>
#include <vector>

#ifndef _WIN32
#include <unistd.h>

#include "platform/host/machine.h"
#endif

namespace contract {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kDialogStyle =
    WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | DS_SETFONT | DS_3DLOOK;
constexpr DWORD kDialogExtendedStyle = WS_EX_CONTROLPARENT;
constexpr char kDialogCaption[] = "Contract";
constexpr char kFontFace[] = "MS Sans Serif";
constexpr int kFontPoints = 8;
constexpr int kDialogWidth = 160;
constexpr int kDialogHeight = 160;
constexpr int kControlHeight = 30;

// The folder's name on disk: the same thing on both sides but for the temporary folder it is in.
fs::path NewFolder() {
  static std::atomic<int> number{0};
#ifdef _WIN32
  const unsigned process = GetCurrentProcessId();
#else
  const unsigned process = static_cast<unsigned>(getpid());
#endif
  const fs::path folder = fs::temp_directory_path() /
                          ("contract-" + std::to_string(process) + "-" + std::to_string(++number));
  fs::create_directories(folder);
  return folder;
}

}  // namespace

void ExpectAnswer(const std::string& row, const std::string& expected, const std::string& came,
                  const KnownDifference& known) {
  if (known.platform == ThisPlatform()) {
    EXPECT_NE(expected, came) << row << "\n  healed, take the mark away: " << known.reason;
  } else {
    EXPECT_EQ(expected, came) << row;
  }
}

void ExpectAnswer(const std::string& row, long long expected, long long came,
                  const KnownDifference& known) {
  ExpectAnswer(row, std::to_string(expected), std::to_string(came), known);
}

std::string Outcome(bool succeeded) {
  return succeeded ? "yes" : std::to_string(GetLastError());
}

std::string Visible(std::string_view bytes) {
  std::string shown;
  for (const char byte : bytes) {
    const unsigned char value = static_cast<unsigned char>(byte);
    if (value == 0) {
      shown += '|';
    } else if (value < 0x20 || value > 0x7E) {
      std::array<char, 5> escape{};
      std::snprintf(escape.data(), escape.size(), "\\x%02X", value);
      shown += escape.data();
    } else {
      shown += byte;
    }
  }
  return shown;
}

#ifdef _WIN32

Platform ThisPlatform() {
  static const bool wine =
      GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
  return wine ? Platform::kWine : Platform::kWindows;
}

struct Place::Parts {
  fs::path disk = NewFolder();
  std::string folder = disk.string();
  std::string key = "Software\\" + disk.filename().string();

  std::string Subkey(std::string_view subkey) const {
    return subkey.empty() ? key : key + "\\" + std::string(subkey);
  }
  static HKEY Create(HKEY root, const std::string& path) {
    HKEY made = nullptr;
    EXPECT_EQ(ERROR_SUCCESS, RegCreateKeyExA(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                             nullptr, &made, nullptr));
    return made;
  }
  HKEY Create(std::string_view subkey) const { return Create(HKEY_CURRENT_USER, Subkey(subkey)); }

  std::vector<std::string> machine_keys;
  std::optional<std::string> default_device;  // as it was
};

namespace {

// RegDeleteKeyA takes no key that has subkeys.
void DeleteTree(HKEY root, const std::string& key) {
  HKEY open = nullptr;
  if (RegOpenKeyExA(root, key.c_str(), 0, KEY_ALL_ACCESS, &open) != ERROR_SUCCESS) return;
  std::array<char, 256> name{};
  while (RegEnumKeyA(open, 0, name.data(), name.size()) == ERROR_SUCCESS) {
    DeleteTree(root, key + "\\" + name.data());
  }
  RegCloseKey(open);
  RegDeleteKeyA(root, key.c_str());
}

}  // namespace

Place::Place() : parts_(std::make_unique<Parts>()) {
  EXPECT_TRUE(SetCurrentDirectoryA(folder().c_str()));
  MakeKey("");
}

Place::~Place() {
  DeleteTree(HKEY_CURRENT_USER, parts_->key);
  for (const std::string& machine_key : parts_->machine_keys)
    DeleteTree(HKEY_LOCAL_MACHINE, machine_key);
  if (parts_->default_device)
    WriteProfileStringA("windows", "device", parts_->default_device->c_str());
  SetCurrentDirectoryA(fs::temp_directory_path().string().c_str());
  std::error_code ignored;
  fs::remove_all(parts_->disk, ignored);
}

void Place::MakeKey(std::string_view subkey) {
  RegCloseKey(parts_->Create(subkey));
}

void Place::SetValue(std::string_view subkey, std::string_view name, DWORD type,
                     std::string_view data) {
  const HKEY made = parts_->Create(subkey);
  // The platform counts a zero that stands right behind a text as part of it.
  const std::string bytes = std::string(data) + "~";
  EXPECT_EQ(ERROR_SUCCESS,
            RegSetValueExA(made, std::string(name).c_str(), 0, type,
                           reinterpret_cast<const BYTE*>(bytes.data()), data.size()));
  RegCloseKey(made);
}

void Place::OwnMachineKey(std::string_view key) {
  parts_->machine_keys.emplace_back(key);
  RegCloseKey(Parts::Create(HKEY_LOCAL_MACHINE, std::string(key)));
}

void Place::SetMachineText(std::string_view key, std::string_view name, std::string_view text) {
  const HKEY made = Parts::Create(HKEY_LOCAL_MACHINE, std::string(key));
  EXPECT_EQ(ERROR_SUCCESS, RegSetValueExA(made, std::string(name).c_str(), 0, REG_SZ,
                                          reinterpret_cast<const BYTE*>(std::string(text).c_str()),
                                          text.size() + 1));
  RegCloseKey(made);
}

void Place::InstallPrinter(const std::string& name, const std::string& port, DWORD attributes) {
  const std::string key = "System\\CurrentControlSet\\Control\\Print\\Printers\\" + name;
  OwnMachineKey(key);
  SetMachineText(key, "Name", name);
  SetMachineText(key, "Port", port);
  SetMachineText(key, "Printer Driver", "Driver");
  // Nothing is printed, but a printer without these two is not opened.
  SetMachineText(key, "Print Processor", "winprint");
  SetMachineText(key, "Datatype", "RAW");
  EXPECT_EQ(ERROR_SUCCESS, RegSetKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), "Attributes", REG_DWORD,
                                           &attributes, sizeof attributes));
}

void Place::SetDefaultDevice(const std::string& setting) {
  if (!parts_->default_device) {
    char old[MAX_PATH] = {};
    GetProfileStringA("windows", "device", "", old, sizeof old);
    parts_->default_device = old;
  }
  EXPECT_TRUE(WriteProfileStringA("windows", "device", setting.c_str()));
}

namespace {

// The dialog template as the platform lays it out: 16-bit words, items on 32-bit boundaries.
class TemplateWriter {
 public:
  void Number(DWORD number) {
    words_.push_back(LOWORD(number));
    words_.push_back(HIWORD(number));
  }
  void Word(int word) { words_.push_back(static_cast<WORD>(word)); }
  void Text(const char* text) {
    for (; *text != 0; ++text)
      Word(static_cast<unsigned char>(*text));
    Word(0);
  }
  void Place(int x, int y, int width, int height) {
    for (const int number : {x, y, width, height})
      Word(number);
  }
  void BeginItem() {
    if (words_.size() % 2 != 0) Word(0);
  }
  LPCDLGTEMPLATEA get() const { return reinterpret_cast<LPCDLGTEMPLATEA>(words_.data()); }

 private:
  std::vector<WORD> words_;
};

}  // namespace

INT_PTR Place::RunDialog(std::span<const Control> controls, DLGPROC procedure, LPARAM parameter) {
  TemplateWriter dialog;
  dialog.Number(kDialogStyle);
  dialog.Number(kDialogExtendedStyle);
  dialog.Word(static_cast<int>(controls.size()));
  dialog.Place(0, 0, kDialogWidth, kDialogHeight);
  dialog.Word(0);  // no menu
  dialog.Word(0);  // the dialog's own class
  dialog.Text(kDialogCaption);
  dialog.Word(kFontPoints);
  dialog.Text(kFontFace);
  int y = 0;
  for (const Control& control : controls) {
    dialog.BeginItem();
    dialog.Number(control.style);
    dialog.Number(control.extended_style);
    dialog.Place(0, y, kDialogWidth, kControlHeight);
    dialog.Word(control.id);
    dialog.Text(control.window_class);
    dialog.Text(control.text);
    dialog.Word(0);  // no creation data
    y += kControlHeight;
  }
  return DialogBoxIndirectParamA(GetModuleHandleA(nullptr), dialog.get(), nullptr, procedure,
                                 parameter);
}

#else

Platform ThisPlatform() {
  return Platform::kHostLayer;
}

struct Place::Parts {
  Parts() : use(machine) {}

  fs::path disk = NewFolder();
  std::string folder = disk.string();
  std::string key = "Software\\" + disk.filename().string();
  host::Machine machine;
  host::UseMachine use;

  std::string RegistryPath(std::string_view subkey) const {
    return "HKCU\\" + key + "\\" + std::string(subkey);
  }
};

namespace {

// What every Windows states of itself.
void Describe(host::Machine& machine) {
  machine.computer_name = "CONTRACT";
  machine.user.name = "Tester";
  machine.user.account = "Tester";
  machine.user.domain = "CONTRACT";
  machine.locale.language = "English (United States)";
  machine.locale.english_language = "English";
  machine.windows_folder = "C:\\WINDOWS";
  machine.system_folder = "C:\\WINDOWS\\system32";
  machine.temp_folder = "C:\\TEMP\\";
  machine.environment = {{"windir", machine.windows_folder}};
  machine.special_folders = {{CSIDL_PERSONAL, "C:\\Documents"},
                             {CSIDL_DESKTOPDIRECTORY, "C:\\Desktop"}};
  machine.hardware.memory = {6ULL << 30, 5ULL << 30, std::nullopt};
  machine.module_path = "C:\\Program Files\\contract_tests.exe";
  machine.command_line = "\"" + machine.module_path + "\"";
  host::Library spare;
  spare.name = kSpareLibrary;
  spare.exports[kSpareFunction] = host::Export(&Describe);
  machine.libraries.Add(spare);
  machine.network = {.version = 0x0202,
                     .description = "WinSock 2.0",
                     .status = "Running",
                     .host_name = "contract",
                     .hosts = {{"contract", {{127, 0, 0, 1}}, {}}}};
  machine.disks.letters['C'] = {.volume =
                                    host::Volume{"NTFS", 0x1F, 8, 512, 300000, 200000, 200000}};
}

}  // namespace

Place::Place() : parts_(std::make_unique<Parts>()) {
  Describe(parts_->machine);
  EXPECT_TRUE(SetCurrentDirectoryA(folder().c_str()));
  MakeKey("");
}

Place::~Place() {
  std::error_code ignored;
  fs::remove_all(parts_->disk, ignored);
}

void Place::MakeKey(std::string_view subkey) {
  parts_->machine.registry.MakeKey(parts_->RegistryPath(subkey));
}

void Place::SetValue(std::string_view subkey, std::string_view name, DWORD type,
                     std::string_view data) {
  parts_->machine.registry.SetValue(parts_->RegistryPath(subkey), name, type, data);
}

void Place::OwnMachineKey(std::string_view key) {
  parts_->machine.registry.MakeKey("HKLM\\" + std::string(key));
}

void Place::SetMachineText(std::string_view key, std::string_view name, std::string_view text) {
  parts_->machine.registry.SetText("HKLM\\" + std::string(key), name, text);
}

void Place::InstallPrinter(const std::string& name, const std::string& port, DWORD attributes) {
  parts_->machine.printers.installed.push_back({name, port, {}, {}, attributes, 0});
}

void Place::SetDefaultDevice(const std::string& setting) {
  parts_->machine.registry.SetText("HKCU\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows",
                                   "Device", setting);
}

INT_PTR Place::RunDialog(std::span<const Control> controls, DLGPROC procedure, LPARAM parameter) {
  constexpr int kDialog = 500;
  host::DialogTemplate dialog;
  dialog.width = kDialogWidth;
  dialog.height = kDialogHeight;
  dialog.style = kDialogStyle;
  dialog.extended_style = kDialogExtendedStyle;
  dialog.caption = kDialogCaption;
  dialog.font_face = kFontFace;
  dialog.font_points = kFontPoints;
  for (const Control& control : controls) {
    host::DialogItem item;
    item.window_class = control.window_class;
    item.text = control.text;
    item.id = control.id;
    item.y = kControlHeight * static_cast<int>(dialog.items.size());
    item.width = kDialogWidth;
    item.height = kControlHeight;
    item.style = control.style;
    item.extended_style = control.extended_style;
    dialog.items.push_back(item);
  }
  parts_->machine.desktop.dialogs[kDialog] = dialog;
  return DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(kDialog), nullptr, procedure,
                         parameter);
}

#endif

const std::string& Place::folder() const {
  return parts_->folder;
}
const std::string& Place::key() const {
  return parts_->key;
}

std::string Place::Path(std::string_view name) const {
  return folder() + "\\" + std::string(name);
}

fs::path Place::OnDisk(std::string_view name) const {
  std::string portable(name);
  std::replace(portable.begin(), portable.end(), '\\', '/');
  return parts_->disk / portable;
}

void Place::MakeFile(std::string_view name, std::string_view content) const {
  std::ofstream file(OnDisk(name), std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  EXPECT_TRUE(file.flush()) << name;
}

void Place::MakeFolder(std::string_view name) const {
  EXPECT_TRUE(fs::create_directories(OnDisk(name))) << name;
}

void Place::SetTime(std::string_view name, long long time) const {
  utimbuf times{};
  times.actime = static_cast<std::time_t>(time);
  times.modtime = static_cast<std::time_t>(time);
  EXPECT_EQ(0, utime(OnDisk(name).string().c_str(), &times)) << name;
}

}  // namespace contract
