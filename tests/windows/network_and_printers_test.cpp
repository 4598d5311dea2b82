// The sections NETWORK and PRINTERS: what the report says beside what the test finds out by other
// code, and what it says without the libraries.

#include <gtest/gtest.h>

#include "platform/win32.h"
#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

constexpr char kOverrides[] = "Software\\Wine\\AppDefaults\\hscope.exe\\DllOverrides";
const std::string kControl = "System\\CurrentControlSet\\Control\\";
const std::string kNet = "{4D36E972-E325-11CE-BFC1-08002BE10318}";

// The report below its last banner, and behind it the first letters of the items' status words.
std::string LastSection(const std::string& profile) {
  const Folder folder;
  std::vector<std::string> list;
  const std::string report = ReportOf(folder, profile, {}, &list);
  std::string text = report.substr(report.rfind("=\r\n\r\n") + 5);
  for (const std::string& line : list)
    if (line.size() > 25) text += line[25];
  return text;
}

std::string ValueLine(const std::string& label, const std::string& value) {
  return Padded(label, 27) + value + "\r\n";
}

std::string Total(const std::string& name, size_t count) {
  return name + " (total " + std::to_string(count) + ")";
}

// "Label (total n)" and what the resolver's list holds.
template <typename Text>
std::string JoinedLine(const char* label, char** list, Text text) {
  std::string joined;
  size_t count = 0;
  for (; list[count] != nullptr; ++count)
    joined += (count == 0 ? "" : ", ") + text(list[count]);
  return ValueLine(Total(label, count), joined);
}

// The lines of this host, as the environment names it and the resolver knows it.
std::string HostLines() {
  char name[256] = {};
  DWORD size = sizeof name;
  GetComputerNameExA(ComputerNamePhysicalDnsHostname, name, &size);
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  std::string text = ValueLine("Host name", name);
  if (const hostent* const host = gethostbyname(name)) {
    text += JoinedLine("Aliases", host->h_aliases, [](char* alias) { return std::string(alias); }) +
            JoinedLine("Host IP", host->h_addr_list, [](char* bytes) {
              std::string dotted;
              for (int i = 0; i < 4; ++i)
                dotted += (i == 0 ? "" : ".") + std::to_string(static_cast<BYTE>(bytes[i]));
              return dotted;
            });
  }
  WSACleanup();
  return text;
}

std::string OwnDomain() {
  char user[256] = {}, domain[256] = {};
  BYTE sid[256];
  DWORD user_size = sizeof user, sid_size = sizeof sid, domain_size = sizeof domain;
  SID_NAME_USE use;
  GetUserNameA(user, &user_size);
  LookupAccountNameA(nullptr, user, sid, &sid_size, domain, &domain_size, &use);
  return domain;
}

class NetworkOnEveryRelease : public EveryRelease {};

TEST_P(NetworkOnEveryRelease, IsAsOtherCodeFindsIt) {
  const bool is_nt = GetParam().has_tokens;
  const std::string client = "Enum\\Network\\HSNET\\0000";
  SeededKeys seeded;
  seeded.Put(kControl + "Class\\HSNET\\0000", {{"NetCfgInstanceId", "{HSNET}"}});
  seeded.Put("System\\CurrentControlSet\\Enum\\HSNET\\CARD\\1",
             {{"ClassGUID", kNet}, {"DeviceDesc", "A card"}, {"Driver", "HSNET\\0000"}});
  seeded.Put("System\\CurrentControlSet\\Services\\{HSNET}\\Parameters\\Tcpip",
             {{"EnableDHCP", "yes"}, {"IPAddress", "10.1.2.3"}, {"SubnetMask", "255.0.0.0"}});
  seeded.Put("Enum\\HSNET\\CARD\\1", {{"DeviceDesc", "A card"}});
  seeded.Put(client, {{"Class", "NetClient"}, {"DeviceDesc", "A client"}, {"MasterCopy", client}});
  const auto net =
      RegistryValue::Text(HKEY_LOCAL_MACHINE, kControl + "Class\\" + kNet, "Class", "Net");
  const auto mail = RegistryValue::Text(HKEY_LOCAL_MACHINE, "Software\\Clients\\Mail", "", "Post");
  EXPECT_EQ(LastSection("[NETWORK]\r\nWinsockInfo=1\r\nDomainName=1\r\nHostName=1\r\nAliases=1\r\n"
                        "IPAddresses=1\r\nNetCards=1\r\nNetClients=1\r\nNetServices=1\r\n"
                        "DefaultEmailClient=1\r\n"),
            FieldLine("Windows sockets", "Version", "2.2") +
                FieldLine("", "Description", "WinSock 2.0") + FieldLine("", "Status", "Running") +
                ValueLine("Domain name", is_nt ? OwnDomain() : "") + HostLines() + "\r\n" +
                FieldLine("Net cards (total 1)", "Description", "A card") +
                FieldLine("", "Manufacturer", "") + FieldLine("", "Driver date", "") +
                (is_nt ? FieldLine("", "IP address", "10.1.2.3") +
                             FieldLine("", "Subnet mask", "255.0.0.0") +
                             FieldLine("", "DHCP enabled", "Yes") + "\r\n" +
                             ValueLine("Net clients", "") + ValueLine("Net services", "")
                       : "\r\n" + ValueLine("Net clients (total 1)", "A client") +
                             "\r\nNet services (total 0)\r\n\r\n") +
                ValueLine("Default email client", "Post") + (is_nt ? "OOOOOOFFO" : "OFOOOOOOO"));
}

