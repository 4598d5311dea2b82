#include "platform/host/winspool.h"

#include <algorithm>
#include <cstring>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

using namespace host;

namespace {

const LayerLibrary kLibrary({.name = "WINSPOOL.DRV",
                             .exports = {HOST_EXPORT(OpenPrinterA), HOST_EXPORT(ClosePrinter),
                                         HOST_EXPORT(GetPrinterA), HOST_EXPORT(EnumPrintersA)}});

struct OpenPrinter : Object {
  explicit OpenPrinter(const Printer& opened) : Object("printer"), printer(opened) {}

  Printer printer;
};

BOOL Failed(DWORD error) {
  SetLastError(error);
  return FALSE;
}

// Fills the caller's buffer as the spooler does: the records at its front, their texts behind them.
class RecordBuffer {
 public:
  RecordBuffer(LPBYTE buffer, std::size_t records_size)
      : text_(reinterpret_cast<char*>(buffer) + records_size) {}

  LPSTR Add(const std::optional<std::string>& text) {
    if (!text) return nullptr;
    LPSTR const placed = text_;
    text_ = std::copy_n(text->c_str(), text->size() + 1, text_);
    return placed;
  }

  static std::size_t SizeOf(const std::optional<std::string>& text) {
    return text ? text->size() + 1 : 0;
  }

 private:
  char* text_;
};

// What both calls do about the buffer. False: it is too small, and the last error says so.
bool HasRoom(LPBYTE buffer, DWORD size, std::size_t wanted, LPDWORD needed) {
  *needed = static_cast<DWORD>(wanted);
  return wanted <= size && (buffer != nullptr || wanted == 0) ? true
                                                              : Failed(ERROR_INSUFFICIENT_BUFFER);
}

std::size_t SizeOfLevel2(const Printer& printer) {
  std::size_t size = sizeof(PRINTER_INFO_2A) + printer.name.size() + 1;
  for (const auto* text : {&printer.server, &printer.share_name, &printer.port})
    size += RecordBuffer::SizeOf(*text);
  return size;
}

std::vector<Printer> ListedPrinters(const Machine& machine) {
  std::vector<Printer> listed;
  for (const Printer& printer : machine.printers.installed) {
    if (!machine.IsNt() || !printer.server) listed.push_back(printer);
  }
  return listed;
}

}  // namespace

BOOL WINAPI OpenPrinterA(LPSTR name, HANDLE* printer, PRINTER_DEFAULTSA*) {
  if (EndableCallFails("OpenPrinterA")) return FALSE;
  Machine& machine = CurrentMachine();
  const auto& installed = machine.printers.installed;
  const auto found = std::find_if(installed.begin(), installed.end(), [name](const Printer& one) {
    return name != nullptr && EqualNoCase(one.name, name);
  });
  if (found == installed.end()) return Failed(ERROR_INVALID_PRINTER_NAME);
  if (found->open_error != 0) return Failed(found->open_error);
  *printer = reinterpret_cast<HANDLE>(machine.handles.Open(std::make_shared<OpenPrinter>(*found)));
  return TRUE;
}

BOOL WINAPI ClosePrinter(HANDLE printer) {
  if (CallFails("ClosePrinter")) return FALSE;
  HandleTable& handles = CurrentMachine().handles;
  const auto value = reinterpret_cast<std::uintptr_t>(printer);
  if (handles.FindAs<OpenPrinter>(value) == nullptr) return Failed(ERROR_INVALID_HANDLE);
  handles.Close(value);
  return TRUE;
}

BOOL WINAPI GetPrinterA(HANDLE handle, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed) {
  if (EndableCallFails("GetPrinterA")) return FALSE;
  const auto open =
      CurrentMachine().handles.FindAs<OpenPrinter>(reinterpret_cast<std::uintptr_t>(handle));
  if (open == nullptr) return Failed(ERROR_INVALID_HANDLE);
  if (level != 2) return Failed(ERROR_INVALID_LEVEL);
  const Printer& printer = open->printer;
  if (!HasRoom(buffer, size, SizeOfLevel2(printer), needed)) return FALSE;
  RecordBuffer texts(buffer, sizeof(PRINTER_INFO_2A));
  PRINTER_INFO_2A record = {};
  record.pServerName = texts.Add(printer.server);
  record.pPrinterName = texts.Add(printer.name);
  record.pShareName = texts.Add(printer.share_name);
  record.pPortName = texts.Add(printer.port);
  record.Attributes = printer.attributes;
  std::memcpy(buffer, &record, sizeof record);
  return TRUE;
}

BOOL WINAPI EnumPrintersA(DWORD flags, LPSTR name, DWORD level, LPBYTE buffer, DWORD size,
                          LPDWORD needed, LPDWORD returned) {
  if (EndableCallFails("EnumPrintersA")) return FALSE;
  if (flags != PRINTER_ENUM_LOCAL || name != nullptr) return Failed(ERROR_INVALID_PARAMETER);
  if (level != 5) return Failed(ERROR_INVALID_LEVEL);
  *returned = 0;
  const std::vector<Printer> printers = ListedPrinters(CurrentMachine());
  const std::size_t records_size = printers.size() * sizeof(PRINTER_INFO_5A);
  std::size_t wanted = records_size;
  for (const Printer& printer : printers)
    wanted += printer.name.size() + 1 + RecordBuffer::SizeOf(printer.port);
  if (!HasRoom(buffer, size, wanted, needed)) return FALSE;
  RecordBuffer texts(buffer, records_size);
  for (const Printer& printer : printers) {
    PRINTER_INFO_5A record = {};
    record.pPrinterName = texts.Add(printer.name);
    record.pPortName = texts.Add(printer.port);
    record.Attributes = printer.attributes;
    std::memcpy(buffer + *returned * sizeof record, &record, sizeof record);
    ++*returned;
  }
  return TRUE;
}
