// The program's process: how it ends, and its threads with it.
#include "platform/host/process.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <thread>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "tests/support/test_folder.h"

namespace host {
namespace {

using Open = std::map<std::string, int>;

// Sets a flag when it goes, as the owners of the program's handles do their work.
struct Owner {
  explicit Owner(std::atomic<bool>& flag) : gone(flag) {}
  ~Owner() { gone = true; }
  std::atomic<bool>& gone;
};

// A thread whose routine is any function.
HANDLE Start(std::function<DWORD()>& routine) {
  return CreateThread(
      nullptr, 0,
      [](LPVOID parameter) -> DWORD {
        return (*static_cast<std::function<DWORD()>*>(parameter))();
      },
      &routine, 0, nullptr);
}

TEST(Process, ExitProcessEndsTheProgram) {
  Machine machine;
  std::atomic<bool> gone = false;
  bool went_on = false;
  EXPECT_EQ(3, RunProcess(machine, [&] {
              const Owner owner(gone);
              ExitProcess(3);
              went_on = true;
            }));
  EXPECT_TRUE(gone);
  EXPECT_FALSE(went_on);
  EXPECT_EQ(1u, machine.faults.CallCount("ExitProcess"));
  EXPECT_EQ(0, RunProcess(machine, [] {}));
}

TEST(Process, TheCommandLineIsWholeForEveryRun) {
  Machine machine;
  machine.command_line = "hscope.exe \"a\"";
  for (int run = 0; run < 2; ++run) {
    RunProcess(machine, [] {
      EXPECT_STREQ("hscope.exe \"a\"", GetCommandLineA());
      GetCommandLineA()[6] = '\0';
      EXPECT_STREQ("hscope", GetCommandLineA());
    });
  }
}

// A thread that goes on and on is ended at its next call, and what it owns is given back.
TEST(Process, RunningThreadsEndAtTheirNextCall) {
  static const std::map<std::string, std::function<void(HANDLE)>> kCalls = {
      {"WriteFile",
       [](HANDLE file) {
         DWORD written;
         WriteFile(file, "x", 1, &written, nullptr);
       }},
      {"ReadFile",
       [](HANDLE file) {
         char byte;
         DWORD count;
         ReadFile(file, &byte, 1, &count, nullptr);
       }},
      {"GetPrivateProfileIntA", [](HANDLE) { GetPrivateProfileIntA("s", "k", 0, "C:\\x.ini"); }},
      {"FindFirstFileA",
       [](HANDLE) {
         WIN32_FIND_DATAA data;
         FindFirstFileA("C:\\*", &data);
       }},
      {"LoadLibraryA", [](HANDLE) { LoadLibraryA("absent"); }},
      {"Sleep", [](HANDLE) { Sleep(0); }},
  };
  for (const auto& [name, call] : kCalls) {
    Machine machine;
    std::atomic<bool> gone = false;
    std::atomic<bool> started = false;
    std::function<DWORD()> routine = [&] {
      struct File {
        HANDLE handle;
        ~File() { CloseHandle(handle); }
      } const file{CreateFileA("/dev/null", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                               0, nullptr)};
      const Owner owner(gone);
      while (true) {
        call(file.handle);
        started = true;
      }
      return 0;
    };
    const int code = RunProcess(machine, [&] {
      CloseHandle(Start(routine));
      while (!started)
        std::this_thread::yield();
      ExitProcess(1);
    });
    EXPECT_EQ(1, code) << name;
    EXPECT_TRUE(gone) << name;
    EXPECT_EQ(Open{}, machine.handles.OpenObjects()) << name;
  }
}

// A thread that waits is woken for it; so is the first thread when another one ends the process.
TEST(Process, WaitingThreadsAreWoken) {
  static constexpr struct {
    const char* name;
    void (*wait)(HANDLE);
  } kRows[] = {
      {"Sleep", [](HANDLE) { Sleep(INFINITE); }},
      {"WaitForSingleObject", [](HANDLE thread) { WaitForSingleObject(thread, INFINITE); }},
  };
  for (const auto& row : kRows) {
    for (const bool first_thread_waits : {false, true}) {
      SCOPED_TRACE(std::string(row.name) + (first_thread_waits ? ", first thread" : ""));
      Machine machine;
      std::atomic<bool> gone = false;
      std::atomic<bool> waits = false;
      std::function<DWORD()> sleeps = [] { return Sleep(INFINITE), 0; };
      HANDLE sleeper = nullptr;
      const auto wait = [&] {
        const Owner owner(gone);
        waits = true;
        row.wait(sleeper);
        ADD_FAILURE() << "went on";
      };
      const auto end = [&] {
        while (!waits)
          std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        ExitProcess(4);
      };
      std::function<DWORD()> other = [&] { return first_thread_waits ? end() : wait(), 0; };
      EXPECT_EQ(4, RunProcess(machine, [&] {
                  sleeper = Start(sleeps);
                  Start(other);
                  first_thread_waits ? wait() : end();
                }));
      EXPECT_TRUE(gone);
    }
  }
}

// What owners do while the process ends is carried out, whatever it is.
TEST(Process, NoCallFailsWhileTheProgramIsUnwound) {
  Machine machine;
  bool written = false;
  struct Writer {
    bool& result;
    ~Writer() {
      DWORD count;
      const HANDLE file =
          CreateFileA("/dev/null", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
      result = WriteFile(file, "x", 1, &count, nullptr) && CloseHandle(file);
    }
  };
  RunProcess(machine, [&] {
    const Writer writer{written};
    ExitProcess(0);
  });
  EXPECT_TRUE(written);
}

TEST(Process, AThreadOutlivesItsHandle) {
  Machine machine;
  std::atomic<int> steps = 0;
  std::function<DWORD()> routine = [&] {
    for (int i = 0; i < 3; ++i, ++steps)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return 0;
  };
  RunProcess(machine, [&] { CloseHandle(Start(routine)); });
  EXPECT_EQ(3, steps);
}

[[noreturn]] void PrintAndExit(const std::string& output) {
  Machine machine;
  const UseMachine use(machine);
  std::function<DWORD()> routine = [] { return Sleep(INFINITE), 0; };
  Start(routine);
  if (std::freopen(output.c_str(), "w", stdout) == nullptr) std::abort();
  std::fputs("printed", stdout);
  ExitProcess(7);
}

// As the Linux program ends: with what it has printed, and at once, though threads still run.
TEST(ProcessDeathTest, OutsideOfRunProcessTheLinuxProcessEnds) {
  const hostscope::test::TestFolder folder;
  const std::string output = (folder.path() / "output").string();
  EXPECT_EXIT(PrintAndExit(output), testing::ExitedWithCode(7), "");
  EXPECT_EQ("printed", folder.Read("output"));
}

}  // namespace
}  // namespace host
