// The network section on machines of several kinds, and with platform calls failing or answering
// what careless libraries answer.

#include "probes/devices/network.h"

#include <gtest/gtest.h>

#include "probes/devices/windows_sockets.h"
#include "tests/support/registry_notation.h"
#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using host::Machine;
using test::ReportRun;

void DescribeNetwork(Machine& machine) {
  machine.network = {
      .version = 0x0B02,
      .description = "WinSock 2.0",
      .status = "Running",
      .host_name = "desk7",
      .hosts = {{"desk7.example", {{10, 0, 200, 7}, {192, 168, 0, 255}}, {"desk7", "www"}}}};
  test::ReadRegistryNotation(
      machine,
      "[class 972 Net]\n[class 973 NetClient]\n[class 974 NetService]\n"
      "[device 972 PCI\\A\\1]\n\"DeviceDesc\"=\"Card\"  \"Mfg\"=\"M\"  \"Driver\"=\"m\\\\1\"\n"
      "[device 972 PCI\\B\\1]\n\"DeviceDesc\"=\"Bare\"  \"Driver\"=\"m\\\\2\"\n"
      "[CCS\\Control\\Class\\m\\1]  \"NetCfgInstanceId\"=\"{A}\"\n"
      "[CCS\\Control\\Class\\m\\2]  \"NetCfgInstanceId\"=\"{B}\"\n"
      "[CCS\\Services\\{A}\\Parameters\\Tcpip]  \"EnableDHCP\"=dword:00000001\n"
      "\"IPAddress\"=\"10.0.200.7\"  \"SubnetMask\"=\"255.255.0.0\"\n"
      "[CCS\\Services\\{B}\\Parameters\\Tcpip]\n"
      "[CCS\\Control\\Network\\<974>\\{1}]  \"Description\"=\"Sharing\"\n"
      "[CCS\\Control\\Network\\<974>\\{2}]  \"Description\"=\"Scheduler\"\n"
      "[HKLM\\Software\\Clients\\Mail]  @=\"Mailer\"\n");
}

constexpr char kWholeSection[] =
    "[NETWORK]\r\nWinsockInfo=1\r\nDomainName=1\r\nHostName=1\r\nAliases=1\r\nIPAddresses=1\r\n"
    "NetCards=1\r\nNetClients=1\r\nNetServices=1\r\nDefaultEmailClient=1\r\n";

// Nothing of the sockets is left, and they were ended as often as they were started.
void ExpectStopped(Machine& machine, const std::string& what) {
  EXPECT_EQ(machine.libraries.References("WSOCK32.DLL"), 0u) << what;
  EXPECT_EQ(machine.network.times_started, 0u) << what;
  EXPECT_FALSE(machine.handles.OpenObjects().contains("key")) << what;
}

TEST(NetworkSection, InTheReport) {
  ReportRun run;
  DescribeNetwork(run.machine());
  run.Run(kWholeSection);
  const std::string blanks(27, ' ');
  EXPECT_EQ(run.LastSection(),
            "Windows sockets            Version        :  2.11\r\n" + blanks +
                "Description    :  WinSock 2.0\r\n" + blanks +
                "Status         :  Running\r\n"
                "Domain name                OFFICE\r\n"
                "Host name                  desk7\r\n"
                "Aliases (total 2)          desk7, www\r\n"
                "Host IP (total 2)          10.0.200.7, 192.168.0.255\r\n"
                "\r\n"
                "Net cards (total 2)        Description    :  Card\r\n" +
                blanks + "Manufacturer   :  M\r\n" + blanks + "Driver date    :  \r\n" + blanks +
                "IP address     :  10.0.200.7\r\n" + blanks + "Subnet mask    :  255.255.0.0\r\n" +
                blanks + "DHCP enabled   :  Yes\r\n\r\n" + blanks + "Description    :  Bare\r\n" +
                blanks + "Manufacturer   :  \r\n" + blanks +
                "Driver date    :  \r\n\r\n"
                "Net clients (total 0)\r\n\r\n"
                "Net services (total 2)     Sharing\r\n" +
                blanks +
                "Scheduler\r\n\r\n"
                "Default email client       Mailer\r\n");
  const std::vector<std::string> progress = {
      "Windows sockets...       Ok", "Domain name...           Ok", "Host name...             Ok",
      "Aliases...               Ok", "IP addresses...          Ok", "Net cards...             Ok",
      "Net clients...           Ok", "Net services...          Ok", "Default email client...  Ok"};
  EXPECT_EQ(run.Progress(), progress);
  ExpectStopped(run.machine(), "");
}

