// The processor items over processors of several ages, and over clocks of several kinds.

#include "probes/system/processor.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/system_lines.h"

namespace hostscope {
namespace {

using test::ReportRun;
using test::SystemLines;

ProcessorLeaf Vendor(std::uint32_t highest_leaf, const char* name) {
  ProcessorLeaf leaf = {.eax = highest_leaf};
  std::memcpy(&leaf.ebx, name, 4);
  std::memcpy(&leaf.edx, name + 4, 4);
  std::memcpy(&leaf.ecx, name + 8, 4);
  return leaf;
}

void StateBrand(host::Processor& processor, const char* brand) {
  char text[48] = {};
  std::strncpy(text, brand, sizeof text);
  for (std::uint32_t i = 0; i < 3; ++i)
    std::memcpy(&processor.leaves[0x80000002 + i], text + i * 16, 16);
}

TEST(ProcessorFeatures, EachIsOneBit) {
  constexpr struct {
    bool (*has)(std::uint32_t);
    unsigned bit;
  } kRows[] = {{HasCoprocessor, 0}, {HasTimeStampCounter, 4}, {HasMMX, 23},  {HasSSE, 25},
               {HasSSE2, 26},       {HasExtended3DNow, 30},   {Has3DNow, 31}};
  for (const auto& row : kRows) {
    for (unsigned bit = 0; bit < 32; ++bit)
      EXPECT_EQ(row.has(1U << bit), bit == row.bit) << row.bit << " " << bit;
  }
}

TEST(ProcessorSpeed, IsCutToWholeMegahertz) {
  constexpr struct {
    std::uint32_t before, after, expected;
  } kRows[] = {{0, 999'999, 1},
               {0, 1'000'000, 2},
               {5, 500'004, 0},
               {0xFFFFFFFF, 499'999, 1},
               {0, 0xFFFFFFFF, 8589}};
  for (const auto& row : kRows)
    EXPECT_EQ(Megahertz(row.before, row.after), row.expected) << row.before << " " << row.after;
}

TEST(ProcessorItems, NameAndFeatures) {
  struct Row {
    ProcessorAge age;
    ProcessorLeaf vendor;
    std::uint32_t standard, highest_extended, extended;
    const char* brand;
    const char* name;
    const char* answers;  // coprocessor, MMX, 3DNow, extended 3DNow, SSE, SSE2
  };
  constexpr auto kNew = ProcessorAge::kIdentifiable;
  constexpr std::uint32_t kAll = 0xFFFFFFFF;
  const Row rows[] = {
      {kNew, Vendor(2, "GenuineIntel"), 0xAFE9F9BF, 0x80000004, 0, "        Intel(R) Pentium(R) M",
       "GenuineIntel         Intel(R) Pentium(R) M", "Yes Yes No No Yes Yes "},
      {kNew, Vendor(1, "AuthenticAMD"), 0x008021BF, 0x80000005, 0x808029BF,
       "AMD-K6(tm) 3D processor", "AuthenticAMD AMD-K6(tm) 3D processor", "Yes Yes Yes No No No "},
      {kNew, Vendor(1, "AuthenticAMD"), 0x0383F9FE, 0x80000008, 0xC1C3F9FF,
       "a brand that fills all of its forty-eight bytes!",  // no room for a terminator
       "AuthenticAMD a brand that fills all of its forty-eight bytes!", "No Yes Yes Yes Yes No "},
      // The highest leaves keep what lies beyond them from being read.
      {kNew, Vendor(1, "CentaurHauls"), 1, 0x80000003, 1U << 31, "unreachable", "CentaurHauls ",
       "Yes No Yes No No No "},
      {kNew, Vendor(2, "GenuineIntel"), 0x0183FBFF, 0x80000000, kAll, "unreachable",
       "GenuineIntel ", "Yes Yes No No No No "},
      {kNew, Vendor(0, "GenuineTMx86"), kAll, 0x80000008, kAll, "unreachable", "GenuineTMx86 ",
       "No No No No No No "},
      {ProcessorAge::k80486,
       {},
       kAll,
       kAll,
       kAll,
       "unreachable",
       "80486 (no processor identification)",
       "Unknown No No No No No "},
      {ProcessorAge::k80386,
       {},
       kAll,
       kAll,
       kAll,
       "unreachable",
       "80386 (no processor identification)",
       "Unknown No No No No No "},
  };
  for (const Row& row : rows) {
    ReportRun run;
    host::Processor& processor = run.machine().hardware.processor;
    processor.count = 2;
    processor.age = row.age;
    processor.leaves = {{0, row.vendor},
                        {1, {.edx = row.standard}},
                        {0x80000000, {.eax = row.highest_extended}},
                        {0x80000001, {.edx = row.extended}}};
    StateBrand(processor, row.brand);
    std::string expected = "Number of processors       2\nProcessor name             ";
    expected += std::string(row.name) + "\n";
    std::istringstream answers(row.answers);
    std::string answer;
    for (const char* const label : {"Coprocessor                ", "MMX support                ",
                                    "3DNow support              ", "Extended 3DNow             ",
                                    "SSE support                ", "SSE2 support               "}) {
      answers >> answer;
      expected += label + answer + "\n";
    }
    expected +=
        "[Number of processors...  Ok][Processor name...        Ok]"
        "[Coprocessor...           Ok][MMX support...           Ok]"
        "[3DNow support...         Ok][Extended 3DNow...        Ok]"
        "[SSE support...           Ok][SSE2 support...          Ok]";
    EXPECT_EQ(SystemLines(run,
                          "ProcessorsCount ProcessorName CoProcessor MMX 3DNow Extended3DNow "
                          "SSE SSE2"),
              expected);
  }
}

TEST(ProcessorItems, Speed) {
  const std::string stated("\xDD\x02\0\0", 4);
  struct Row {
    const char* what;
    DWORD platform;
    std::optional<std::string> registry;  // bytes of "~MHz"
    std::function<void(host::Machine&)> change;
    const char* speed;
    bool measured;
  };
  const Row rows[] = {
      {"stated", 2, stated, {}, "733 MHz", false},
      {"stated with more bytes", 2, stated + "\x01", {}, "733 MHz", false},
      {"not stated", 2, std::nullopt, {}, "501 MHz", true},
      {"stated as 0", 2, std::string(4, '\0'), {}, "501 MHz", true},
      {"stated too short", 2, stated.substr(0, 3), {}, "501 MHz", true},
      {"not asked for", 1, stated, {}, "501 MHz", true},
      {"the timer starts again from 0", 1, stated,
       [](auto& machine) { machine.hardware.timer = 0xFFFFFF00; }, "501 MHz", true},
      {"no counter", 1, stated,
       [](auto& machine) { machine.hardware.processor.leaves[1].edx = 0xFFFFFFEF; }, "Unknown",
       false},
      {"no identification", 2, std::nullopt,
       [](auto& machine) { machine.hardware.processor.age = ProcessorAge::k80486; }, "Unknown",
       false},
      {"no multimedia library", 1, stated,
       [](auto& machine) {
         machine.libraries.Remove("WINMM.DLL");
         machine.faults.AtCall("GetTickCount", [&machine] {
           machine.tick_count += 55;
           machine.hardware.timer += 55;
         });
       },
       "550 MHz", true},
  };
  for (const Row& row : rows) {
    ReportRun run;
    host::Machine& machine = run.machine();
    machine.version.platform_id = row.platform;
    host::Processor& processor = machine.hardware.processor;
    processor.leaves = {{0, Vendor(1, "GenuineIntel")}, {1, {.edx = 1U << 4}}};
    processor.counter_frequency = 500'000'000;
    if (row.registry) {
      machine.registry.SetValue("HKLM\\HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", "~MHz",
                                REG_DWORD, *row.registry);
    }
    if (row.change) row.change(machine);
    EXPECT_EQ(
        SystemLines(run, "ProcessorSpeed"),
        "Processor speed            " + std::string(row.speed) + "\n[Processor speed...       Ok]")
        << row.what;
    EXPECT_EQ(machine.faults.CallCount("ReadTimeStampCounter"), row.measured ? 2u : 0u) << row.what;
    EXPECT_EQ(machine.libraries.References("WINMM.DLL"), 0u) << row.what;
  }
}

TEST(ProcessorItems, AStandingTimerEndsTheMeasuring) {
  ReportRun run;
  static int readings;
  readings = 0;
  std::uint32_t megahertz = 7;
  run.machine().hardware.processor.leaves = {{1, {.edx = 1U << 4}}};
  EXPECT_FALSE(CountMegahertz([]() -> DWORD { return ++readings < 3 ? readings : 3; }, megahertz));
  EXPECT_EQ(megahertz, 0u);
  EXPECT_FALSE(
      CountMegahertz([]() -> DWORD { return ++readings < 40'000'000 ? 5 : 9; }, megahertz));
}

}  // namespace
}  // namespace hostscope
