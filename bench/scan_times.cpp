// What the registry dump, the folder tree and a list of devices of hscope.exe cost, told beside
// what the platform itself takes for the same, in one run: the system's own registry export, and a
// bare loop that makes the same platform calls and writes nothing.
//
//   HSCOPE_EXE=PATH scan_times.exe [ROUNDS]
//
// Each figure is the median of the rounds, in milliseconds; the two sides of a ratio take turns.
// Exit code 1 when a ratio is larger than it may be.
#include <windows.h>
// Needs the line above.
#include <setupapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "tests/windows/driver.h"

namespace {

constexpr char kTestKey[] = "Software\\Hostscope bench ";
constexpr DWORD kLongestRun = 300000;

double Milliseconds() {
  LARGE_INTEGER now = {};
  LARGE_INTEGER frequency = {};
  QueryPerformanceCounter(&now);
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(now.QuadPart) * 1000 / static_cast<double>(frequency.QuadPart);
}

double TimeOf(const std::function<void()>& work) {
  const double begin = Milliseconds();
  work();
  return Milliseconds() - begin;
}

void Require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "scan_times: %s\n", what);
  std::exit(1);
}

// From the start of the process until its report is finished.
double TimeOfReport(const drive::Folder& folder, const std::string& sections) {
  folder.Write("bench.ini", "[GENERAL]\r\nSign=Hostscope INI file\r\n" + sections);
  return TimeOf([&] {
    drive::Program program(folder);
    bool finished = false;
    for (DWORD waited = 0; !finished && waited < kLongestRun;
         waited += drive::kPatienceMilliseconds)
      finished = program.WaitForLine(drive::kLastLine);
    Require(finished, "the report is not finished");
  });
}

double TimeOfCommand(std::string command) {
  return TimeOf([&] {
    STARTUPINFOA start = {};
    start.cb = sizeof(start);
    PROCESS_INFORMATION process = {};
    Require(CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW,
                           nullptr, nullptr, &start, &process) != 0,
            "the system's own program does not start");
    WaitForSingleObject(process.hProcess, kLongestRun);
    DWORD code = 1;
    GetExitCodeProcess(process.hProcess, &code);
    Require(code == 0, "the system's own program failed");
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  });
}

// The calls for one file: its version, then its date and size.
void AskAboutFile(const std::string& path) {
  DWORD ignored = 0;
  if (const DWORD size = GetFileVersionInfoSizeA(path.c_str(), &ignored)) {
    std::vector<char> resource(size + 1);
    void* record = nullptr;
    UINT length = 0;
    if (GetFileVersionInfoA(path.c_str(), 0, size, resource.data()) != 0)
      VerQueryValueA(resource.data(), "\\", &record, &length);
  }
  WIN32_FIND_DATAA entry = {};
  const HANDLE search = FindFirstFileA(path.c_str(), &entry);
  if (search != INVALID_HANDLE_VALUE) FindClose(search);
  SYSTEMTIME time = {};
  FileTimeToSystemTime(&entry.ftLastWriteTime, &time);
}

// Calls `visit` with each entry of the folder.
void ListFolder(const std::string& folder,
                const std::function<void(const WIN32_FIND_DATAA&)>& visit) {
  WIN32_FIND_DATAA entry = {};
  const HANDLE search = FindFirstFileA((folder + "\\*.*").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return;
  do
    visit(entry);
  while (FindNextFileA(search, &entry) != 0);
  FindClose(search);
}

void WalkBare(const std::string& folder) {
  ListFolder(folder, [&](const WIN32_FIND_DATAA& entry) {
    const std::string name = entry.cFileName;
    const DWORD entered = entry.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | 0x400);
    if (entered == FILE_ATTRIBUTE_DIRECTORY && name != "." && name != "..")
      WalkBare(folder + "\\" + name);
  });
  std::vector<std::string> files;
  ListFolder(folder, [&](const WIN32_FIND_DATAA& entry) {
    if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) files.push_back(entry.cFileName);
  });
  for (const std::string& file : files)
    AskAboutFile(folder + "\\" + file);
}

double Median(std::vector<double> figures) {
  std::sort(figures.begin(), figures.end());
  return figures[figures.size() / 2];
}

