// Processor, memory and free resources: what the report says beside what the test
// finds out by other code.

#include <cpuid.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

struct Leaf {
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  explicit Leaf(unsigned number) { __cpuid(number, eax, ebx, ecx, edx); }
};

std::string ProcessorName() {
  const Leaf vendor(0);
  const unsigned parts[] = {vendor.ebx, vendor.edx, vendor.ecx};
  char brand[49] = {};
  for (unsigned i = 0; i < 3 && Leaf(0x80000000).eax >= 0x80000004; ++i) {
    const Leaf part(0x80000002 + i);
    std::memcpy(brand + i * 16, &part, 16);
  }
  return std::string(reinterpret_cast<const char*>(parts), 12) + " " + brand;
}

const char* Answer(unsigned word, unsigned bit) {
  return (word >> bit & 1) != 0 ? "Yes" : "No";
}

// Where the release does not let the program read it, the speed is measured, on a busy machine.
void ExpectSpeed(const std::string& line, bool is_nt) {
  DWORD stated = 0, size = sizeof stated;
  RegGetValueA(HKEY_LOCAL_MACHINE, "HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", "~MHz",
               RRF_RT_ANY, nullptr, &stated, &size);
  unsigned megahertz = 0;
  ASSERT_EQ(std::sscanf(line.c_str(), "Processor speed            %u MHz", &megahertz), 1) << line;
  EXPECT_GE(megahertz, is_nt ? stated : stated / 2);
  EXPECT_LE(megahertz, is_nt ? stated : stated * 2);
}

void ExpectMemory(const std::string& usage, const std::string& physical) {
  MEMORYSTATUSEX status = {};
  status.dwLength = sizeof status;
  GlobalMemoryStatusEx(&status);
  unsigned load = 999, total = 0, available = 0;
  ASSERT_EQ(std::sscanf(usage.c_str(), "Memory usage               %u%%", &load), 1) << usage;
  EXPECT_NEAR(load, status.dwMemoryLoad, 25);
  ASSERT_EQ(std::sscanf(physical.c_str(), "Physical memory            total %u Mb, available %u Mb",
                        &total, &available),
            2)
      << physical;
  EXPECT_EQ(total, status.ullTotalPhys >> 20);
  EXPECT_NEAR(available, static_cast<double>(status.ullAvailPhys >> 20), total / 4.0);
}

class HardwareOnEveryRelease : public EveryRelease {};

TEST_P(HardwareOnEveryRelease, IsAsOtherCodeFindsIt) {
  const Folder folder;
  const std::string meter = BuiltFile("rsrc32.dll");
  ASSERT_TRUE(CopyFileA(meter.c_str(), folder.Path("RSRC32.dll").c_str(), FALSE)) << meter;
  std::string profile = "[SYSTEM]\r\n";
  for (const char* const key : {"ProcessorsCount", "ProcessorName", "ProcessorSpeed", "CoProcessor",
                                "MMX", "3DNow", "Extended3DNow", "SSE", "SSE2", "MemoryUsage",
                                "PhysicalMemory", "FreeSystemResources", "FreeUserResources"})
    profile += std::string(key) + "=1\r\n";
  auto lines = ReportLines(ReportOf(folder, profile));
  const bool is_nt = GetParam().has_tokens;
  SYSTEM_INFO system;
  GetSystemInfo(&system);
  const unsigned standard = Leaf(1).edx;
  const unsigned extended = Leaf(0x80000000).eax > 0x80000000 ? Leaf(0x80000001).edx : 0;
  ASSERT_EQ(lines.size(), 20u);
  ExpectSpeed(lines[8], is_nt);
  ExpectMemory(lines[15], lines[16]);
  lines.erase(lines.begin() + 15, lines.begin() + 17);
  lines.erase(lines.begin() + 8);
  lines.erase(lines.begin(), lines.begin() + 6);
  const std::vector<std::string> expected = {
      "Number of processors       " + std::to_string(system.dwNumberOfProcessors),
      "Processor name             " + ProcessorName(),
      "Coprocessor                " + std::string(Answer(standard, 0)),
      "MMX support                " + std::string(Answer(standard, 23)),
      "3DNow support              " + std::string(Answer(extended, 31)),
      "Extended 3DNow             " + std::string(Answer(extended, 30)),
      "SSE support                " + std::string(Answer(standard, 25)),
      "SSE2 support               " + std::string(Answer(standard, 26)),
      "Free resources             System         :  " + std::string(is_nt ? "" : "50%"),
      "                           User           :  " + std::string(is_nt ? "" : "52%"),
      ""};
  EXPECT_EQ(lines, expected);
}

INSTANTIATE_TEST_SUITE_P(Hardware, HardwareOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
