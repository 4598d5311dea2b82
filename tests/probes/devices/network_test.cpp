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
      .hosts = {{"desk7.lab", {{10, 0, 200, 7}, {192, 168, 0, 255}}, {"desk7", "www"}}}};
  test::ReadRegistryNotation(machine, R"(
[class 972 Net]
[class 973 NetClient]
[class 974 NetService]
[device 972 PCI\A\1]  "DeviceDesc"="Card"  "Mfg"="M"  "Driver"="m\\1"
[device 972 PCI\B\1]  "DeviceDesc"="Bare"  "Driver"="m\\2"
[CCS\Control\Class\m\1]  "NetCfgInstanceId"="{A}"
[CCS\Control\Class\m\2]  "NetCfgInstanceId"="{B}"
[CCS\Services\{A}\Parameters\Tcpip]  "EnableDHCP"=dword:00000001  "IPAddress"="10.0.200.7"
"SubnetMask"="255.255.0.0"
[CCS\Services\{B}\Parameters\Tcpip]
[CCS\Control\Network\<974>\{1}]  "Description"="Sharing"
[CCS\Control\Network\<974>\{2}]  "Description"="Scheduler"
[HKLM\Software\Clients\Mail]  @="Mailer"
)");
}

constexpr char kWholeSection[] =
    "[NETWORK]\r\nWinsockInfo=1\r\nDomainName=1\r\nHostName=1\r\nAliases=1\r\nIPAddresses=1\r\n"
    "NetCards=1\r\nNetClients=1\r\nNetServices=1\r\nDefaultEmailClient=1\r\n";

TEST(NetworkSection, InTheReport) {
  ReportRun run;
  DescribeNetwork(run.machine());
  run.Run(kWholeSection);
  EXPECT_EQ(run.SqueezedSection(),
            "Windows sockets Version : 2.11| Description : WinSock 2.0| Status : Running|"
            "Domain name OFFICE|Host name desk7|Aliases (total 2) desk7, www|"
            "Host IP (total 2) 10.0.200.7, 192.168.0.255||"
            "Net cards (total 2) Description : Card| Manufacturer : M| Driver date : |"
            " IP address : 10.0.200.7| Subnet mask : 255.255.0.0| DHCP enabled : Yes||"
            " Description : Bare| Manufacturer : | Driver date : ||"
            "Net clients (total 0)||Net services (total 2) Sharing| Scheduler||"
            "Default email client Mailer|");
}

TEST(NetworkSection, WhatFails) {
  const auto lacking = [](const char* library) {
    return [=](Machine& machine) { machine.libraries.Remove(library); };
  };
  const struct {
    const char* what;
    std::function<void(Machine&)> change;
    const char* statuses;  // their first letters
    unsigned starts = 1, stops = 1;
    const char* profile = kWholeSection;
  } rows[] = {
      {"the section is off", [](Machine&) {}, "", 1, 1, ""},
      {"no library", lacking("WSOCK32.DLL"), "FOFFFOOOO", 0, 0},
      {"no function",
       [](Machine& machine) { machine.libraries.RemoveExport("WSOCK32.DLL", "inet_ntoa"); },
       "FOFFFOOOO", 0, 0},
      {"WSAStartup", [](Machine& machine) { machine.faults.FailNth("WSAStartup", 1, 10091); },
       "FOFFFOOOO", 1, 0},
      {"no set-up library", lacking("SETUPAPI.DLL"), "OOOOOFOOO"},
  };
  for (const auto& row : rows) {
    ReportRun run;
    Machine& machine = run.machine();
    DescribeNetwork(machine);
    row.change(machine);
    run.Run(row.profile);
    std::string statuses;
    for (const std::string& line : run.Progress())
      statuses += line[25];
    EXPECT_EQ(statuses, row.statuses) << row.what;
    EXPECT_EQ(machine.faults.CallCount("WSAStartup"), row.starts) << row.what;
    EXPECT_EQ(machine.faults.CallCount("WSACleanup"), row.stops) << row.what;
    EXPECT_EQ(machine.libraries.References("WSOCK32.DLL"), 0u) << row.what;
  }
}

