// What the registry dump and the folder tree of hscope.exe cost, told beside
// what the platform itself takes for the same, in one run: the system's own registry export, and a
// bare loop that makes the same platform calls and writes nothing.
//
//   HSCOPE_EXE=PATH scan_times.exe [ROUNDS]
//
// Each figure is the median of the rounds, in milliseconds; the two sides of a ratio take turns.
// Exit code 1 when a ratio is larger than it may be.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "tests/windows/driver.h"

namespace {

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

std::string MakeFiles(const drive::Folder& folder, int count) {
  const std::string name = std::to_string(count) + " files";
  folder.MakeFolder(name);
  for (int i = 0; i < count; ++i)
    folder.Write(name + "\\file " + std::to_string(i) + ".txt", "three lines of text");
  return folder.Path(name);
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
  const std::string folders[] = {MakeFiles(folder, 2000), MakeFiles(folder, 4000)};
  const auto list = [&](int which) {
    return [&, which] { return section("[FOLDERS]\r\n" + folders[which] + "\r\n"); };
  };
  return Compare("tree of 4,000 files, beside one of 2,000", rounds, list(1), list(0), 2.2);
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
  return with_system && sizes ? 0 : 1;
}