// The two sides take turns, so that what else the machine does falls on both.
bool Compare(const char* what, int rounds, const std::function<double()>& ours,
             const std::function<double()>& theirs, double most) {
  std::vector<double> first;
  std::vector<double> second;
  for (int round = 0; round < rounds; ++round) {
    first.push_back(ours());
    second.push_back(theirs());
  }
  const double ratio = Median(first) / Median(second);
  std::printf("%-52s %9.1f %9.1f %7.2f   (at most %.2f)%s\n", what, Median(first), Median(second),
              ratio, most, ratio > most ? "   TOO MUCH" : "");
  std::fflush(stdout);
  return ratio <= most;
}

// A key of the user with that many values, by turns a text, a number and bytes.
std::string MakeKey(int count) {
  const std::string path = kTestKey + std::to_string(count);
  HKEY key = nullptr;
  Require(RegCreateKeyA(HKEY_CURRENT_USER, path.c_str(), &key) == ERROR_SUCCESS,
          "no key to test with");
  for (int i = 0; i < count; ++i) {
    const std::string name = "Value " + std::to_string(i);
    static constexpr BYTE kData[] = "some bytes of a usual size";
    static constexpr DWORD kTypes[] = {REG_SZ, REG_DWORD, REG_BINARY};
    const DWORD type = kTypes[i % 3];
    RegSetValueExA(key, name.c_str(), 0, type, kData, type == REG_DWORD ? 4 : sizeof(kData));
  }
  RegCloseKey(key);
  return path;
}

std::string MakeFiles(const drive::Folder& folder, int count) {
  const std::string name = std::to_string(count) + " files";
  folder.MakeFolder(name);
  for (int i = 0; i < count; ++i)
    folder.Write(name + "\\file " + std::to_string(i) + ".txt", "three lines of text");
  return folder.Path(name);
}

// Mice in the registry, a thousand to a key of their own.
constexpr char kDevices[] = "SYSTEM\\CurrentControlSet\\Enum\\HSBENCH";
constexpr char kMouseClass[] = "{4D36E96F-E325-11CE-BFC1-08002BE10318}";
const std::string kMouseClassKey =
    std::string("SYSTEM\\CurrentControlSet\\Control\\Class\\") + kMouseClass;

void MakeThousandMice(const std::string& name) {
  for (int i = 0; i < 1000; ++i) {
    HKEY key = nullptr;
    const std::string path = std::string(kDevices) + "\\" + name + "\\" + std::to_string(i);
    Require(RegCreateKeyA(HKEY_LOCAL_MACHINE, path.c_str(), &key) == ERROR_SUCCESS, "no device");
    for (const auto& [value, text] : {std::pair{"ClassGUID", kMouseClass},
                                      {"DeviceDesc", "A mouse of the usual kind"},
                                      {"Mfg", "Somebody"},
                                      {"Driver", "HSBENCH\\0000"}})
      RegSetValueExA(key, value, 0, REG_SZ, reinterpret_cast<const BYTE*>(text),
                     static_cast<DWORD>(std::string(text).size() + 1));
    RegCloseKey(key);
  }
}

void RemoveMice(const std::string& name) {
  RegDeleteTreeA(HKEY_LOCAL_MACHINE, (std::string(kDevices) + "\\" + name).c_str());
}

// The two calls for a value: for its size, and for its data.
std::string ReadText(HKEY key, const char* name) {
  char text[256] = {};
  DWORD size = 0;
  if (RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS) return "";
  size = sizeof(text) - 1;
  RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
  return text;
}

void ListMiceBare() {
  GUID guid = {};
  DWORD number = 0;
  SetupDiClassGuidsFromNameA("Mouse", &guid, 1, &number);
  const HDEVINFO set = SetupDiGetClassDevsA(&guid, nullptr, nullptr, DIGCF_PRESENT);
  SP_DEVINFO_DATA device = {};
  device.cbSize = sizeof(device);
  for (DWORD i = 0; SetupDiEnumDeviceInfo(set, i, &device) != 0; ++i) {
    char id[512] = {};
    DWORD size = 0;
    SetupDiGetDeviceInstanceIdA(set, &device, nullptr, 0, &size);
    SetupDiGetDeviceInstanceIdA(set, &device, id, sizeof(id), nullptr);
    HKEY key = nullptr;
    const std::string path = std::string("SYSTEM\\CurrentControlSet\\Enum\\") + id;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_QUERY_VALUE, &key) != 0) continue;
    for (const char* const name : {"FriendlyName", "DeviceDesc", "Mfg"})
      ReadText(key, name);
    const std::string driver =
        "SYSTEM\\CurrentControlSet\\Control\\Class\\" + ReadText(key, "Driver");
    HKEY driver_key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, driver.c_str(), 0, KEY_QUERY_VALUE, &driver_key) == 0)
      RegCloseKey(driver_key);
    RegCloseKey(key);
  }
  SetupDiDestroyDeviceInfoList(set);
}

