// The network section where libraries answer carelessly, and lines that are too long.

#include "probes/devices/network.h"

#include <gtest/gtest.h>

#include "probes/devices/windows_sockets.h"
#include "tests/support/registry_notation.h"
#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using test::ReportRun;

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
