// The default printer and the list of printers, on machines of both families, and with a spooler
// that fails or answers what a spooler should not.

#include "probes/devices/printers.h"

#include <gtest/gtest.h>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using host::Machine;
using test::ReportRun;

constexpr char kUserDevice[] = "HKCU\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows";

void DescribePrinters(Machine& machine) {
  machine.registry.SetText(kUserDevice, "Device",
                           "\xDC"
                           "BER,winspool,LPT1:");
  machine.printers.installed = {
      {"\xFC"
       "ber",
       "LPT1:",
       {},
       "LASER",
       0x48,
       0},
      {std::string(300, 'n'), {}, {}, {}, 0x14, 0},
      {"\\\\S\\P", "S:", "\\\\S", "P", 0x18, 0},
  };
}

std::string Lines(const std::string& label, const std::string& values) {
  std::string text, first = label;
  std::size_t begin = 0;
  for (const char* const field : {"Name", "Port", "Default", "Shared", "Local", "Network"}) {
    first.resize(27, ' ');
    std::string name = field;
    name.resize(15, ' ');
    const std::size_t end = values.find('|', begin);
    text += first + name + ":  " + values.substr(begin, end - begin) + "\r\n";
    first.clear();
    begin = end + 1;
  }
  return text + "\r\n";
}

void ExpectNothingOpen(Machine& machine, const std::string& what) {
  EXPECT_FALSE(machine.handles.OpenObjects().contains("printer")) << what;
  EXPECT_EQ(machine.libraries.References("WINSPOOL.DRV"), 0u) << what;
}

TEST(Printers, Listed) {
  const std::string long_name(255, 'n');
  const struct {
    const char* what;
    bool is_nt;
    std::string expected;
  } rows[] = {
      {"NT goes by the name, and lists no connections", true,
       Lines("Printers (total 2)",
             "\xFC"
             "ber|LPT1:|Yes|Yes|Yes|No|") +
           Lines("", long_name + "||No|No|No|Yes|")},
      {"Windows 98 goes by the attribute, and lists all", false,
       Lines("Printers (total 3)",
             "\xFC"
             "ber|LPT1:|No|Yes|Yes|No|") +
           Lines("", long_name + "||Yes|No|No|Yes|") + Lines("", "\\\\S\\P|S:|No|Yes|No|Yes|")},
  };
  for (const auto& row : rows) {
    ReportRun run;
    DescribePrinters(run.machine());
    if (!row.is_nt) run.machine().version = {4, 10, 0x040A08AE, 1};
    run.Run("[PRINTER]\r\nPrinters=1\r\n");
    EXPECT_EQ(run.LastSection(), row.expected) << row.what;
    EXPECT_EQ(run.Progress().back(), "Printers...              Ok");
    ExpectNothingOpen(run.machine(), row.what);
  }
}

