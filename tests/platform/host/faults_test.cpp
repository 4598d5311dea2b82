#include "platform/host/faults.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

TEST(Faults, StatedCallsFail) {
  Faults faults;
  faults.FailNth("ReadFile", 2, 5);
  faults.FailNth("ReadFile", 4, 21);
  const std::vector<std::optional<DWORD>> expected = {std::nullopt, 5, std::nullopt, 21,
                                                      std::nullopt};
  for (const auto& error : expected)
    EXPECT_EQ(faults.Enter("ReadFile"), error);
  faults.FailNth("ReadFile", 1, 6);  // counted from now
  EXPECT_EQ(faults.Enter("WriteFile"), std::nullopt);
  EXPECT_EQ(faults.Enter("ReadFile"), 6u);
  faults.FailAlways("ReadFile", 19);
  faults.FailNth("ReadFile", 2, 32);
  for (const DWORD error : {19u, 32u, 19u})
    EXPECT_EQ(faults.Enter("ReadFile"), error);
  EXPECT_EQ(faults.CallCount("ReadFile"), 9u);
  EXPECT_EQ(faults.CallCounts(),
            (std::map<std::string, unsigned>{{"ReadFile", 9}, {"WriteFile", 1}}));
}

TEST(Faults, ActionsRunBeforeTheCallAndMayStateFaults) {
  Faults faults;
  int runs = 0;
  faults.AtCall("GetVersionExA", [&] {
    ++runs;
    EXPECT_EQ(faults.CallCount("GetVersionExA"), static_cast<unsigned>(runs));
    if (runs == 2) faults.FailAlways("GetVersionExA", 87);
  });
  EXPECT_EQ(faults.Enter("GetVersionExA"), std::nullopt);
  EXPECT_EQ(faults.Enter("GetVersionExA"), 87u);
  faults.AtCall("GetVersionExA", nullptr);
  EXPECT_EQ(faults.Enter("GetVersionExA"), 87u);
  EXPECT_EQ(runs, 2);
}

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
  explicit Thing(const char* kind, HandleTable* table = nullptr) : Object(kind), table_(table) {}
  ~Thing() override {
    if (table_ != nullptr) table_->Count("ended thing", 1);
  }
  HandleTable* table_;
};
struct OtherThing : Object {
  OtherThing() : Object("other") {}
};

TEST(HandleTable, HandlesAreNeverUsedAgain) {
  HandleTable table;
  const std::uintptr_t first = table.Open(std::make_shared<Thing>("thing"));
  EXPECT_NE(table.FindAs<Thing>(first), nullptr);
  EXPECT_EQ(table.FindAs<OtherThing>(first), nullptr);
  EXPECT_TRUE(table.Close(first));
  EXPECT_FALSE(table.Close(first));
  EXPECT_EQ(table.Find(first), nullptr);
  const std::uintptr_t second = table.Open(std::make_shared<Thing>("thing"));
  EXPECT_NE(first, second);
  EXPECT_FALSE(table.Close(0));
}

TEST(HandleTable, CountsWhatIsOpen) {
  HandleTable table;
  const std::uintptr_t thing = table.Open(std::make_shared<Thing>("thing", &table));
  table.Open(std::make_shared<OtherThing>());
  table.Open(std::make_shared<OtherThing>());
  table.Count("block", 3);
  table.Count("gone", 1);
  table.Count("gone", -1);
  using Counts = std::map<std::string, int>;
  EXPECT_EQ(table.OpenObjects(), (Counts{{"block", 3}, {"other", 2}, {"thing", 1}}));
  EXPECT_TRUE(table.Close(thing));  // whose end comes back to the table
  EXPECT_EQ(table.OpenObjects(), (Counts{{"block", 3}, {"ended thing", 1}, {"other", 2}}));
}

}  // namespace
}  // namespace host
