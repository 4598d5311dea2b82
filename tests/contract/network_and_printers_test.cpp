// The sockets library and the print spooler, which are found at run time, and the user's setting of
// the default device.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

constexpr char kSockets[] = "WSOCK32.DLL";
constexpr char kSpooler[] = "WINSPOOL.DRV";

TEST(SocketsContract, StartAskAndStop) {
  const Place place;
  const auto start = FindIn<int(WINAPI*)(WORD, WSADATA*)>(kSockets, "WSAStartup");
  const auto stop = FindIn<int(WINAPI*)()>(kSockets, "WSACleanup");
  const auto host_name = FindIn<int(WINAPI*)(char*, int)>(kSockets, "gethostname");
  const auto host_by_name = FindIn<hostent*(WINAPI*)(const char*)>(kSockets, "gethostbyname");
  const auto address_text = FindIn<char*(WINAPI*)(in_addr)>(kSockets, "inet_ntoa");
  char name[255] = {};
  ExpectAnswer("stopped before it is started", "10093", Outcome(stop() == 0));
  ExpectAnswer("a name before it is started", "10093", Outcome(host_name(name, 255) == 0),
               {Platform::kWine, "its own name needs no start"});
  ExpectAnswer("a host before it is started", "10093", Outcome(host_by_name("x") != nullptr));
  WSADATA data;
  std::fill_n(reinterpret_cast<char*>(&data), sizeof data, '~');
  ExpectAnswer("started", 0, start(0x0101, &data));
  ExpectAnswer("started again", 0, start(0x0101, &data));
  ExpectAnswer("version, and the highest", "257 514",
               std::to_string(data.wVersion) + " " + std::to_string(data.wHighVersion));
  ExpectAnswer("description", "WinSock 2.0", data.szDescription);
  ExpectAnswer("status", "Running", data.szSystemStatus);
  ExpectAnswer("no room for the name", "10014", Outcome(host_name(name, 1) == 0));
  ExpectAnswer("name", "yes", Outcome(host_name(name, 255) == 0));
  const hostent* const host = host_by_name(name);
  ASSERT_NE(host, nullptr);
  ExpectAnswer("kind and length", "2 4",
               std::to_string(host->h_addrtype) + " " + std::to_string(host->h_length));
  ExpectAnswer("lists", true, host->h_aliases != nullptr && host->h_addr_list[0] != nullptr);
  ExpectAnswer("another host", "11001", Outcome(host_by_name("no such host") != nullptr));
  in_addr address;
  std::copy_n("\x01\x02\x03\xFF", 4, reinterpret_cast<char*>(&address));
  ExpectAnswer("text of an address", "1.2.3.255", address_text(address));
  ExpectAnswer("stopped", 0, stop());
  ExpectAnswer("stopped again", 0, stop());
}

struct Answer {
  std::string outcome;
  DWORD needed = 0;
  DWORD returned = 0;
};

Answer Enumerate(std::string& buffer) {
  const auto enumerate = FindIn<BOOL(WINAPI*)(DWORD, char*, DWORD, LPBYTE, DWORD, DWORD*, DWORD*)>(
      kSpooler, "EnumPrintersA");
  Answer answer{"", 77, 77};
  const bool done =
      enumerate(PRINTER_ENUM_LOCAL, nullptr, 5,
                buffer.empty() ? nullptr : reinterpret_cast<LPBYTE>(buffer.data()),
                static_cast<DWORD>(buffer.size()), &answer.needed, &answer.returned) != 0;
  answer.outcome = Outcome(done);
  return answer;
}

std::string Shown(const char* text) {
  return text == nullptr ? "(null)" : text;
}

