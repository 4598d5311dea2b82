// The sections NETWORK and PRINTERS: what the report says beside what the test finds out by other
// code, and what it says without the libraries.

#include <gtest/gtest.h>

#include "platform/win32.h"
#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

using namespace std::string_literals;

constexpr char kOverrides[] = "Software\\Wine\\AppDefaults\\hscope.exe\\DllOverrides";
const std::string kControl = "System\\CurrentControlSet\\Control\\";
const std::string kNet = "{4D36E972-E325-11CE-BFC1-08002BE10318}";
const std::string kNetClient = "{4D36E973-E325-11CE-BFC1-08002BE10318}";

std::string LastSection(const std::string& report) {
  const size_t rule = report.rfind("=\r\n\r\n");
  return rule == std::string::npos ? report : report.substr(rule + 5);
}

std::string ValueLine(const std::string& label, const std::string& value) {
  return Padded(label, 27) + value + "\r\n";
}

// Keys of the local machine that go with the object.
struct SeededKeys {
  ~SeededKeys() {
    for (const std::string& key : keys)
      RegDeleteTreeA(HKEY_LOCAL_MACHINE, key.c_str());
  }
  void Put(const std::string& key,
           std::initializer_list<std::pair<const char*, std::string>> texts) {
    keys.push_back(key);
    PutTexts(key, texts);
  }
  std::vector<std::string> keys;
};

// A card, a client and a service, in the keys of both families.
void PutComponents(SeededKeys& seeded) {
  const std::string card = "Enum\\HSNET\\CARD\\1",
                    services = "System\\CurrentControlSet\\Services\\";
  const std::string client = "Enum\\Network\\HSNET\\0000";
  seeded.Put(kControl + "Class\\HSNET\\0000", {{"NetCfgInstanceId", "{HSNET}"}});
  seeded.Put("System\\CurrentControlSet\\" + card,
             {{"ClassGUID", kNet}, {"DeviceDesc", "A card"}, {"Driver", "HSNET\\0000"}});
  seeded.Put(services + "{HSNET}\\Parameters\\Tcpip",
             {{"EnableDHCP", "yes"}, {"IPAddress", "10.1.2.3"}, {"SubnetMask", "255.0.0.0"}});
  seeded.Put(kControl + "Network\\" + kNetClient + "\\HSNET", {{"Description", "A client"}});
  seeded.Put(card, {{"DeviceDesc", "A card"}});
  seeded.Put(client, {{"Class", "NetClient"}, {"DeviceDesc", "A client"}, {"MasterCopy", client}});
}

struct Host {
  std::string name, aliases, addresses;
  int alias_count = 0, address_count = 0;
};