// What a lying spooler is asked and how often.
unsigned questions;
BOOL WINAPI AskForMore(DWORD, char*, DWORD, LPBYTE, DWORD size, DWORD* needed, DWORD* returned) {
  ++questions;
  *needed = size + 1;
  *returned = 0;
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
BOOL WINAPI OpenNothing(char*, HANDLE* printer, PRINTER_DEFAULTSA*) {
  *printer = nullptr;
  return TRUE;
}

std::function<void(Machine&)> Failing(const char* function, unsigned n, DWORD error) {
  return [=](Machine& machine) { machine.faults.FailNth(function, n, error); };
}
template <typename Function>
std::function<void(Machine&)> Replaced(const char* name, Function* function) {
  return [=](Machine& machine) {
    machine.libraries.Add({.name = "WINSPOOL.DRV", .exports = {{name, host::Export(function)}}});
  };
}
const auto kNoSpooler = [](Machine& machine) { machine.libraries.Remove("WINSPOOL.DRV"); };

TEST(Printers, ListsThatFailOrAreEmpty) {
  const std::string failed = "Printers\r\n";
  const std::string two = "Printers (total 2)";
  const struct {
    const char* what;
    std::function<void(Machine&)> change;
    std::string begins_with;
    const char* status = "Failed";
  } rows[] = {
      {"none", [](Machine& machine) { machine.printers = {}; }, "Printers (total 0)\r\n", "Ok"},
      {"no library", kNoSpooler, failed},
      {"no function",
       [](Machine& machine) { machine.libraries.RemoveExport("WINSPOOL.DRV", "GetPrinterA"); },
       failed},
      {"the size", Failing("EnumPrintersA", 1, 1722), failed},
      {"the reading", Failing("EnumPrintersA", 2, 1722), failed},
      {"it grew in between", Failing("EnumPrintersA", 2, ERROR_INSUFFICIENT_BUFFER), two, "Ok"},
      {"it asks for ever", Replaced("EnumPrintersA", AskForMore), failed},
      {"more than there can be", Replaced("EnumPrintersA", ClaimTooMany),
       Lines("Printers (total 1)", "||No|No|No|No|"), "Ok"},
      {"no memory for what was read",
       [](Machine& machine) {
         machine.faults.AtCall("EnumPrintersA", [&machine] {
           machine.faults.FailNth("HeapAlloc", 1, ERROR_NOT_ENOUGH_MEMORY);
         });
       },
       failed},
  };
  for (const auto& row : rows) {
    ReportRun run;
    DescribePrinters(run.machine());
    row.change(run.machine());
    questions = 0;
    run.Run("[PRINTER]\r\nPrinters=1\r\n");
    EXPECT_EQ(run.LastSection().substr(0, row.begins_with.size()), row.begins_with) << row.what;
    EXPECT_EQ(run.Progress().back(), std::string("Printers...              ") + row.status)
        << row.what;
    EXPECT_LE(questions, 33u);
    ExpectNothingOpen(run.machine(), row.what);
  }
}

TEST(DefaultPrinter, InTheReport) {
  const auto device = [](const char* text) {
    return [=](Machine& machine) { machine.registry.SetText(kUserDevice, "Device", text); };
  };
  const struct {
    const char* what;
    std::function<void(Machine&)> change;
    const char* name;     // null: unknown
    const char* details;  // local and shared; empty: neither line
  } rows[] = {
      {"local and shared", [](Machine&) {},
       "\xDC"
       "BER",
       "YesYes"},
      {"of a server", device("\\\\S\\P,winspool,Ne00:"), "\\\\S\\P", "NoYes"},
      {"an empty server name",
       [](Machine& machine) {
         machine.printers.installed[0].server = "";
         machine.printers.installed[0].share_name = "";
       },
       "\xDC"
       "BER",
       "YesNo"},
      {"a share name alone",
       [](Machine& machine) { machine.printers.installed[0].attributes = 0x40; },
       "\xDC"
       "BER",
       "YesNo"},
      {"no comma, no such printer", device("None"), "None", ""},
      {"empty", device(""), nullptr, ""},
      {"not set", [](Machine& machine) { machine.registry.RemoveValue(kUserDevice, "Device"); },
       nullptr, ""},
      {"denied", [](Machine& machine) { machine.printers.installed[0].open_error = 5; },
       "\xDC"
       "BER",
       ""},
      {"the size", Failing("GetPrinterA", 1, 5),
       "\xDC"
       "BER",
       ""},
      {"the reading", Failing("GetPrinterA", 2, 5),
       "\xDC"
       "BER",
       ""},
      {"it grew in between", Failing("GetPrinterA", 2, ERROR_INSUFFICIENT_BUFFER),
       "\xDC"
       "BER",
       "YesYes"},
      {"nothing told", Replaced("GetPrinterA", TellNothing),
       "\xDC"
       "BER",
       ""},
      {"no handle", Replaced("OpenPrinterA", OpenNothing),
       "\xDC"
       "BER",
       ""},
      {"no library", kNoSpooler,
       "\xDC"
       "BER",
       ""},
  };
  for (const auto& row : rows) {
    ReportRun run;
    DescribePrinters(run.machine());
    row.change(run.machine());
    run.Run("[PRINTER]\r\nDefault=1\r\n");
    const std::string details = row.details, blanks(27, ' ');
    std::string expected = "Default printer            ";
    expected +=
        row.name == nullptr ? "Unknown\r\n" : "Name           :  " + std::string(row.name) + "\r\n";
    if (!details.empty()) {
      const std::size_t local_size = details.starts_with("Yes") ? 3 : 2;
      expected += blanks + "Local          :  " + details.substr(0, local_size) + "\r\n" + blanks +
                  "Shared         :  " + details.substr(local_size) + "\r\n";
    }
    EXPECT_EQ(run.LastSection(), expected + "\r\n") << row.what;
    EXPECT_EQ(run.Progress().back(), "Default printer...       Ok") << row.what;
    ExpectNothingOpen(run.machine(), row.what);
  }
}

}  // namespace
}  // namespace hostscope
