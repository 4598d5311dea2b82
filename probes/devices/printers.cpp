#include "probes/devices/printers.h"

#include <algorithm>

#include "probes/devices/record_list.h"
#include "util/library.h"
#include "util/text.h"

namespace hostscope {
namespace {

// The spooler's library.
class Spooler {
 public:
  using OpenFunction = BOOL(WINAPI*)(char* name, HANDLE* printer, PRINTER_DEFAULTSA* defaults);
  using CloseFunction = BOOL(WINAPI*)(HANDLE printer);
  using GetFunction = BOOL(WINAPI*)(HANDLE printer, DWORD level, LPBYTE buffer, DWORD size,
                                    DWORD* needed);
  using EnumFunction = BOOL(WINAPI*)(DWORD flags, char* name, DWORD level, LPBYTE buffer,
                                     DWORD size, DWORD* needed, DWORD* returned);

  // False when the library or one of its functions is absent.
  bool Bind() { return library_.Bind("WINSPOOL.DRV", kFunctions); }
  OpenFunction open() const { return library_.Get<OpenFunction>(0); }
  CloseFunction close() const { return library_.Get<CloseFunction>(1); }
  GetFunction get() const { return library_.Get<GetFunction>(2); }
  EnumFunction enumerate() const { return library_.Get<EnumFunction>(3); }

 private:
  static constexpr std::array<const char*, 4> kFunctions = {"OpenPrinterA", "ClosePrinter",
                                                            "GetPrinterA", "EnumPrintersA"};
  BoundLibrary<kFunctions.size()> library_;
};

// A printer that is open as long as its owner lives.
class OpenedPrinter {
 public:
  OpenedPrinter(const Spooler& spooler, char* name) : spooler_(spooler) {
    if (!spooler_.open()(name, &printer_, nullptr)) printer_ = nullptr;
  }
  ~OpenedPrinter() {
    if (printer_ != nullptr) spooler_.close()(printer_);
  }
  OpenedPrinter(const OpenedPrinter&) = delete;
  OpenedPrinter& operator=(const OpenedPrinter&) = delete;

  bool open() const { return printer_ != nullptr; }
  HANDLE get() const { return printer_; }

 private:
  const Spooler& spooler_;
  HANDLE printer_ = nullptr;
};

// What is to be read may grow between two calls, but not for ever.
constexpr int kMostReads = 32;

// The records that read(buffer, size, needed) fills in a buffer of the size that it asks for;
// absent when it fails or there is no memory.
template <typename Read>
HeapBuffer ReadSpoolerRecords(Read read) {
  DWORD needed = 0;
  if (!read(nullptr, 0, &needed) && GetLastError() != ERROR_INSUFFICIENT_BUFFER) return {};
  for (int i = 0; i < kMostReads; ++i) {
    HeapBuffer records(needed);
    if (!records.present()) return {};
    if (read(reinterpret_cast<LPBYTE>(records.data()), static_cast<DWORD>(records.size()),
             &needed)) {
      return records;
    }
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) return {};
  }
  return {};
}

bool IsEmpty(const char* text) {
  return text == nullptr || *text == '\0';
}

bool HasAttribute(DWORD attributes, DWORD bit) {
  return (attributes & bit) != 0;
}

PrinterDetails DetailsOf(const PRINTER_INFO_2A& printer) {
  return {.local = IsEmpty(printer.pServerName),
          .shared = HasAttribute(printer.Attributes, PRINTER_ATTRIBUTE_SHARED) &&
                    !IsEmpty(printer.pShareName)};
}

// Which printer of the list is the default one.
class DefaultPrinter {
 public:
  explicit DefaultPrinter(bool is_nt) : is_nt_(is_nt) {
    if (is_nt_) ReadDefaultPrinterName(name_);
  }
  bool Is(const PRINTER_INFO_5A& printer) const {
    if (!is_nt_) return HasAttribute(printer.Attributes, PRINTER_ATTRIBUTE_DEFAULT);
    return !IsEmpty(printer.pPrinterName) && lstrcmpiA(printer.pPrinterName, name_) == 0;
  }