// This host, as the environment names it and the resolver knows it.
Host OwnHost() {
  Host own;
  char name[256] = {};
  DWORD size = sizeof name;
  GetComputerNameExA(ComputerNamePhysicalDnsHostname, name, &size);
  own.name = name;
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  if (const hostent* const host = gethostbyname(name)) {
    for (char** alias = host->h_aliases; *alias != nullptr; ++alias)
      own.aliases += (own.alias_count++ == 0 ? "" : ", ") + std::string(*alias);
    for (char** entry = host->h_addr_list; *entry != nullptr; ++entry) {
      own.addresses += own.address_count++ == 0 ? "" : ", ";
      for (int i = 0; i < 4; ++i)
        own.addresses += (i == 0 ? "" : ".") + std::to_string(static_cast<BYTE>((*entry)[i]));
    }
  }
  WSACleanup();
  return own;
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

std::string Total(const char* name, int count) {
  return name + " (total "s + std::to_string(count) + ")";
}

class NetworkOnEveryRelease : public EveryRelease {};

TEST_P(NetworkOnEveryRelease, IsAsOtherCodeFindsIt) {
  const bool is_nt = GetParam().has_tokens;
  SeededKeys seeded;
  PutComponents(seeded);
  const auto net =
      RegistryValue::Text(HKEY_LOCAL_MACHINE, kControl + "Class\\" + kNet, "Class", "Net");
  const auto clients = RegistryValue::Text(HKEY_LOCAL_MACHINE, kControl + "Class\\" + kNetClient,
                                           "Class", "NetClient");
  const auto mail = RegistryValue::Text(HKEY_LOCAL_MACHINE, "Software\\Clients\\Mail", "", "Post");
  const Host own = OwnHost();
  ASSERT_NE(own.address_count, 0) << own.name << " must be a host that resolves";
  const Folder folder;
  std::vector<std::string> list;
  const std::string report =
      ReportOf(folder,
               "[NETWORK]\r\nWinsockInfo=1\r\nDomainName=1\r\nHostName=1\r\nAliases=1\r\n"
               "IPAddresses=1\r\nNetCards=1\r\nNetClients=1\r\nNetServices=1\r\n"
               "DefaultEmailClient=1\r\n",
               {}, &list);
  EXPECT_EQ(LastSection(report),
            FieldLine("Windows sockets", "Version", "2.2") +
                FieldLine("", "Description", "WinSock 2.0") + FieldLine("", "Status", "Running") +
                ValueLine("Domain name", is_nt ? OwnDomain() : "") +
                ValueLine("Host name", own.name) +
                ValueLine(Total("Aliases", own.alias_count), own.aliases) +
                ValueLine(Total("Host IP", own.address_count), own.addresses) + "\r\n" +
                FieldLine("Net cards (total 1)", "Description", "A card") +
                FieldLine("", "Manufacturer", "") + FieldLine("", "Driver date", "") +
                (is_nt ? FieldLine("", "IP address", "10.1.2.3") +
                             FieldLine("", "Subnet mask", "255.0.0.0") +
                             FieldLine("", "DHCP enabled", "Yes")
                       : "") +
                "\r\n" + ValueLine("Net clients (total 1)", "A client") + "\r\n" +
                (is_nt ? ValueLine("Net services", "") : "Net services (total 0)\r\n\r\n") +
                ValueLine("Default email client", "Post"));
  std::string statuses;
  for (const std::string& line : list)
    statuses += line.size() > 25 ? line.substr(25, 1) : "";
  EXPECT_EQ(statuses, is_nt ? "OOOOOOOFO" : "OFOOOOOOO");
}

TEST_P(NetworkOnEveryRelease, WithoutSockets) {
  const auto absent = RegistryValue::Text(HKEY_CURRENT_USER, kOverrides, "wsock32", "");
  const auto mail = RegistryValue::Text(HKEY_LOCAL_MACHINE, "Software\\Clients\\Mail", "", "");
  const Folder folder;
  std::vector<std::string> list;
  const std::string report = ReportOf(folder,
                                      "[NETWORK]\r\nWinsockInfo=1\r\nHostName=1\r\nAliases=1\r\n"
                                      "IPAddresses=1\r\nDefaultEmailClient=1\r\n",
                                      {}, &list);
  EXPECT_EQ(LastSection(report), ValueLine("Windows sockets", "") + ValueLine("Host name", "") +
                                     ValueLine("Aliases", "") + ValueLine("Host IP", "") + "\r\n" +
                                     ValueLine("Default email client", "none"));
  const std::vector<std::string> expected = {ProgressLine("Windows sockets...", "Failed"),
                                             ProgressLine("Host name...", "Failed"),
                                             ProgressLine("Aliases...", "Failed"),
                                             ProgressLine("IP addresses...", "Failed"),
                                             ProgressLine("Default email client...", "Ok"),
                                             "",
                                             kLastLine};
  EXPECT_EQ(list, expected);
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

const char* YesOrNo(bool answer) {
  return answer ? "Yes" : "No";
}

// The printers by the 16-bit functions, and by another record.
std::string ListedPrinters(bool is_nt, const char* default_name) {
  DWORD size = 0, count = 0;
  EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, nullptr, 0, &size, &count);
  std::vector<BYTE> buffer(size);
  EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, buffer.data(), size, &size, &count);
  const auto* const printers = reinterpret_cast<const PRINTER_INFO_2W*>(buffer.data());
  std::string text, label = Total("Printers", static_cast<int>(count));
  if (count == 0) text = label + "\r\n";
  for (DWORD i = 0; i < count; ++i) {
    const DWORD attributes = printers[i].Attributes;
    const std::string name = Narrow(printers[i].pPrinterName);
    text += FieldLine(label, "Name", name) + FieldLine("", "Port", Narrow(printers[i].pPortName)) +
            FieldLine("", "Default",
                      YesOrNo(is_nt ? lstrcmpiA(name.c_str(), default_name) == 0
                                    : (attributes & PRINTER_ATTRIBUTE_DEFAULT) != 0)) +
            FieldLine("", "Shared", YesOrNo((attributes & PRINTER_ATTRIBUTE_SHARED) != 0)) +
            FieldLine("", "Local", YesOrNo((attributes & PRINTER_ATTRIBUTE_LOCAL) != 0)) +
            FieldLine("", "Network", YesOrNo((attributes & PRINTER_ATTRIBUTE_NETWORK) != 0)) +
            "\r\n";
    label.clear();
  }
  return text;
}

