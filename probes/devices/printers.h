// The default printer and the installed printers, as the print spooler knows them.
#pragma once

#include <cstdint>
#include <span>

#include "report/item.h"

namespace hostscope {

struct PrinterRecord {
  char name[256];
  char port[256];
  bool is_default;
  bool shared;
  bool network;
  bool local;
};
static_assert(sizeof(PrinterRecord) == 516);

// Room for the name of the default printer, terminator included.
inline constexpr std::size_t kDefaultPrinterSize = 260;

// The name in the user's setting of the default device: what stands before its first comma. False,
// the name empty, when nothing is set.
bool ReadDefaultPrinterName(char (&name)[kDefaultPrinterSize]);

// What the spooler tells of a single printer.
struct PrinterDetails {
  bool local;   // no server is named
  bool shared;  // under a name
};

// False when the printer can't be opened or read, and without a spooler.
bool ReadPrinterDetails(const char* name, PrinterDetails& details);

// Appends one PrinterRecord for each printer that the spooler enumerates by these flags
// (PRINTER_ENUM_...), in its order. False when it does not, when there is no spooler and when
// memory runs out.
bool ListPrinters(const ProbeContext& context, DWORD flags, RecordArray& printers);

// The items.
bool WriteDefaultPrinter(ItemRun& run);
bool WritePrinters(ItemRun& run);

}  // namespace hostscope