 private:
  bool is_nt_;
  char name_[kDefaultPrinterSize] = {};
};

PrinterRecord RecordOf(const PRINTER_INFO_5A& printer, const DefaultPrinter& default_printer) {
  PrinterRecord record = {};
  CopyText(record.name, printer.pPrinterName);
  CopyText(record.port, printer.pPortName);
  record.is_default = default_printer.Is(printer);
  record.shared = HasAttribute(printer.Attributes, PRINTER_ATTRIBUTE_SHARED);
  record.network = HasAttribute(printer.Attributes, PRINTER_ATTRIBUTE_NETWORK);
  record.local = HasAttribute(printer.Attributes, PRINTER_ATTRIBUTE_LOCAL);
  return record;
}

void WritePrinter(ReportWriter& report, char* label, const PrinterRecord& printer) {
  report.WriteFormatted(kTextFieldFormat, label, "Name", printer.name);
  report.WriteFormatted(kTextFieldFormat, "", "Port", printer.port);
  report.WriteFormatted(kTextFieldFormat, "", "Default", YesOrNo(printer.is_default));
  report.WriteFormatted(kTextFieldFormat, "", "Shared", YesOrNo(printer.shared));
  report.WriteFormatted(kTextFieldFormat, "", "Local", YesOrNo(printer.local));
  report.WriteFormatted(kTextFieldFormat, "", "Network", YesOrNo(printer.network));
  report.WriteText(kLineEnd);
}

}  // namespace

bool ReadDefaultPrinterName(char (&name)[kDefaultPrinterSize]) {
  name[0] = '\0';
  GetProfileStringA("windows", "device", "", name, sizeof name);
  name[sizeof name - 1] = '\0';
  if (name[0] == '\0') return false;
  if (char* const comma = FindCharacter(name, ',')) *comma = '\0';
  return true;
}

bool ReadPrinterDetails(const char* name, PrinterDetails& details) {
  Spooler spooler;
  // A text that the spooler may write to, as its function is declared.
  OwnedText own_name = DuplicateText(name);
  if (!own_name.present() || !spooler.Bind()) return false;
  const OpenedPrinter printer(spooler, own_name.data());
  if (!printer.open()) return false;
  constexpr DWORD kLevel = 2;
  const HeapBuffer record = ReadSpoolerRecords([&](LPBYTE buffer, DWORD size, DWORD* needed) {
    return spooler.get()(printer.get(), kLevel, buffer, size, needed);
  });
  if (record.size() < sizeof(PRINTER_INFO_2A)) return false;
  details = DetailsOf(*reinterpret_cast<const PRINTER_INFO_2A*>(record.data()));
  return true;
}

bool ListPrinters(const ProbeContext& context, DWORD flags, RecordArray& printers) {
  Spooler spooler;
  if (!spooler.Bind()) return false;
  constexpr DWORD kLevel = 5;
  DWORD count = 0;
  const HeapBuffer records = ReadSpoolerRecords([&](LPBYTE buffer, DWORD size, DWORD* needed) {
    return spooler.enumerate()(flags, nullptr, kLevel, buffer, size, needed, &count);
  });
  if (!records.present()) return false;
  const DefaultPrinter default_printer(context.is_nt());
  const auto* const printer = reinterpret_cast<const PRINTER_INFO_5A*>(records.data());
  // Never more than there can be in what was read.
  const std::size_t most = records.size() / sizeof *printer;
  for (std::size_t i = 0; i < std::min<std::size_t>(count, most); ++i) {
    const PrinterRecord record = RecordOf(printer[i], default_printer);
    if (printers.Append(&record) < 0) return false;
  }
  return true;
}

bool WriteDefaultPrinter(ItemRun& run) {
  constexpr char kName[] = "Default printer";
  char name[kDefaultPrinterSize];
  if (ReadDefaultPrinterName(name)) {
    run.report.WriteFormatted(kTextFieldFormat, kName, "Name", name);
    PrinterDetails details;
    if (ReadPrinterDetails(name, details)) {
      run.report.WriteFormatted(kTextFieldFormat, "", "Local", YesOrNo(details.local));
      run.report.WriteFormatted(kTextFieldFormat, "", "Shared", YesOrNo(details.shared));
    }
  } else {
    run.report.WriteFormatted("%-27s%s\r\n", kName, "Unknown");
  }
  run.report.WriteText(kLineEnd);
  return true;
}

bool WritePrinters(ItemRun& run) {
  constexpr char kListName[] = "Printers";
  RecordArray printers;
  if (!printers.Create(sizeof(PrinterRecord)) ||
      !ListPrinters(run.context, PRINTER_ENUM_LOCAL, printers)) {
    return WriteFailedListUnpadded(run.report, kListName);
  }
  WriteList<PrinterRecord>(run.report, kListName, printers, WritePrinter);
  return true;
}

}  // namespace hostscope
