// Processor, memory and devices of a machine: what no other platform can be asked.
#include "platform/host/hardware.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/winmm.h"

namespace host {
namespace {

class HardwareTest : public testing::Test {
 protected:
  Machine machine_;
  UseMachine use_{machine_};
};

TEST_F(HardwareTest, TheRealProcessorAnswersWhereAskedFor) {
  Processor& processor = machine_.hardware.processor;
  processor.real = true;
  if (!HasRealProcessor()) GTEST_SKIP() << "this computer is no x86";
  const hostscope::ProcessorLeaf vendor = hostscope::ReadProcessorLeaf(0);
  EXPECT_GE(vendor.eax, 1u);
  EXPECT_NE(vendor.ebx, 0u);
  const DWORD time = timeGetTime();
  const std::uint32_t counter = hostscope::ReadTimeStampCounter();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_GE(timeGetTime() - time, 20u);
  EXPECT_GT(hostscope::ReadTimeStampCounter() - counter, 1'000'000u);
  EXPECT_EQ(machine_.hardware.timer, 0u);
}

TEST_F(HardwareTest, ADescribedCounterGoesByTheTimer) {
  Processor& processor = machine_.hardware.processor;
  processor.leaves[1].edx = 1U << 4;
  processor.counter_frequency = 3'000'000'500;
  machine_.hardware.timer = 0xFFFFFFFE;
  EXPECT_EQ(timeGetTime(), 0xFFFFFFFFu);
  EXPECT_EQ(timeGetTime(), 0u);
  EXPECT_EQ(hostscope::ReadTimeStampCounter(),
            static_cast<std::uint32_t>(3'000'000ULL * 0x100000000 + 0x100000000 / 2));
}

TEST_F(HardwareTest, WhatTheProcessorLacksEndsTheProcess) {
  EXPECT_DEATH(hostscope::ReadTimeStampCounter(), "no time-stamp counter");
  machine_.hardware.processor.age = hostscope::ProcessorAge::k80486;
  EXPECT_DEATH(hostscope::ReadProcessorLeaf(0), "no identification instruction");
}

}  // namespace
}  // namespace host
