// Processor, memory and devices of a machine: what no other platform can be asked.
#include "platform/host/hardware.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "platform/dos_registers.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/winmm.h"
#include "tests/support/test_folder.h"

namespace host {
namespace {

using hostscope::DosRegisters;

class HardwareTest : public testing::Test {
 protected:
  HardwareTest() : use_(machine_) {
    machine_.version = {.major = 4, .minor = 10, .build = 0x040A08AE, .platform_id = 1};
  }
  HANDLE OpenVwin32() {
    return CreateFileA("\\\\.\\VWIN32", GENERIC_READ, 3, nullptr, OPEN_EXISTING,
                       FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  }

  Machine machine_;
  UseMachine use_;
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

TEST_F(HardwareTest, Vwin32OfWindows98) {
  EXPECT_EQ(OpenVwin32(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  machine_.hardware.swap_file = {"C:\\WIN386.SWP", 0x500000007};
  const HANDLE device = OpenVwin32();
  ASSERT_NE(device, INVALID_HANDLE_VALUE);
  auto* const name =
      static_cast<char*>(VirtualAlloc(nullptr, 260, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
  ASSERT_LT(reinterpret_cast<std::uintptr_t>(name), 0x100000000u);
  const auto address = static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(name));

  const struct {
    DWORD code, size, eax, ecx;
    DWORD error, carry;
  } rows[] = {{1, 28, 0x440D, 0x486E, 0, 0},
              {1, 28, 0x440D, 0x4860, 0, 1},
              {1, 28, 0x440E, 0x486E, 0, 1},
              {1, 27, 0x440D, 0x486E, ERROR_INVALID_PARAMETER, 1},
              {6, 28, 0x440D, 0x486E, ERROR_NOT_SUPPORTED, 1}};
  for (const auto& row : rows) {
    std::memset(name, 0, 260);
    DosRegisters registers = {.edx = address, .ecx = row.ecx, .eax = row.eax, .flags = 1};
    DWORD returned = 99;
    SetLastError(0);
    EXPECT_EQ(DeviceIoControl(device, row.code, &registers, row.size, &registers, row.size,
                              &returned, nullptr),
              row.error == 0);
    EXPECT_EQ(GetLastError(), row.error);
    EXPECT_EQ(returned, row.error == 0 ? 28u : 0u);
    EXPECT_EQ(registers.flags, row.carry);
    EXPECT_STREQ(name, row.carry == 0 ? "C:\\WIN386.SWP" : "");
    if (row.carry != 0) continue;
    EXPECT_EQ((std::pair{registers.ecx, registers.ebx}), (std::pair{5u, 7u}));
  }
  EXPECT_FALSE(VirtualFree(name + 1, 0, MEM_RELEASE));
  EXPECT_TRUE(VirtualFree(name, 0, MEM_RELEASE));
  EXPECT_TRUE(CloseHandle(device));
  EXPECT_FALSE(DeviceIoControl(device, 1, nullptr, 0, nullptr, 0, nullptr, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_TRUE(machine_.handles.OpenObjects().empty());
  machine_.version.platform_id = 2;
  EXPECT_EQ(OpenVwin32(), INVALID_HANDLE_VALUE);
}

TEST_F(HardwareTest, StatedSizesOfFiles) {
  const hostscope::test::TestFolder folder;
  folder.Write("pagefile.sys", "x");
  folder.Write("other.sys", "xyz");
  machine_.files.MountDrive('C', folder.path());
  machine_.files.StateSize("c:\\PageFile.sys", 0x500000007);
  EXPECT_EQ(machine_.files.MissingSizedFile(), "");
  WIN32_FIND_DATAA data;
  const HANDLE search = FindFirstFileA("C:\\*.sys", &data);
  EXPECT_EQ((std::pair{data.nFileSizeHigh, data.nFileSizeLow}), (std::pair{0u, 3u}));
  EXPECT_TRUE(FindNextFileA(search, &data));
  EXPECT_EQ((std::pair{data.nFileSizeHigh, data.nFileSizeLow}), (std::pair{5u, 7u}));
  FindClose(search);
}

}  // namespace
}  // namespace host