// A library whose answers are as careless as they may be.
hostent careless_host;
const host::Library kCarelessLibrary = {
    .name = "WSOCK32.DLL",
    .exports = {{"WSAStartup", host::Export(+[](WORD, WSADATA* data) {
                   std::fill_n(reinterpret_cast<char*>(data), sizeof *data, 'x');
                   return 0;
                 })},
                {"WSACleanup", host::Export(+[] { return 0; })},
                {"gethostname", host::Export(+[](char* name, int size) {
                   std::fill_n(name, size, 'n');
                   return 0;
                 })},
                {"gethostbyname", host::Export(+[](const char*) { return &careless_host; })},
                {"inet_ntoa", host::Export(+[](in_addr address) -> char* {
                   static char text[] = "second";
                   return address.s_addr == 0x0200000A ? text : nullptr;
                 })}}};

TEST(NetworkSection, CarelessLibraries) {
  char name[] = "h", first[] = {10, 0, 0, 1}, second[] = {10, 0, 0, 2};
  char* none[] = {nullptr};
  char *one[] = {second, nullptr}, *two[] = {second, first, nullptr};
  const std::pair<hostent, const char*> rows[] = {
      {{name, nullptr, AF_INET, 4, nullptr}, "Host IP (total 0) ||"},
      {{name, none, AF_INET, 4, one}, "Host IP (total 1) second||"},
      {{name, none, AF_INET, 4, two}, "Host IP ||"},
      {{name, none, AF_INET, 16, two}, "Host IP (total 0) ||"},
      {{name, none, 6, 4, two}, "Host IP (total 0) ||"},
  };
  for (const auto& [answer, addresses] : rows) {
    ReportRun run;
    careless_host = answer;
    run.machine().libraries.Add(kCarelessLibrary);
    run.Run("[NETWORK]\r\nWinsockInfo=1\r\nHostName=1\r\nAliases=1\r\nIPAddresses=1\r\n");
    EXPECT_EQ(run.SqueezedSection(),
              "Windows sockets Version : 120.120| Description : " + std::string(256, 'x') +
                  "| Status : " + std::string(128, 'x') + "|Host name " + std::string(255, 'n') +
                  "|Aliases (total 0) |" + addresses);
  }
}

TEST(NetworkSection, LinesThatAreTooLong) {
  const std::string first(16000, 'a');
  constexpr std::size_t kMost = 32766 - 16000 - 2;
  for (const std::size_t length : {kMost, kMost + 1}) {
    ReportRun run;
    const std::string second(length, 'b');
    run.machine().network.host_name = "desk7";
    run.machine().network.hosts = {{"desk7", {}, {first, second}}};
    run.Run("[NETWORK]\r\nAliases=1\r\n");
    EXPECT_EQ(run.SqueezedSection(),
              "Aliases (total 2) " + first + (length == kMost ? ", " + second : "") + "||")
        << length;
  }
}

TEST(NetworkSection, WithoutAMailClient) {
  for (const char* const value : {"", "@=\"\"", "\"other\"=\"x\""}) {
    ReportRun run;
    test::ReadRegistryNotation(run.machine(),
                               std::string("[HKLM\\Software\\Clients\\Mail]  ") + value);
    run.Run("[NETWORK]\r\nDefaultEmailClient=1\r\n");
    EXPECT_EQ(run.SqueezedSection(), "|Default email client none|") << value;
  }
}

TEST(WindowsSockets, OtherHostsAndStartingTwice) {
  ReportRun run;
  run.machine().network.hosts = {{"mail.lab", {{10, 0, 0, 25}}, {"mail"}}};
  ProbeContext context;
  StringList texts;
  texts.Create();
  EXPECT_FALSE(ListHostAliases(context, "mail", texts));
  EXPECT_TRUE(StartSockets(context) && StartSockets(context));
  EXPECT_TRUE(ListHostAddresses(context, "MAIL", texts));
  EXPECT_FALSE(ListHostAddresses(context, "none", texts));
  EXPECT_STREQ(texts.Get(0), "10.0.0.25");
  StopSockets(context);
  StopSockets(context);
  EXPECT_EQ(run.machine().handles.OpenObjects().count("started sockets"), 0u);
}

}  // namespace
}  // namespace hostscope