std::string SystemFolder() {
  char path[MAX_PATH] = {};
  GetSystemDirectoryA(path, sizeof(path));
  return path;
}

// The system's registry and folder, beside what the system takes. For the registry both sides are
// whole runs of a program.
bool CompareWithSystem(const drive::Folder& folder, int rounds,
                       const std::function<double(const std::string&)>& section) {
  const bool dump = Compare(
      "dump of HKLM\\Software, beside `reg export` of it", rounds,
      [&] { return TimeOfReport(folder, "[REGISTRY KEYS]\r\nHKLM\\Software,1\r\n"); },
      [&] {
        return TimeOfCommand("reg.exe export HKLM\\Software \"" + folder.Path("export.reg") +
                             "\" /y");
      },
      1.0);
  const std::string system = SystemFolder();
  const bool tree = Compare(
      "tree of the system folder, beside the bare calls", rounds,
      [&] { return section("[FOLDERS]\r\n" + system + ",1\r\n"); },
      [&] { return TimeOf([&] { WalkBare(system); }); }, 1.25);
  return dump && tree;
}

// Twice as much, beside the half of it.
bool CompareSizes(const drive::Folder& folder, int rounds,
                  const std::function<double(const std::string&)>& section) {
  const std::string keys[] = {MakeKey(20000), MakeKey(40000)};
  const auto dump = [&](int key) {
    return [&, key] { return section("[REGISTRY KEYS]\r\nHKCU\\" + keys[key] + "\r\n"); };
  };
  const bool values =
      Compare("dump of 40,000 values, beside one of 20,000", rounds, dump(1), dump(0), 2.2);
  for (const std::string& key : keys)
    RegDeleteKeyA(HKEY_CURRENT_USER, key.c_str());

  const std::string folders[] = {MakeFiles(folder, 2000), MakeFiles(folder, 4000)};
  const auto list = [&](int which) {
    return [&, which] { return section("[FOLDERS]\r\n" + folders[which] + "\r\n"); };
  };
  const bool files =
      Compare("tree of 4,000 files, beside one of 2,000", rounds, list(1), list(0), 2.2);
  return values && files;
}

// The platform's set-up library takes more than twice as long for twice the devices; the program's
// own part is what it adds to that.
bool CompareDevices(int rounds, const std::function<double(const std::string&)>& section) {
  const auto name =
      drive::RegistryValue::Text(HKEY_LOCAL_MACHINE, kMouseClassKey, "Class", "Mouse");
  const char list[] = "[INPUT]\r\nMouse=1\r\n";
  MakeThousandMice("A");
  MakeThousandMice("B");
  const bool beside = Compare(
      "list of 2,000 devices, beside the bare calls", rounds, [&] { return section(list); },
      [] { return TimeOf(ListMiceBare); }, 1.25);
  const auto with_half = [&](const std::function<double()>& work) {
    RemoveMice("B");
    const double time = work();
    MakeThousandMice("B");
    return time;
  };
  const bool bare = Compare(
      "the bare calls for 2,000 devices, beside 1,000", rounds, [] { return TimeOf(ListMiceBare); },
      [&] { return with_half([] { return TimeOf(ListMiceBare); }); }, 4.0);
  const bool twice = Compare(
      "list of 2,000 devices, beside one of 1,000", rounds, [&] { return section(list); },
      [&] { return with_half([&] { return section(list); }); }, 3.0);
  RegDeleteTreeA(HKEY_LOCAL_MACHINE, kDevices);
  return beside && bare && twice;
}

}  // namespace

int main(int count, char** arguments) {
  const int rounds = count > 1 ? std::max(1, std::atoi(arguments[1])) : 5;
  const drive::Folder folder;
  TimeOfReport(folder, "");  // the server and the file caches are warm from here on
  // What a section adds to a run without it.
  const auto section = [&](const std::string& text) {
    const double without = TimeOfReport(folder, "");
    return TimeOfReport(folder, text) - without;
  };
  std::printf("%-52s %9s %9s %7s\n", "", "ms", "beside", "ratio");
  const bool with_system = CompareWithSystem(folder, rounds, section);
  const bool sizes = CompareSizes(folder, rounds, section);
  const bool devices = CompareDevices(rounds, section);
  return with_system && sizes && devices ? 0 : 1;
}
