// The section PROCESSES: what the report says beside what the test finds out by tool help.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "platform/win32.h"
#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

#include <winternl.h>

namespace drive {
namespace {

std::string Text(const char* format, unsigned first, unsigned second = 0) {
  char text[50];
  std::snprintf(text, sizeof text, format, first, second);
  return text;
}

// A process that stands still, of the given priority class.
struct Sleeper {
  explicit Sleeper(DWORD priority_class) {
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    EXPECT_TRUE(CreateProcessA(OwnProgram().c_str(), nullptr, nullptr, nullptr, FALSE,
                               CREATE_SUSPENDED, nullptr, nullptr, &start, &process));
    // Wine does not take it as a flag.
    EXPECT_TRUE(SetPriorityClass(process.hProcess, priority_class));
  }
  ~Sleeper() {
    TerminateProcess(process.hProcess, 0);
    WaitForSingleObject(process.hProcess, kPatienceMilliseconds);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  PROCESS_INFORMATION process = {};
};

// The first two lines of every process, without the label.
std::string RunningProcesses() {
  std::string lines;
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32 entry = {};
  entry.dwSize = sizeof entry;
  for (BOOL more = Process32First(snapshot, &entry); more; more = Process32Next(snapshot, &entry)) {
    lines += FieldLine("", "PID", Text("0x%x (%u)", entry.th32ProcessID, entry.th32ProcessID)) +
             FieldLine("", "Image", entry.szExeFile);
  }
  CloseHandle(snapshot);
  return lines;
}

// What the native list tells of a process, by the record of the compiler's headers.
SYSTEM_PROCESS_INFORMATION NativeEntry(DWORD id) {
  const auto query =
      reinterpret_cast<decltype(&NtQuerySystemInformation)>(reinterpret_cast<void (*)()>(
          GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
  std::vector<char> list(1 << 20);
  EXPECT_EQ(query(SystemProcessInformation, list.data(), list.size(), nullptr), 0);
  for (const char* at = list.data();;) {
    SYSTEM_PROCESS_INFORMATION entry = {};
    std::memcpy(&entry, at, sizeof entry);
    if (reinterpret_cast<ULONG_PTR>(entry.UniqueProcessId) == id) return entry;
    if (entry.NextEntryOffset == 0) return {};
    at += entry.NextEntryOffset;
  }
}

std::string Block(const Sleeper& sleeper, const std::string& priority, bool is_nt) {
  const DWORD id = sleeper.process.dwProcessId, version = GetProcessVersion(id);
  const std::string program = OwnProgram();
  std::string block = FieldLine("", "PID", Text("0x%x (%u)", id, id)) +
                      FieldLine("", "Image", program.substr(program.rfind('\\') + 1)) +
                      FieldLine("", "Valid", "Yes") + FieldLine("", "Priority", priority) +
                      FieldLine("", "Version", Text("%u.%u", version >> 16, version & 0xFFFF));
  if (!is_nt) return block + "\r\n";
  const SYSTEM_PROCESS_INFORMATION told = NativeEntry(id);
  const VM_COUNTERS& memory = told.VirtualMemoryCounters;
  return block + FieldLine("", "Memory usage", Text("%u b", memory.WorkingSetSize)) +
         FieldLine("", "Pagefile usage", Text("%u b", memory.PagefileUsage)) +
         FieldLine("", "Paged pool", Text("%u b", memory.QuotaPagedPoolUsage)) +
         FieldLine("", "Non-paged pool", Text("%u b", memory.QuotaNonPagedPoolUsage)) +
         FieldLine("", "Threads", "1") + FieldLine("", "Handles", Text("%u", told.HandleCount)) +
         FieldLine("", "Page faults", Text("%u", memory.PageFaultCount)) + "\r\n";
}

// The report's section, and what runs while the program that wrote it is still there.
struct Listing {
  std::string section;
  std::string running;
  std::vector<std::string> list;
  Listing() {
    const Folder folder;
    folder.Write("test.ini", "[PROCESS]\r\nProcesses=1\r\n");
    Program program(folder, {.arguments = {"test.ini"}});
    EXPECT_TRUE(program.WaitUntilFinished());
    running = RunningProcesses();
    list = program.Lines();
    TypeKey(program.dialog(), 'X');
    EXPECT_EQ(program.WaitForExit(), 0u);
    const std::string report = folder.Read("hscope.txt").value_or("");
    section = report.substr(report.rfind("=\r\n\r\n") + 5);
  }
  // The first two lines of every process of the section, the label made blanks.
  std::string Processes() const {
    std::string lines;
    for (const char* const field : {"PID", "Image"})
      EXPECT_NE(section.find(field), section.npos);
    for (size_t at = 0; (at = section.find("PID            :", at)) != section.npos; ++at) {
      const size_t second = section.find("\r\n", at) + 2;
      lines += Padded("", 27) + section.substr(at, second - at) +
               section.substr(second, section.find("\r\n", second) + 2 - second);
    }
    return lines;
  }
};

class ProcessesOnEveryRelease : public EveryRelease {};

TEST_P(ProcessesOnEveryRelease, AreAsToolHelpFindsThem) {
  const bool is_nt = GetParam().has_tokens;
  const Sleeper idle(IDLE_PRIORITY_CLASS), below_normal(BELOW_NORMAL_PRIORITY_CLASS);
  Listing listing;
  // The system's own processes come and go.
  for (int again = 0; again < 5 && listing.Processes() != listing.running; ++again)
    listing = Listing();
  EXPECT_EQ(listing.Processes(), listing.running);
  const std::string& section = listing.section;
  EXPECT_NE(section.find(Block(idle, "idle (0x40)", is_nt)), section.npos)
      << Block(idle, "idle (0x40)", is_nt) << section;
  EXPECT_NE(section.find(Block(below_normal, "unknown (0x4000)", is_nt)), section.npos) << section;
  unsigned total = 0, count = 0;
  EXPECT_EQ(std::sscanf(section.c_str(), "Processes (total %u)", &total), 1);
  for (size_t at = 0; (at = section.find("PID ", at)) != section.npos; ++at)
    ++count;
  EXPECT_EQ(total, count);
  EXPECT_EQ(section.find("Memory usage") != section.npos, is_nt);
  EXPECT_EQ(listing.list.front(), ProgressLine("Processes...", "Ok"));
}

INSTANTIATE_TEST_SUITE_P(Processes, ProcessesOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
