#include "probes/system/windows_version.h"

#include <cstddef>

#include "util/number_text.h"
#include "util/registry.h"
#include "util/text.h"

namespace hostscope {
namespace {

inline constexpr DWORD kExtendedRecordSize = 156;
inline constexpr DWORD kPlainRecordSize = 148;
static_assert(sizeof(OSVERSIONINFOEXA) == kExtendedRecordSize);
static_assert(sizeof(OSVERSIONINFOA) == kPlainRecordSize);

// Windows 95/98/Me: releases of one minor version are told apart by the second character of the
// service-pack text; 0 fits any. The first row that fits counts.
struct ReleaseRow {
  DWORD minor;
  char letter;
  const char* name;
};
constexpr ReleaseRow kWindows9xReleases[] = {
    {0, 'C', "Microsoft Windows 95 OSR2"}, {0, 0, "Microsoft Windows 95"},
    {10, 'A', "Microsoft Windows 98 SE"},  {10, 0, "Microsoft Windows 98"},
    {90, 0, "Microsoft Windows Me"},
};

// Where the product of an NT release is found.
enum class ProductSource : std::uint8_t { kNone, kRecord, kRegistry };

struct NtReleaseRow {
  DWORD major;
  DWORD minor;
  const char* name;
  ProductSource product;
};
inline constexpr DWORD kAnyMinor = 0xFFFFFFFF;
constexpr NtReleaseRow kNtReleases[] = {
    {3, 51, "Microsoft Windows NT 3.51", ProductSource::kNone},
    {4, kAnyMinor, "Microsoft Windows NT 4.0", ProductSource::kRegistry},
    {5, 0, "Microsoft Windows 2000", ProductSource::kRecord},
    {5, 1, "Microsoft Windows XP", ProductSource::kRecord},
};
constexpr NtReleaseRow kOtherNtRelease = {0, 0, "", ProductSource::kRecord};

// The product words carry their own trailing blank, so that an absent one leaves none behind.
constexpr NumberText kProductTypes[] = {
    {1, "Professional "}, {2, "Domain controller "}, {3, "Server "}};

struct RegistryProductRow {
  const char* type;
  const char* product;
};
constexpr RegistryProductRow kRegistryProducts[] = {{"WINNT", "Workstation "},
                                                    {"SERVERNT", "Server "},
                                                    {"LANMANNT", "Server - Domain controller "}};

struct ServicePackRow {
  std::uint32_t number;
  bool hotfix;
  const char* text;
};
constexpr ServicePackRow kServicePacks[] = {
    {0x100, false, "Service Pack 1"}, {0x200, false, "Service Pack 2"},
    {0x300, false, "Service Pack 3"}, {0x400, false, "Service Pack 4"},
    {0x500, false, "Service Pack 5"}, {0x600, true, "(Service Pack 6a)"},
    {0x600, false, "Service Pack 6"},
};

const char* Windows9xName(const OSVERSIONINFOEXA& record) {
  if (record.dwMajorVersion != 4) return "";
  for (const ReleaseRow& row : kWindows9xReleases) {
    const bool letter_fits = row.letter == 0 || record.szCSDVersion[1] == row.letter;
    if (record.dwMinorVersion == row.minor && letter_fits) return row.name;
  }
  return "";
}

const NtReleaseRow& NtRelease(const OSVERSIONINFOEXA& record) {
  for (const NtReleaseRow& row : kNtReleases) {
    const bool minor_fits = row.minor == kAnyMinor || record.dwMinorVersion == row.minor;
    if (record.dwMajorVersion == row.major && minor_fits) return row;
  }
  return kOtherNtRelease;
}

const char* RecordProduct(const WindowsVersionFacts& facts) {
  if (!facts.extended) return "";
  return TextOfNumber(kProductTypes, facts.record.wProductType, "");
}

const char* RegistryProduct(const WindowsVersionFacts& facts) {
  for (const RegistryProductRow& row : kRegistryProducts) {
    if (SameTextIgnoringCase(facts.product_type, row.type)) return row.product;
  }
  return "";
}

const char* Product(const WindowsVersionFacts& facts, ProductSource source) {
  switch (source) {
    case ProductSource::kRecord:
      return RecordProduct(facts);
    case ProductSource::kRegistry:
      return RegistryProduct(facts);
    case ProductSource::kNone:
      break;
  }
  return "";
}

// NT 4.0 knows better than its version record which service pack it has; null when it does not.
const char* RegistryServicePack(const WindowsVersionFacts& facts) {
  for (const ServicePackRow& row : kServicePacks) {
    if (facts.service_pack == row.number && (!row.hotfix || facts.hotfix_q246009)) return row.text;
  }
  return nullptr;
}

bool ReadVersionRecord(WindowsVersionFacts& facts) {
  auto* const record = reinterpret_cast<OSVERSIONINFOA*>(&facts.record);
  facts.record.dwOSVersionInfoSize = kExtendedRecordSize;
  facts.extended = GetVersionExA(record) != 0;
  if (!facts.extended) {
    facts.record.dwOSVersionInfoSize = kPlainRecordSize;
    if (GetVersionExA(record) == 0) return false;
  }
  facts.record.szCSDVersion[sizeof facts.record.szCSDVersion - 1] = '\0';
  return true;
}

void ReadNt4Registry(WindowsVersionFacts& facts) {
  const RegistryValue product = ReadRegistryValue(
      HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet\\Control\\ProductOptions", "ProductType");
  CopyText(facts.product_type, product.AsText().c_str());
  facts.service_pack =
      ReadRegistryValue(HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet\\Control\\Windows",
                        "CSDVersion")
          .FirstNumber();
  facts.hotfix_q246009 =
      facts.service_pack == 0x600 &&
      ReadRegistryValue(HKEY_LOCAL_MACHINE,
                        "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Hotfix\\Q246009",
                        "Installed")
              .FirstNumber() == 1;
}

}  // namespace

void FormatWindowsVersionFacts(const WindowsVersionFacts& facts, std::span<char> text) {
  const OSVERSIONINFOEXA& record = facts.record;
  const char* name = "";
  const char* product = "";
  const char* service_pack = nullptr;
  if (record.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS) {
    name = Windows9xName(record);
  } else if (record.dwPlatformId == VER_PLATFORM_WIN32_NT) {
    const NtReleaseRow& release = NtRelease(record);
    name = release.name;
    product = Product(facts, release.product);
    if (release.product == ProductSource::kRegistry) service_pack = RegistryServicePack(facts);
  }
  // The high half of the build number repeats the version on Windows 95/98/Me.
  wsprintfA(text.data(), "%s %sversion %d.%d.%d %s", name, product,
            static_cast<int>(record.dwMajorVersion), static_cast<int>(record.dwMinorVersion),
            static_cast<int>(LOWORD(record.dwBuildNumber)),
            service_pack != nullptr ? service_pack : record.szCSDVersion);
  EndFormatted(text);
}

bool FormatWindowsVersion(ProbeContext&, std::span<char> text) {
  text.front() = '\0';
  WindowsVersionFacts facts;
  if (!ReadVersionRecord(facts)) return false;
  if (facts.record.dwPlatformId == VER_PLATFORM_WIN32_NT &&
      NtRelease(facts.record).product == ProductSource::kRegistry) {
    ReadNt4Registry(facts);
  }
  FormatWindowsVersionFacts(facts, text);
  return true;
}

}  // namespace hostscope
