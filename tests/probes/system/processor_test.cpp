// The processor items over processors of several ages, and over clocks of several kinds.

#include "probes/system/processor.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/system_values.h"

namespace hostscope {
namespace {

using test::ReportRun;
using test::SystemValues;

TEST(ProcessorFeatures, EachIsOneBit) {
  constexpr std::pair<bool (*)(std::uint32_t), unsigned> kRows[] = {
      {HasCoprocessor, 0}, {HasTimeStampCounter, 4}, {HasMMX, 23},  {HasSSE, 25},
      {HasSSE2, 26},       {HasExtended3DNow, 30},   {Has3DNow, 31}};
  for (const auto& [has, its_bit] : kRows) {
    for (unsigned bit = 0; bit < 32; ++bit)
      EXPECT_EQ(has(1U << bit), bit == its_bit) << its_bit << " " << bit;
  }
}

TEST(ProcessorSpeed, IsCutToWholeMegahertz) {
  EXPECT_EQ(Megahertz(0, 999'999), 1u);
  EXPECT_EQ(Megahertz(0, 1'000'000), 2u);
  EXPECT_EQ(Megahertz(0xFFFFFFFF, 499'999), 1u);
  EXPECT_EQ(Megahertz(0, 0xFFFFFFFF), 8589u);
}

TEST(ProcessorItems, NameAndFeatures) {
  struct Row {
    ProcessorAge age;
    const char* vendor;
    std::uint32_t highest, standard, highest_extended, extended;
    const char* brand;
    const char* values;
  };
  constexpr auto kNew = ProcessorAge::kIdentifiable;
  constexpr std::uint32_t kAll = 0xFFFFFFFF;
  constexpr char kFull[] = "a brand that fills all of its forty-eight bytes!";
  const Row rows[] = {
      {kNew, "GenuineIntel", 2, 0xAFE9F9BF, 0x80000004, 0, "    Pentium(R) M",
       "2|GenuineIntel     Pentium(R) M|Yes|Yes|No|No|Yes|Yes|"},
      {kNew, "AuthenticAMD", 1, 0x0383F9FE, 0x80000008, 0xC1C3F9FF, kFull,
       "2|AuthenticAMD a brand that fills all of its forty-eight bytes!|No|Yes|Yes|Yes|Yes|No|"},
      // The highest leaves keep what lies beyond them from being read.
      {kNew, "GenuineIntel", 2, 0x0183FBFF, 0x80000003, 0, kFull,
       "2|GenuineIntel |Yes|Yes|No|No|No|No|"},
      {kNew, "CentaurHauls", 1, 1, 0x80000001, 1U << 31, kFull,
       "2|CentaurHauls |Yes|No|Yes|No|No|No|"},
      {kNew, "GenuineIntel", 2, 0x0183FBFF, 0x80000000, kAll, kFull,
       "2|GenuineIntel |Yes|Yes|No|No|No|No|"},
      {kNew, "GenuineTMx86", 0, kAll, kAll, kAll, kFull, "2|GenuineTMx86 |No|No|No|No|No|No|"},
      {ProcessorAge::k80486, "", 1, kAll, kAll, kAll, kFull,
       "2|80486 (no processor identification)|Unknown|No|No|No|No|No|"},
      {ProcessorAge::k80386, "", 1, kAll, kAll, kAll, kFull,
       "2|80386 (no processor identification)|Unknown|No|No|No|No|No|"},
  };
  for (const Row& row : rows) {
    ReportRun run;
    host::Processor& processor = run.machine().hardware.processor;
    processor.count = 2;
    processor.age = row.age;
    std::uint32_t vendor[3] = {};
    std::memcpy(vendor, row.vendor, std::strlen(row.vendor));
    processor.leaves = {{0, {row.highest, vendor[0], vendor[2], vendor[1]}},
                        {1, {.edx = row.standard}},
                        {0x80000000, {.eax = row.highest_extended}},
                        {0x80000001, {.edx = row.extended}}};
    char brand[49] = {};
    std::strcpy(brand, row.brand);
    for (std::uint32_t i = 0; i < 3; ++i)
      std::memcpy(&processor.leaves[0x80000002 + i], brand + i * 16, 16);
    EXPECT_EQ(SystemValues(run,
                           "ProcessorsCount=1\r\nProcessorName=1\r\nCoProcessor=1\r\nMMX=1\r\n"
                           "3DNow=1\r\nExtended3DNow=1\r\nSSE=1\r\nSSE2=1\r\n"),
              row.values);
    EXPECT_EQ(run.Progress().front(), "Number of processors...  Ok");
  }
}

TEST(ProcessorItems, Speed) {
  using host::Machine;
  const std::string stated("\xDD\x02\0\0", 4);
  const struct {
    const char* what;
    DWORD platform;
    std::string registry;  // bytes of "~MHz"
    std::function<void(Machine&)> change;
    const char* speed;
    bool measured = true;
  } rows[] = {
      {"stated", 2, stated + "\x01", [](Machine&) {}, "733 MHz|", false},
      {"not stated", 2, "", [](Machine&) {}, "501 MHz|"},
      {"stated as 0", 2, std::string(4, '\0'), [](Machine&) {}, "501 MHz|"},
      {"stated too short", 2, stated.substr(0, 3), [](Machine&) {}, "501 MHz|"},
      {"the timer starts again", 1, stated,
       [](Machine& machine) { machine.hardware.timer = 0xFFFFFF00; }, "501 MHz|"},
      {"no counter", 1, stated,
       [](Machine& machine) { machine.hardware.processor.leaves[1].edx = 0xFFFFFFEF; }, "Unknown|",
       false},
      {"no identification", 2, "",
       [](Machine& machine) { machine.hardware.processor.age = ProcessorAge::k80486; }, "Unknown|",
       false},
      {"no multimedia library", 1, stated,
       [](Machine& machine) {
         machine.libraries.Remove("WINMM.DLL");
         machine.faults.AtCall("GetTickCount", [&machine] {
           machine.tick_count += 55;
           machine.hardware.timer += 55;
         });
       },
       "550 MHz|"},
  };
  for (const auto& row : rows) {
    ReportRun run;
    Machine& machine = run.machine();
    machine.version.platform_id = row.platform;
    machine.hardware.processor.leaves = {{0, {.eax = 1}}, {1, {.edx = 1U << 4}}};
    machine.hardware.processor.counter_frequency = 500'000'000;
    machine.registry.SetValue("HKLM\\HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", "~MHz",
                              REG_DWORD, row.registry);
    row.change(machine);
    EXPECT_EQ(SystemValues(run, "ProcessorSpeed=1\r\n"), row.speed) << row.what;
    EXPECT_EQ(machine.faults.CallCount("ReadTimeStampCounter"), row.measured ? 2u : 0u) << row.what;
    EXPECT_EQ(machine.libraries.References("WINMM.DLL"), 0u) << row.what;
  }
}

TEST(ProcessorItems, AStandingTimerEndsTheMeasuring) {
  ReportRun run;
  static DWORD readings;
  readings = 0;
  std::uint32_t megahertz = 7;
  run.machine().hardware.processor.leaves = {{1, {.edx = 1U << 4}}};
  EXPECT_FALSE(CountMegahertz([]() -> DWORD { return ++readings < 5 ? readings : 5; }, megahertz));
  EXPECT_EQ(megahertz, 0u);
}

}  // namespace
}  // namespace hostscope
