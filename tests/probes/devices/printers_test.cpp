// The default printer and the list of printers, on machines of both families, and with a spooler
// that fails or answers what a spooler should not.

#include "probes/devices/printers.h"

#include <gtest/gtest.h>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using host::Machine;
using host::Printer;
using test::ReportRun;

constexpr char kUserDevice[] = "HKCU\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows";

void DescribePrinters(Machine& machine) {
  machine.registry.SetText(kUserDevice, "Device", "\xDC LASER,winspool,LPT1:");
  machine.printers.installed = {{"\xFC Laser", "LPT1:", {}, "L", 0x48, 0},
                                {std::string(300, 'n'), {}, {}, {}, 0x14, 0},
                                {"\\\\S\\P", "S:", "\\\\S", "P", 0x18, 0}};
}

BOOL WINAPI AskForMore(DWORD, char*, DWORD, LPBYTE, DWORD size, DWORD* needed, DWORD*) {
  *needed = size + 1;
  SetLastError(ERROR_INSUFFICIENT_BUFFER);
  return FALSE;
}
BOOL WINAPI ClaimTooMany(DWORD, char*, DWORD, LPBYTE, DWORD, DWORD* needed, DWORD* returned) {
  *needed = sizeof(PRINTER_INFO_5A);
  *returned = 1000;
  return TRUE;
}
BOOL WINAPI TellNothing(HANDLE, DWORD, LPBYTE, DWORD, DWORD* needed) {
  *needed = 0;
  return TRUE;
}
BOOL WINAPI OpenNothing(char*, HANDLE*, PRINTER_DEFAULTSA*) {
  return TRUE;
}

// The call that reads comes after the one for the size.
std::function<void(Machine&)> Growing(const char* function) {
  return [=](Machine& machine) { machine.faults.FailNth(function, 2, ERROR_INSUFFICIENT_BUFFER); };
}
template <typename Function>
std::function<void(Machine&)> Replaced(const char* name, Function* function) {
  return [=](Machine& machine) {
    machine.libraries.Add({.name = "WINSPOOL.DRV", .exports = {{name, host::Export(function)}}});
  };
}

struct Row {
  const char* what;
  std::function<void(Machine&)> change;
  std::string expected;
  const char* status = "Ok";
};

void ExpectRows(const char* key, std::span<const Row> rows) {
  for (const Row& row : rows) {
    ReportRun run;
    DescribePrinters(run.machine());
    row.change(run.machine());
    run.Run(std::string("[PRINTER]\r\n") + key + "=1\r\n");
    EXPECT_EQ(run.SqueezedSection(), row.expected) << row.what;
    EXPECT_EQ(run.Progress().back().substr(25), row.status) << row.what;
    EXPECT_FALSE(run.machine().handles.OpenObjects().contains("printer")) << row.what;
    EXPECT_EQ(run.machine().libraries.References("WINSPOOL.DRV"), 0u) << row.what;
  }
}

const auto kNothing = [](Machine&) {};

TEST(Printers, Listed) {
  const std::string second = " Name : " + std::string(255, 'n') + "| Port : | Default : ";
  const std::string nt =
      "Printers (total 2) Name : \xFC Laser| Port : LPT1:| Default : Yes| Shared : Yes|"
      " Local : Yes| Network : No||" +
      second + "No| Shared : No| Local : No| Network : Yes||";
  const Row rows[] = {
      {"NT goes by the name, and lists no connections", kNothing, nt},
      {"Windows 98 goes by the attribute, and lists all",
       [](Machine& machine) {
         machine.version = {4, 10, 0x040A08AE, 1};
       },
       "Printers (total 3) Name : \xFC Laser| Port : LPT1:| Default : No| Shared : Yes|"
       " Local : Yes| Network : No||" +
           second +
           "Yes| Shared : No| Local : No| Network : Yes||"
           " Name : \\\\S\\P| Port : S:| Default : No| Shared : Yes| Local : No| Network : Yes||"},
      {"none", [](Machine& machine) { machine.printers = {}; }, "Printers (total 0)|"},
      {"it grew in between", Growing("EnumPrintersA"), nt},
      {"it asks for ever", Replaced("EnumPrintersA", AskForMore), "Printers|", "Failed"},
      {"more than there can be", Replaced("EnumPrintersA", ClaimTooMany),
       "Printers (total 1) Name : | Port : | Default : No| Shared : No| Local : No| Network : "
       "No||"},
  };
  ExpectRows("Printers", rows);
}

TEST(DefaultPrinter, InTheReport) {
  const auto device = [](const char* text) {
    return [=](Machine& machine) { machine.registry.SetText(kUserDevice, "Device", text); };
  };
  const auto first = [](auto Printer::*field, auto value) {
    return [=](Machine& machine) { machine.printers.installed[0].*field = value; };
  };
  const std::string name = "Default printer Name : \xDC LASER|";
  const Row rows[] = {
      {"local and shared", kNothing, name + " Local : Yes| Shared : Yes||"},
      {"of a server", device("\\\\S\\P,winspool,Ne00:"),
       "Default printer Name : \\\\S\\P| Local : No| Shared : Yes||"},
      {"an empty server name", first(&Printer::server, ""), name + " Local : Yes| Shared : Yes||"},
      {"an empty share name", first(&Printer::share_name, ""),
       name + " Local : Yes| Shared : No||"},
      {"a share name alone", first(&Printer::attributes, 0x40u),
       name + " Local : Yes| Shared : No||"},
      {"no comma, no such printer", device("None"), "Default printer Name : None||"},
      {"empty", device(""), "Default printer Unknown||"},
      {"it grew in between", Growing("GetPrinterA"), name + " Local : Yes| Shared : Yes||"},
      {"nothing told", Replaced("GetPrinterA", TellNothing), name + "|"},
      {"no handle", Replaced("OpenPrinterA", OpenNothing), name + "|"},
  };
  ExpectRows("Default", rows);
}

}  // namespace
}  // namespace hostscope