class PrintersOnEveryRelease : public EveryRelease {};

TEST_P(PrintersOnEveryRelease, AreAsOtherCodeFindsThem) {
  const bool is_nt = GetParam().has_tokens;
  SeededKeys seeded;
  PutPrinter(seeded, "First", "", PRINTER_ATTRIBUTE_DEFAULT | PRINTER_ATTRIBUTE_NETWORK);
  PutPrinter(seeded, "Second \xE4", "SHARED", PRINTER_ATTRIBUTE_SHARED | PRINTER_ATTRIBUTE_LOCAL);
  const struct {
    const char* what;
    const char* device;
    const char* name;
    const char* local_and_shared;  // empty: neither line
    bool has_spooler = true;
  } rows[] = {
      {"a shared one, in another case", "SECOND \xC4,winspool,LPT1:", "SECOND \xC4", "Yes"},
      {"one that is not shared", "First", "First", "No"},
      {"one that is not there", "Third,winspool,LPT1:", "Third", ""},
      {"none", "", "", ""},
      {"no library", "First,winspool,LPT1:", "First", "", false},
  };
  for (const auto& row : rows) {
    const auto device = RegistryValue::Text(
        HKEY_CURRENT_USER, "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows", "Device",
        row.device);
    const auto absent = RegistryValue::Text(HKEY_CURRENT_USER, kOverrides, "winspool.drv",
                                            row.has_spooler ? "builtin" : "");
    const Folder folder;
    std::vector<std::string> list;
    const std::string report =
        ReportOf(folder, "[PRINTER]\r\nDefault=1\r\nPrinters=1\r\n", {}, &list);
    std::string expected = *row.name == '\0' ? ValueLine("Default printer", "Unknown")
                                             : FieldLine("Default printer", "Name", row.name);
    if (*row.local_and_shared != '\0')
      expected += FieldLine("", "Local", "Yes") + FieldLine("", "Shared", row.local_and_shared);
    expected += "\r\n" + (row.has_spooler ? ListedPrinters(is_nt, row.name) : "Printers\r\n"s);
    EXPECT_EQ(LastSection(report), expected) << row.what;
    const std::vector<std::string> progress = {
        ProgressLine("Default printer...", "Ok"),
        ProgressLine("Printers...", row.has_spooler ? "Ok" : "Failed"), "", kLastLine};
    EXPECT_EQ(list, progress) << row.what;
  }
}

INSTANTIATE_TEST_SUITE_P(Network, NetworkOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(Printers, PrintersOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
