#include "probes/system/windows_version.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

struct Case {
  const char* what;
  DWORD platform, major, minor, build;
  const char* service_pack_text;
  BYTE product_type;
  bool extended;
  const char* registry_product;
  std::uint32_t registry_service_pack;
  bool hotfix;
  const char* expected;
};

constexpr Case kCases[] = {
    {"95", 1, 4, 0, 0x040003B6, "", 0, false, "", 0, false,
     "Microsoft Windows 95 version 4.0.950 "},
    {"95 B", 1, 4, 0, 0x04000457, " B", 0, false, "", 0, false,
     "Microsoft Windows 95 version 4.0.1111  B"},
    {"95 C", 1, 4, 0, 0x04000457, " C", 0, false, "", 0, false,
     "Microsoft Windows 95 OSR2 version 4.0.1111  C"},
    {"98", 1, 4, 10, 0x040A07CE, "", 0, false, "", 0, false,
     "Microsoft Windows 98 version 4.10.1998 "},
    {"98 SE, build by its low half", 1, 4, 10, 0x040A08AE, " A ", 0, false, "", 0, false,
     "Microsoft Windows 98 SE version 4.10.2222  A "},
    {"letter counts in second place only", 1, 4, 10, 0x040A07CE, "A", 0, false, "", 0, false,
     "Microsoft Windows 98 version 4.10.1998 A"},
    {"Me", 1, 4, 90, 0x045A0BB8, " ", 0, false, "", 0, false,
     "Microsoft Windows Me version 4.90.3000  "},
    {"unknown minor of that family", 1, 4, 20, 5, "x", 3, true, "", 0, false, " version 4.20.5 x"},
    {"unknown major of that family", 1, 5, 0, 5, "", 3, true, "", 0, false, " version 5.0.5 "},
    {"NT 3.51 has no product", 2, 3, 51, 1057, "Service Pack 5", 1, true, "WINNT", 0x600, true,
     "Microsoft Windows NT 3.51 version 3.51.1057 Service Pack 5"},
    {"NT 3.5", 2, 3, 50, 807, "", 3, true, "", 0, false, " Server version 3.50.807 "},
    {"NT 4.0 workstation, 6a", 2, 4, 0, 1381, "Service Pack 6", 2, true, "WINNT", 0x600, true,
     "Microsoft Windows NT 4.0 Workstation version 4.0.1381 (Service Pack 6a)"},
    {"NT 4.0 server, 6", 2, 4, 0, 1381, "x", 0, true, "ServerNT", 0x600, false,
     "Microsoft Windows NT 4.0 Server version 4.0.1381 Service Pack 6"},
    {"NT 4.0 domain controller; the hotfix counts with 6 only", 2, 4, 0, 1381, "x", 0, true,
     "LANMANNT", 0x500, true,
     "Microsoft Windows NT 4.0 Server - Domain controller version 4.0.1381 Service Pack 5"},
    {"NT 4.0 of unknown product and service pack", 2, 4, 0, 1381, "Release 7", 1, true, "WINNTX",
     0x700, false, "Microsoft Windows NT 4.0 version 4.0.1381 Release 7"},
    {"2000", 2, 5, 0, 2195, "Service Pack 4", 1, true, "", 0, false,
     "Microsoft Windows 2000 Professional version 5.0.2195 Service Pack 4"},
    {"2000, plain record only", 2, 5, 0, 2195, "Service Pack 4", 1, false, "", 0, false,
     "Microsoft Windows 2000 version 5.0.2195 Service Pack 4"},
    {"2000 domain controller, registry not asked", 2, 5, 0, 2195, "", 2, true, "WINNT", 0x100,
     false, "Microsoft Windows 2000 Domain controller version 5.0.2195 "},
    {"XP without service pack", 2, 5, 1, 2600, "", 1, true, "", 0, false,
     "Microsoft Windows XP Professional version 5.1.2600 "},
    {"younger than XP", 2, 5, 2, 3790, "", 3, true, "", 0, false, " Server version 5.2.3790 "},
    {"much younger", 2, 6, 1, 7601, "Service Pack 1", 1, true, "", 0, false,
     " Professional version 6.1.7601 Service Pack 1"},
    {"product type of no name", 2, 5, 1, 2600, "", 9, true, "", 0, false,
     "Microsoft Windows XP version 5.1.2600 "},
    {"another platform", 3, 4, 0, 1, "z", 1, true, "WINNT", 0x100, false, " version 4.0.1 z"},
};