TEST(SpoolerContract, Enumerate) {
  Place place;
  std::string buffer;
  Answer answer = Enumerate(buffer);
  ExpectAnswer(
      "no printers", "yes 0 0",
      answer.outcome + " " + std::to_string(answer.needed) + " " + std::to_string(answer.returned));
  place.InstallPrinter("Contract", "LPT1:", 0x48);
  answer = Enumerate(buffer);
  ExpectAnswer("the size", "122 0", answer.outcome + " " + std::to_string(answer.returned));
  buffer.resize(answer.needed - 1);
  ExpectAnswer("one short", "122", Enumerate(buffer).outcome);
  buffer.resize(answer.needed);
  answer = Enumerate(buffer);
  ExpectAnswer("read", "yes 1", answer.outcome + " " + std::to_string(answer.returned));
  const auto& printer = *reinterpret_cast<const PRINTER_INFO_5A*>(buffer.data());
  ExpectAnswer("record", "Contract LPT1: 72",
               Shown(printer.pPrinterName) + " " + Shown(printer.pPortName) + " " +
                   std::to_string(printer.Attributes));
}

TEST(SpoolerContract, OpenAskAndClose) {
  Place place;
  place.InstallPrinter("Contract", "LPT1:", 0x40);
  const auto open =
      FindIn<BOOL(WINAPI*)(char*, HANDLE*, PRINTER_DEFAULTSA*)>(kSpooler, "OpenPrinterA");
  const auto close = FindIn<BOOL(WINAPI*)(HANDLE)>(kSpooler, "ClosePrinter");
  const auto get =
      FindIn<BOOL(WINAPI*)(HANDLE, DWORD, LPBYTE, DWORD, DWORD*)>(kSpooler, "GetPrinterA");
  HANDLE printer = nullptr;
  char unknown[] = "No such printer", name[] = "CONTRACT";
  ExpectAnswer("unknown", "1801", Outcome(open(unknown, &printer, nullptr)));
  ExpectAnswer("open, whatever the case", "yes", Outcome(open(name, &printer, nullptr)));
  DWORD needed = 0;
  ExpectAnswer("the size", "122", Outcome(get(printer, 2, nullptr, 0, &needed)));
  std::string buffer(needed, '~');
  const auto bytes = reinterpret_cast<LPBYTE>(buffer.data());
  ExpectAnswer("one short", "122", Outcome(get(printer, 2, bytes, needed - 1, &needed)));
  ExpectAnswer("read", "yes", Outcome(get(printer, 2, bytes, needed, &needed)));
  const auto& record = *reinterpret_cast<const PRINTER_INFO_2A*>(buffer.data());
  ExpectAnswer("record", "(null) Contract (null) LPT1: 64",
               Shown(record.pServerName) + " " + Shown(record.pPrinterName) + " " +
                   Shown(record.pShareName) + " " + Shown(record.pPortName) + " " +
                   std::to_string(record.Attributes));
  ExpectAnswer("close", "yes", Outcome(close(printer)));
  ExpectAnswer("close again", "6", Outcome(close(printer)));
}

TEST(UserProfileContract, TheDefaultDevice) {
  Place place;
  place.SetDefaultDevice("A printer,winspool,LPT1:");
  const struct {
    const char* section;
    const char* key;
    DWORD size;
    const char* expected;
  } rows[] = {{"windows", "device", 30, "24 A printer,winspool,LPT1:|~~~~~"},
              {"Windows", "DEVICE", 9, "8 A printe|~~~~~~~~~~~~~~~~~~~~~"},
              {"windows", "none such", 30, "3 def|~~~~~~~~~~~~~~~~~~~~~~~~~~"},
              {"none such", "device", 30, "3 def|~~~~~~~~~~~~~~~~~~~~~~~~~~"}};
  for (const auto& row : rows) {
    std::string buffer(30, '~');
    const DWORD length = GetProfileStringA(row.section, row.key, "def", buffer.data(), row.size);
    ExpectAnswer(row.key, row.expected, std::to_string(length) + " " + Visible(buffer));
  }
}

}  // namespace
}  // namespace contract
