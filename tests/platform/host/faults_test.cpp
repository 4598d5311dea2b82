#include "platform/host/faults.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

TEST(Faults, CountFromManyThreads) {
  Faults faults;
  faults.FailNth("Sleep", 1000, 5);
  std::atomic<int> failed = 0;
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int call = 0; call < 500; ++call)
        failed += faults.Enter("Sleep").has_value();
    });
  }
  threads.clear();
  EXPECT_EQ(faults.CallCount("Sleep"), 2000u);
  EXPECT_EQ(failed, 1);
}

TEST(FaultsDeathTest, MisuseEndsTheProcess) {
  Faults faults;
  EXPECT_DEATH(faults.FailNth("CreateFile", 1, 5), "\"CreateFile\" is none of its functions");
  EXPECT_DEATH(CurrentMachine(), "no machine is in use");
}

struct Thing : Object {
  Thing() : Object("thing") {}
};
struct OtherThing : Object {
  OtherThing() : Object("other") {}
};

TEST(HandleTable, HandlesAreNeverUsedAgain) {
  HandleTable table;
  const std::uintptr_t first = table.Open(std::make_shared<Thing>());
  EXPECT_NE(table.FindAs<Thing>(first), nullptr);
  EXPECT_EQ(table.FindAs<OtherThing>(first), nullptr);
  EXPECT_TRUE(table.Close(first));
  EXPECT_FALSE(table.Close(first));
  EXPECT_EQ(table.Find(first), nullptr);
  const std::uintptr_t second = table.Open(std::make_shared<Thing>());
  EXPECT_NE(first, second);
  EXPECT_FALSE(table.Close(0));
}

}  // namespace
}  // namespace host