TEST(WindowsVersion, TextOfEveryRelease) {
  host::Machine machine;
  const host::UseMachine use(machine);
  for (const Case& row : kCases) {
    SCOPED_TRACE(row.what);
    WindowsVersionFacts facts;
    facts.record.dwPlatformId = row.platform;
    facts.record.dwMajorVersion = row.major;
    facts.record.dwMinorVersion = row.minor;
    facts.record.dwBuildNumber = row.build;
    std::strcpy(facts.record.szCSDVersion, row.service_pack_text);
    facts.record.wProductType = row.product_type;
    facts.extended = row.extended;
    CopyText(facts.product_type, row.registry_product);
    facts.service_pack = row.registry_service_pack;
    facts.hotfix_q246009 = row.hotfix;
    std::array<char, 1024> text = {};
    FormatWindowsVersionFacts(facts, text);
    EXPECT_EQ(std::string(text.data()), row.expected);
  }
}

class RunningWindows : public testing::Test {
 protected:
  RunningWindows() : use_(machine_) { test::DescribeWindows2000(machine_); }

  std::string Text() {
    ProbeContext context;
    succeeded_ = FormatWindowsVersion(context, text_);
    return text_.data();
  }
  void BecomeNt4() {
    machine_.version = {.major = 4,
                        .minor = 0,
                        .build = 1381,
                        .platform_id = VER_PLATFORM_WIN32_NT,
                        .service_pack_text = "Service Pack 6"};
  }
  void SetBytes(const char* key, const char* name, DWORD type, std::string_view bytes) {
    machine_.registry.SetValue(key, name, type, bytes);
  }

  static constexpr char kProduct[] = "HKLM\\SYSTEM\\CurrentControlSet\\Control\\ProductOptions";
  static constexpr char kWindows[] = "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Windows";
  static constexpr char kHotfix[] =
      "HKLM\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Hotfix\\Q246009";

  host::Machine machine_;
  host::UseMachine use_;
  std::array<char, 32767> text_ = {};
  bool succeeded_ = false;
};

TEST_F(RunningWindows, FallsBackToTheOlderRecordWhoseTextMayHaveNoEnd) {
  EXPECT_EQ(Text(), "Microsoft Windows 2000 Professional version 5.0.2195 Service Pack 4");
  machine_.version.extended_record = false;
  EXPECT_EQ(Text(), "Microsoft Windows 2000 version 5.0.2195 Service Pack 4");
  machine_.faults.FailAlways("GetVersionExA", ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Text(), "");
  EXPECT_FALSE(succeeded_);
  machine_.faults.Forget();
  machine_.version.extended_record = true;
  machine_.version.service_pack_text = std::string(300, 'p');
  EXPECT_EQ(Text(),
            "Microsoft Windows 2000 Professional version 5.0.2195 " + std::string(127, 'p'));
}

TEST_F(RunningWindows, Nt4AsksItsRegistry) {
  BecomeNt4();
  EXPECT_EQ(Text(), "Microsoft Windows NT 4.0 version 4.0.1381 Service Pack 6");
  machine_.registry.SetText(kProduct, "ProductType", "WinNT");
  machine_.registry.SetDword(kWindows, "CSDVersion", 0x600);
  EXPECT_EQ(Text(), "Microsoft Windows NT 4.0 Workstation version 4.0.1381 Service Pack 6");
  machine_.registry.SetDword(kHotfix, "Installed", 1);
  EXPECT_EQ(Text(), "Microsoft Windows NT 4.0 Workstation version 4.0.1381 (Service Pack 6a)");
  machine_.registry.SetDword(kHotfix, "Installed", 2);
  EXPECT_EQ(Text(), "Microsoft Windows NT 4.0 Workstation version 4.0.1381 Service Pack 6");
}

TEST_F(RunningWindows, Nt4RegistryOfAnyTypeAndSize) {
  BecomeNt4();
  constexpr struct {
    const char *what, *product;
    std::size_t product_size;
    const char* pack;
    std::size_t pack_size;
    const char* expected;
  } kRows[] = {
      {"unterminated product", "SERVERNT", 8, "\0\2\0\0", 4,
       "Microsoft Windows NT 4.0 Server version 4.0.1381 Service Pack 2"},
      {"empty values", "", 0, "", 0, "Microsoft Windows NT 4.0 version 4.0.1381 Service Pack 6"},
      {"product far too long", "WINNTWINNTWINNTWINNTWINNTWINNTWINNTWINNTWINNT", 45, "\0\3\0\0", 4,
       "Microsoft Windows NT 4.0 version 4.0.1381 Service Pack 3"},
      {"service pack of two bytes", "WINNT\0WINNT", 11, "\0\3", 2,
       "Microsoft Windows NT 4.0 Workstation version 4.0.1381 Service Pack 6"},
      {"service pack of eight bytes", "WINNT", 6, "\0\1\0\0\7\7\7\7", 8,
       "Microsoft Windows NT 4.0 Workstation version 4.0.1381 Service Pack 1"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    SetBytes(kProduct, "ProductType", REG_BINARY, {row.product, row.product_size});
    SetBytes(kWindows, "CSDVersion", REG_BINARY, {row.pack, row.pack_size});
    EXPECT_EQ(Text(), row.expected);
  }
}

}  // namespace
}  // namespace hostscope