TEST(Network, WithoutSockets) {
  const Release release("win95");
  const auto absent = RegistryValue::Text(HKEY_CURRENT_USER, kOverrides, "wsock32", "");
  const auto mail = RegistryValue::Text(HKEY_LOCAL_MACHINE, "Software\\Clients\\Mail", "", "");
  EXPECT_EQ(LastSection("[NETWORK]\r\nWinsockInfo=1\r\nHostName=1\r\nAliases=1\r\nIPAddresses=1\r\n"
                        "DefaultEmailClient=1\r\n"),
            ValueLine("Windows sockets", "") + ValueLine("Host name", "") +
                ValueLine("Aliases", "") + ValueLine("Host IP", "") + "\r\n" +
                ValueLine("Default email client", "none") + "FFFFO");
}

void PutPrinter(SeededKeys& seeded, const std::string& name, const std::string& share,
                DWORD attributes) {
  const std::string key = kControl + "Print\\Printers\\" + name;
  // Nothing is printed, but a printer without a processor and a type of data is not opened.
  seeded.Put(key, {{"Name", name},
                   {"Port", "LPT1:"},
                   {"Share Name", share},
                   {"Printer Driver", "Driver"},
                   {"Print Processor", "winprint"},
                   {"Datatype", "RAW"}});
  RegSetKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), "Attributes", REG_DWORD, &attributes,
                  sizeof attributes);
}

// The printers by the 16-bit functions, and by another record.
std::string ListedPrinters(bool is_nt, const char* default_name) {
  DWORD size = 0, count = 0;
  EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, nullptr, 0, &size, &count);
  std::vector<BYTE> buffer(size);
  EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, buffer.data(), size, &size, &count);
  std::string text, label = Total("Printers", count);
  for (DWORD i = 0; i < count; ++i) {
    const auto& printer = reinterpret_cast<const PRINTER_INFO_2W*>(buffer.data())[i];
    const std::string name = Narrow(printer.pPrinterName);
    const auto has = [&](DWORD bit) { return printer.Attributes & bit ? "Yes" : "No"; };
    const char* const is_default = lstrcmpiA(name.c_str(), default_name) == 0 ? "Yes" : "No";
    text += FieldLine(label, "Name", name) + FieldLine("", "Port", Narrow(printer.pPortName)) +
            FieldLine("", "Default", is_nt ? is_default : has(PRINTER_ATTRIBUTE_DEFAULT)) +
            FieldLine("", "Shared", has(PRINTER_ATTRIBUTE_SHARED)) +
            FieldLine("", "Local", has(PRINTER_ATTRIBUTE_LOCAL)) +
            FieldLine("", "Network", has(PRINTER_ATTRIBUTE_NETWORK)) + "\r\n";
    label.clear();
  }
  return text;
}

class PrintersOnEveryRelease : public EveryRelease {};

TEST_P(PrintersOnEveryRelease, AreAsOtherCodeFindsThem) {
  SeededKeys seeded;
  PutPrinter(seeded, "First", "", PRINTER_ATTRIBUTE_DEFAULT | PRINTER_ATTRIBUTE_NETWORK);
  PutPrinter(seeded, "Second \xE4", "SHARED", PRINTER_ATTRIBUTE_SHARED | PRINTER_ATTRIBUTE_LOCAL);
  for (const bool has_spooler : {true, false}) {
    const auto device = RegistryValue::Text(
        HKEY_CURRENT_USER, "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows", "Device",
        "SECOND \xC4,winspool,LPT1:");
    const auto spooler = RegistryValue::Text(HKEY_CURRENT_USER, kOverrides, "winspool.drv",
                                             has_spooler ? "builtin" : "");
    const std::string details = FieldLine("", "Local", "Yes") + FieldLine("", "Shared", "Yes") +
                                "\r\n" + ListedPrinters(GetParam().has_tokens, "SECOND \xC4") +
                                "OO";
    EXPECT_EQ(LastSection("[PRINTER]\r\nDefault=1\r\nPrinters=1\r\n"),
              FieldLine("Default printer", "Name", "SECOND \xC4") +
                  (has_spooler ? details : "\r\nPrinters\r\nOF"));
  }
}

INSTANTIATE_TEST_SUITE_P(Network, NetworkOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(Printers, PrintersOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