TEST(NetworkSection, StartsAndStopsTheSocketsAlsoWhenItIsOff) {
  ReportRun run;
  unsigned released_by_the_mail_client = 1;
  run.machine().faults.AtCall(
      "RegOpenKeyExA", [&] { released_by_the_mail_client = run.machine().network.times_started; });
  run.Run("");
  EXPECT_EQ(run.machine().faults.CallCount("WSAStartup"), 1u);
  EXPECT_EQ(run.machine().faults.CallCount("WSACleanup"), 1u);
  run.Run("[NETWORK]\r\nDefaultEmailClient=1\r\n");
  EXPECT_EQ(released_by_the_mail_client, 0u);
  EXPECT_EQ(run.LastSection(), "\r\nDefault email client       none\r\n");
  ExpectStopped(run.machine(), "");
}

// The first letters of the items' status words, in the order of the profile's keys above.
std::string Statuses(const ReportRun& run) {
  std::string letters;
  for (const std::string& line : run.Progress())
    letters += line[25];
  return letters;
}

TEST(NetworkSection, WhatFails) {
  const auto failing = [](const char* function, unsigned n) {
    return [=](Machine& machine) { machine.faults.FailNth(function, n, 10091); };
  };
  const auto without = [](const char* function) {
    return [=](Machine& machine) { machine.libraries.RemoveExport("WSOCK32.DLL", function); };
  };
  const struct {
    const char* what;
    std::function<void(Machine&)> change;
    const char* statuses;
    unsigned starts = 1;
  } rows[] = {
      {"nothing", [](Machine&) {}, "OOOOOOOOO"},
      {"no library", [](Machine& machine) { machine.libraries.Remove("WSOCK32.DLL"); }, "FOFFFOOOO",
       0},
      {"no WSAStartup", without("WSAStartup"), "FOFFFOOOO", 0},
      {"no gethostname", without("gethostname"), "FOFFFOOOO", 0},
      {"no gethostbyname", without("gethostbyname"), "FOFFFOOOO", 0},
      {"no WSACleanup", without("WSACleanup"), "FOFFFOOOO", 0},
      {"no inet_ntoa", without("inet_ntoa"), "FOFFFOOOO", 0},
      {"WSAStartup", failing("WSAStartup", 1), "FOFFFOOOO"},
      {"the host's name", failing("gethostname", 1), "OOFOOOOOO"},
      {"the aliases' own name", failing("gethostname", 2), "OOOFOOOOO"},
      {"the addresses' host", failing("gethostbyname", 2), "OOOOFOOOO"},
      {"Windows 98",
       [](Machine& machine) {
         machine.version = {4, 10, 0x040A08AE, 1};
       },
       "OFOOOOFFO"},
      {"no set-up library", [](Machine& machine) { machine.libraries.Remove("SETUPAPI.DLL"); },
       "OOOOOFOOO"},
  };
  for (const auto& row : rows) {
    ReportRun run;
    DescribeNetwork(run.machine());
    row.change(run.machine());
    run.Run(kWholeSection);
    EXPECT_EQ(Statuses(run), row.statuses) << row.what;
    EXPECT_EQ(run.machine().faults.CallCount("WSAStartup"), row.starts) << row.what;
    EXPECT_EQ(run.machine().faults.CallCount("WSACleanup"), row.statuses[0] == 'O' ? 1u : 0u)
        << row.what;
    ExpectStopped(run.machine(), row.what);
    const std::string report = run.LastSection();
    const struct {
      std::size_t item;
      const char* label;
    } labels[] = {{0, "Windows sockets"}, {1, "Domain name"}, {2, "Host name"},  {3, "Aliases"},
                  {4, "Host IP"},         {5, "Net cards"},   {6, "Net clients"}};
    for (const auto& [item, label] : labels) {
      std::string line = label;
      line.resize(27, ' ');
      EXPECT_EQ(report.find(line + "\r\n") != std::string::npos, row.statuses[item] == 'F')
          << row.what << ", " << label;
    }
  }
}

// A library whose answers are as careless as they may be.
namespace careless {

hostent record;
char* no_entries[] = {nullptr};
char first[] = {10, 0, 0, 1};
char second[] = {10, 0, 0, 2};
char* two_addresses[] = {first, second, nullptr};

int WINAPI Start(WORD requested, WSADATA* data) {
  std::fill_n(reinterpret_cast<char*>(data), sizeof *data, 'x');
  data->wHighVersion = requested == 0x0101 ? 0xFFFF : 0;
  return 0;
}
int WINAPI HostName(char* name, int size) {
  std::fill_n(name, size, 'n');
  return 0;
}
hostent* WINAPI HostByName(const char*) {
  return &record;
}
char* WINAPI AddressText(in_addr address) {
  static char text[] = "second";
  return address.s_addr == 0x0200000A ? text : nullptr;
}

void Install(Machine& machine, const hostent& answer) {
  record = answer;
  machine.libraries.Add({.name = "WSOCK32.DLL",
                         .exports = {{"WSAStartup", host::Export(&Start)},
                                     {"gethostname", host::Export(&HostName)},
                                     {"gethostbyname", host::Export(&HostByName)},
                                     {"inet_ntoa", host::Export(&AddressText)}}});
}

}  // namespace careless

