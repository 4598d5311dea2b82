#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <thread>

#include "tests/windows/driver.h"
#include "tests/windows/opened_target.h"
#include "tests/windows/surroundings.h"

namespace {

// A little less than the seconds after which this program is ended from outside, as
// tools/under_wine.sh does it.
DWORD LimitInMilliseconds() {
  const char* limit = std::getenv("HOSTSCOPE_TIME_LIMIT");
  const int seconds = limit ? std::atoi(limit) : 300;
  return (std::max(seconds, 20) - 10) * 1000;
}

// Every wait has a limit of its own; this one is for what no test foresaw.
void EndWhenTooLong() {
  Sleep(LimitInMilliseconds());
  std::fprintf(stderr, "the tests take too long and are ended\n");
  drive::EndStartedProcesses();
  TerminateProcess(GetCurrentProcess(), 3);
}

// No mail client of the machine is ever started: for all tests but those that bring their own, none
// is installed.
class NoMailClient : public testing::Environment {
 public:
  void SetUp() override {
    registry_.emplace(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows Messaging Subsystem",
                      "MAPI", REG_SZ, "0");
    win_ini_.emplace("0");
  }
  void TearDown() override {
    registry_.reset();
    win_ini_.reset();
  }

 private:
  std::optional<drive::RegistryValue> registry_;
  std::optional<drive::MailInWinIni> win_ini_;
};

}  // namespace

int main(int count, char** words) {
  if (count == 4 && std::strcmp(words[1], drive::kRecordSwitch) == 0) {
    return drive::RecordOpenedTarget(words[2], words[3]);
  }
  testing::InitGoogleTest(&count, words);
  testing::AddGlobalTestEnvironment(new NoMailClient);
  std::thread(EndWhenTooLong).detach();
  return RUN_ALL_TESTS();
}
