// What the registry dump and the folder tree of hscope.exe cost, told beside what the platform
// itself takes for the same, in one run: the system's own registry export, and a bare loop that
// makes the tree's platform calls and writes nothing.
//
//   HSCOPE_EXE=PATH scan_times.exe [ROUNDS]
//
// Each figure is the median of the rounds, in milliseconds; the two sides of a ratio take turns.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "tests/windows/driver.h"

namespace {

constexpr char kTestKey[] = "Software\\HostscopeBench";
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
void Compare(const char* what, int rounds, const std::function<double()>& ours,
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
}

// Values 0 .. count - 1 of the test key, by turns a text, a number and bytes.
void MakeValues(int first, int count) {
  HKEY key = nullptr;
  Require(RegCreateKeyA(HKEY_CURRENT_USER, kTestKey, &key) == ERROR_SUCCESS, "no key to test with");
  for (int i = first; i < count; ++i) {
    const std::string name = "Value " + std::to_string(i);
    static constexpr BYTE kData[] = "some bytes of a usual size";
    static constexpr DWORD kTypes[] = {REG_SZ, REG_DWORD, REG_BINARY};
    const DWORD type = kTypes[i % 3];
    RegSetValueExA(key, name.c_str(), 0, type, kData, type == REG_DWORD ? 4 : sizeof(kData));
  }
  RegCloseKey(key);
}

void MakeFiles(const drive::Folder& folder, int first, int count) {
  for (int i = first; i < count; ++i)
    folder.Write("files\\file " + std::to_string(i) + ".txt", "three lines of text");
}

std::string SystemFolder() {
  char path[MAX_PATH] = {};
  GetSystemDirectoryA(path, sizeof(path));
  return path;
}

}  // namespace

int main(int count, char** arguments) {
  const int rounds = count > 1 ? std::max(1, std::atoi(arguments[1])) : 5;
  const drive::Folder folder;
  const auto start = [&] { return TimeOfReport(folder, ""); };
  start();  // the server and the file caches are warm from here on
  std::printf("%-52s %9s %9s %7s\n", "", "ms", "beside", "ratio");

  Compare(
      "dump of HKLM\\Software, beside `reg export` of it", rounds,
      [&] { return TimeOfReport(folder, "[REGISTRY KEYS]\r\nHKLM\\Software,1\r\n"); },
      [&] {
        return TimeOfCommand("reg.exe export HKLM\\Software \"" + folder.Path("export.reg") +
                             "\" /y");
      },
      1.0);

  const std::string system = SystemFolder();
  Compare(
      "tree of the system folder, beside the bare calls", rounds,
      [&] {
        const double without = start();
        return TimeOfReport(folder, "[FOLDERS]\r\n" + system + ",1\r\n") - without;
      },
      [&] { return TimeOf([&] { WalkBare(system); }); }, 1.25);

  const std::string key = std::string("[REGISTRY KEYS]\r\nHKCU\\") + kTestKey + "\r\n";
  constexpr int kValues = 20000;
  MakeValues(0, kValues);
  const auto dump = [&] { return TimeOfReport(folder, key) - start(); };
  std::vector<double> single;
  for (int round = 0; round < rounds; ++round)
    single.push_back(dump());
  MakeValues(kValues, 2 * kValues);
  Compare(
      "dump of 40,000 values, beside one of 20,000", rounds, dump, [&] { return Median(single); },
      2.2);
  RegDeleteKeyA(HKEY_CURRENT_USER, kTestKey);

  constexpr int kFiles = 2000;
  folder.MakeFolder("files");
  MakeFiles(folder, 0, kFiles);
  const std::string tree = "[FOLDERS]\r\n" + folder.Path("files") + "\r\n";
  const auto list = [&] { return TimeOfReport(folder, tree) - start(); };
  single.clear();
  for (int round = 0; round < rounds; ++round)
    single.push_back(list());
  MakeFiles(folder, kFiles, 2 * kFiles);
  Compare(
      "tree of 4,000 files, beside one of 2,000", rounds, list, [&] { return Median(single); },
      2.2);
  return 0;
}