TEST(NetworkSection, CarelessLibraries) {
  char name[] = "h";
  const struct {
    const char* what;
    hostent record;
    const char* lists;  // what stands behind the labels
  } rows[] = {
      {"no lists at all", {name, nullptr, AF_INET, 4, nullptr}, "(total 0) (total 0) "},
      {"one address without text",
       {name, careless::no_entries, AF_INET, 4, careless::two_addresses},
       "(total 0) (total 1) second"},
      {"longer addresses",
       {name, nullptr, AF_INET, 16, careless::two_addresses},
       "(total 0) (total 0) "},
      {"another kind", {name, nullptr, 6, 4, careless::two_addresses}, "(total 0) (total 0) "},
  };
  for (const auto& row : rows) {
    ReportRun run;
    // The start of these sockets does not count as one of the layer's.
    run.machine().network.times_started = 1;
    careless::Install(run.machine(), row.record);
    run.Run("[NETWORK]\r\nWinsockInfo=1\r\nHostName=1\r\nAliases=1\r\nIPAddresses=1\r\n");
    const std::string report = run.LastSection();
    for (const std::string& expected :
         {"Version        :  255.255\r\n" + std::string(),
          "Description    :  " + std::string(256, 'x') + "\r\n",
          "Status         :  " + std::string(128, 'x') + "\r\n",
          "Host name                  " + std::string(255, 'n') + "\r\n"})
      EXPECT_NE(report.find(expected), std::string::npos) << row.what << ": " << expected;
    std::string lists = report.substr(report.find("Aliases"));
    std::string squeezed;
    for (const char character : lists) {
      if (character >= ' ' && !(character == ' ' && squeezed.ends_with(' '))) squeezed += character;
    }
    std::string expected = "Aliases " + std::string(row.lists);
    expected.insert(expected.find(") ") + 2, "Host IP ");
    EXPECT_EQ(squeezed, expected) << row.what;
    ExpectStopped(run.machine(), row.what);
  }
}

TEST(NetworkSection, LinesThatAreTooLong) {
  const std::string first(16000, 'a');
  constexpr std::size_t kMost = 32766 - 16000 - 2;
  for (const std::size_t length : {kMost, kMost + 1}) {
    ReportRun run;
    DescribeNetwork(run.machine());
    const std::string second(length, 'b');
    run.machine().network.hosts = {{"desk7", {}, {first, second}}};
    run.Run("[NETWORK]\r\nAliases=1\r\n");
    EXPECT_EQ(run.LastSection(), "Aliases (total 2)          " + first +
                                     (length == kMost ? ", " + second : "") + "\r\n\r\n")
        << length;
  }
}

TEST(DefaultEmailClient, FromTheRegistry) {
  const std::pair<std::string, std::string> rows[] = {
      {"", "none"},
      {"[HKLM\\Software\\Clients\\Mail]", "none"},
      {"[HKLM\\Software\\Clients\\Mail]  @=\"\"", "none"},
      {"[HKLM\\Software\\Clients\\Mail]  \"x\"=\"y\"", "none"},
      {"[HKLM\\Software\\Clients\\Mail]  @=\"Post\"", "Post"},
      {"[HKLM\\Software\\Clients\\Mail]  @=hex:41,42", "AB"}};
  for (const auto& [exports, expected] : rows) {
    ReportRun run;
    test::ReadRegistryNotation(run.machine(), exports);
    ProbeContext context;
    std::string text(40, '~');
    EXPECT_TRUE(ReadDefaultEmailClient(context, text)) << exports;
    EXPECT_STREQ(text.c_str(), expected.c_str()) << exports;
  }
}

TEST(WindowsSockets, OtherHostsAndStartingTwice) {
  ReportRun run;
  DescribeNetwork(run.machine());
  run.machine().network.hosts.push_back({"mail.example", {{10, 0, 0, 25}}, {"mail"}});
  ProbeContext context;
  StringList texts;
  texts.Create();
  EXPECT_FALSE(ListHostAliases(context, "mail", texts));
  EXPECT_TRUE(StartSockets(context) && StartSockets(context));
  EXPECT_EQ(run.machine().network.times_started, 1u);
  EXPECT_TRUE(ListHostAliases(context, "mail.example", texts));
  EXPECT_TRUE(ListHostAddresses(context, "MAIL", texts));
  EXPECT_FALSE(ListHostAddresses(context, "none", texts));
  ASSERT_EQ(texts.count(), 2);
  EXPECT_STREQ(texts.Get(0), "mail");
  EXPECT_STREQ(texts.Get(1), "10.0.0.25");
  EXPECT_STREQ(context.sockets.version, "2.11");
  StopSockets(context);
  StopSockets(context);
  run.machine().libraries.Remove("WSOCK32.DLL");
  EXPECT_FALSE(StartSockets(context));
  EXPECT_STREQ(context.sockets.version, "");
  ExpectStopped(run.machine(), "");
}

}  // namespace
}  // namespace hostscope
