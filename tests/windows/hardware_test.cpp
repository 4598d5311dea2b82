// BIOS, processor, memory, page files and free resources: what the report says beside what the test
// finds out by other code.

#include <cpuid.h>
#include <gtest/gtest.h>
#include <x86intrin.h>

#include <cstdio>
#include <cstring>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"
#include "tests/windows/expected.h"

namespace drive {
namespace {

constexpr const char* kKeys[] = {"BIOSVersion",
                                 "ProcessorsCount",
                                 "ProcessorName",
                                 "CoProcessor",
                                 "MMX",
                                 "3DNow",
                                 "Extended3DNow",
                                 "SSE",
                                 "SSE2",
                                 "ProcessorSpeed",
                                 "MemoryUsage",
                                 "PhysicalMemory",
                                 "Pagefiles",
                                 "FreeSystemResources",
                                 "FreeGDIResources",
                                 "FreeUserResources"};

struct Leaf {
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  explicit Leaf(unsigned number) { __cpuid(number, eax, ebx, ecx, edx); }
};

std::string ProcessorName() {
  const Leaf vendor(0);
  char text[12 + 1 + 48 + 1] = {};
  std::memcpy(text, &vendor.ebx, 4);
  std::memcpy(text + 4, &vendor.edx, 4);
  std::memcpy(text + 8, &vendor.ecx, 4);
  text[12] = ' ';
  for (unsigned i = 0; i < 3 && Leaf(0x80000000).eax >= 0x80000004; ++i) {
    const Leaf brand(0x80000002 + i);
    std::memcpy(text + 13 + i * 16, &brand, 16);
  }
  return text;
}

const char* Answer(unsigned word, unsigned bit) {
  return (word >> bit & 1) != 0 ? "Yes" : "No";
}

// Counted over a tenth of a second of another clock.
double MeasuredMegahertz() {
  LARGE_INTEGER frequency, begin, end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&begin);
  const unsigned long long counter = __rdtsc();
  do {
    QueryPerformanceCounter(&end);
  } while (end.QuadPart - begin.QuadPart < frequency.QuadPart / 10);
  const double seconds =
      static_cast<double>(end.QuadPart - begin.QuadPart) / static_cast<double>(frequency.QuadPart);
  return static_cast<double>(__rdtsc() - counter) / seconds / 1e6;
}

DWORD StatedMegahertz() {
  DWORD number = 0, size = sizeof number;
  RegGetValueA(HKEY_LOCAL_MACHINE, "HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", "~MHz",
               RRF_RT_ANY, nullptr, &number, &size);
  return number;
}

// Takes the line of the label off the front: its value.
std::string TakeValue(std::vector<std::string>& lines, const std::string& label) {
  const std::string line = lines.empty() ? "no line" : lines.front();
  if (!lines.empty()) lines.erase(lines.begin());
  EXPECT_EQ(line.substr(0, 27), Padded(label, 27));
  return line.size() < 27 ? "" : line.substr(27);
}

void ExpectSpeed(const std::string& value, bool stated) {
  unsigned megahertz = 0;
  ASSERT_EQ(std::sscanf(value.c_str(), "%u MHz", &megahertz), 1) << value;
  EXPECT_EQ(value, std::to_string(megahertz) + " MHz");
  if (stated && StatedMegahertz() != 0) {
    EXPECT_EQ(megahertz, StatedMegahertz());
  } else {
    // The wait may last longer on a busy machine; the low half of the counter goes round.
    EXPECT_NEAR(megahertz, MeasuredMegahertz(), MeasuredMegahertz() / 4);
  }
}

void ExpectMemory(const std::string& usage, const std::string& physical) {
  MEMORYSTATUSEX status = {};
  status.dwLength = sizeof status;
  GlobalMemoryStatusEx(&status);
  unsigned load = 0, total = 0, available = 0;
  ASSERT_EQ(std::sscanf(usage.c_str(), "%u%%", &load), 1) << usage;
  EXPECT_EQ(usage, std::to_string(load) + "%");
  EXPECT_NEAR(load, status.dwMemoryLoad, 20);
  ASSERT_EQ(std::sscanf(physical.c_str(), "total %u Mb, available %u Mb", &total, &available), 2);
  EXPECT_EQ(physical, "total " + std::to_string(total) + " Mb, available " +
                          std::to_string(available) + " Mb");
  EXPECT_EQ(total, status.ullTotalPhys >> 20);
  EXPECT_NEAR(available, static_cast<double>(status.ullAvailPhys >> 20), total / 5.0);
}

// A setting of system.ini, taken out again.
struct SystemIniSetting {
  SystemIniSetting(const char* key, const char* value) : key_(key) { Write(value); }
  ~SystemIniSetting() { Write(nullptr); }
  void Write(const char* value) { WritePrivateProfileStringA("386Enh", key_, value, "system.ini"); }
  const char* key_;
};

class HardwareOnEveryRelease : public EveryRelease {};

TEST_P(HardwareOnEveryRelease, IsAsOtherCodeFindsIt) {
  const bool is_nt = GetParam().has_tokens;
  const auto nt_bios = RegistryValue::Text(HKEY_LOCAL_MACHINE, "HARDWARE\\DESCRIPTION\\System",
                                           "SystemBiosVersion", "NT BIOS");
  const auto old_bios = RegistryValue::Text(HKEY_LOCAL_MACHINE, "Enum\\Root\\*PNP0C01\\0000",
                                            "BIOSVersion", "4.51 PG");
  const auto old_date =
      RegistryValue::Text(HKEY_LOCAL_MACHINE, "Enum\\Root\\*PNP0C01\\0000", "BIOSDate", "03/29/99");
  const RegistryValue page_files(
      HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Memory Management",
      "PagingFiles", REG_MULTI_SZ, std::string("C:\\p.sys 27 77\0second\0", 23));
  const SystemIniSetting minimum("MinPagingFileSize", "131072");
  const Folder folder;
  // The library of the resource meter, as the build has made it for this test, lies beside it.
  const std::string built = BuiltFile("rsrc32.dll");
  ASSERT_TRUE(CopyFileA(built.c_str(), folder.Path("RSRC32.dll").c_str(), FALSE)) << built;
  std::string profile = "[SYSTEM]\r\n";
  for (const char* const key : kKeys)
    profile += std::string(key) + "=1\r\n";
  folder.Write("test.ini", profile);
  Program program(folder, {.arguments = {"test.ini"}});
  ASSERT_TRUE(program.WaitUntilFinished());
  for (const std::string& line : program.Lines())
    EXPECT_EQ(line.find("Failed"), std::string::npos) << line;
  TypeKey(program.dialog(), 'X');
  EXPECT_EQ(program.WaitForExit(), 0u);

  auto lines = ReportLines(folder.Read("hscope.txt").value_or(""));
  lines.erase(lines.begin(), lines.begin() + std::min<size_t>(lines.size(), 6));
  EXPECT_EQ(TakeValue(lines, "BIOS vesion"), is_nt ? "NT BIOS" : "4.51 PG (03/29/99)");
  SYSTEM_INFO system;
  GetSystemInfo(&system);
  EXPECT_EQ(TakeValue(lines, "Number of processors"), std::to_string(system.dwNumberOfProcessors));
  EXPECT_EQ(TakeValue(lines, "Processor name"), ProcessorName());
  ExpectSpeed(TakeValue(lines, "Processor speed"), is_nt);
  const unsigned standard = Leaf(1).edx;
  const unsigned extended = Leaf(0x80000000).eax > 0x80000000 ? Leaf(0x80000001).edx : 0;
  EXPECT_EQ(TakeValue(lines, "Coprocessor"), Answer(standard, 0));
  EXPECT_EQ(TakeValue(lines, "MMX support"), Answer(standard, 23));
  EXPECT_EQ(TakeValue(lines, "3DNow support"), Answer(extended, 31));
  EXPECT_EQ(TakeValue(lines, "Extended 3DNow"), Answer(extended, 30));
  EXPECT_EQ(TakeValue(lines, "SSE support"), Answer(standard, 25));
  EXPECT_EQ(TakeValue(lines, "SSE2 support"), Answer(standard, 26));
  const std::string usage = TakeValue(lines, "Memory usage");
  ExpectMemory(usage, TakeValue(lines, "Physical memory"));
  char windows[MAX_PATH] = {};
  GetWindowsDirectoryA(windows, MAX_PATH);
  EXPECT_EQ(TakeValue(lines, "Pagefile space"),
            is_nt ? "C:\\p.sys, size 0 Mb, min 27 Mb, max 77 Mb"
                  : std::string(windows) + "\\Win386.swp, size 0 Mb, min 128 Mb, max ? Mb");
  EXPECT_EQ(TakeValue(lines, "Free resources"),
            is_nt ? "System         :  " : "System         :  50%");
  EXPECT_EQ(TakeValue(lines, ""), is_nt ? "GDI            :  " : "GDI            :  51%");
  EXPECT_EQ(TakeValue(lines, ""), is_nt ? "User           :  " : "User           :  52%");
  EXPECT_EQ(lines, std::vector<std::string>{""});
}

INSTANTIATE_TEST_SUITE_P(Hardware, HardwareOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
