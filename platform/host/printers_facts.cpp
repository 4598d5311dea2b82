// The keys of machine.ini that describe printers.
#include <array>

#include "platform/host/fact.h"
#include "platform/host/winspool.h"

namespace host {
namespace {

using std::string_view;

// What may stand behind the port: "network", "shared LASER", "denied 5", "0x800". False: none of
// them.
bool ReadPrinterWord(Printer& printer, string_view text) {
  constexpr std::pair<string_view, DWORD> kFlags[] = {{"default", PRINTER_ATTRIBUTE_DEFAULT},
                                                      {"shared", PRINTER_ATTRIBUTE_SHARED},
                                                      {"network", PRINTER_ATTRIBUTE_NETWORK},
                                                      {"local", PRINTER_ATTRIBUTE_LOCAL}};
  if (const auto attributes = Number(text)) {
    printer.attributes |= static_cast<DWORD>(*attributes);
    return true;
  }
  const string_view word = TakeItem(text, ' ');
  if (word == "denied") {
    printer.open_error = static_cast<DWORD>(Number(text).value_or(0));
    return printer.open_error != 0;
  }
  if (word == "server") {
    printer.server = text;
    return !text.empty();
  }
  for (const auto& [name, flag] : kFlags) {
    if (word != name) continue;
    printer.attributes |= flag;
    if (word == "shared") printer.share_name = text;
    return word == "shared" || text.empty();
  }
  return false;
}

// The key is the printer's name; its port, and more with commas between.
std::string ReadPrinter(Machine& machine, string_view key, string_view value) {
  Printer printer;
  printer.name = key;
  printer.port = TakeItem(value, ',');
  while (!value.empty()) {
    if (!ReadPrinterWord(printer, TakeItem(value, ','))) {
      return "behind the port stand \"default\", \"local\", \"network\", \"shared\" with a share "
             "name or without, \"server NAME\", \"denied ERROR\" and bits of the attributes";
    }
  }
  machine.printers.installed.push_back(std::move(printer));
  return "";
}

constexpr Fact kPrinterFacts[] = {
    {"Printers", "*", ReadPrinter},
};

}  // namespace

std::span<const Fact> PrinterFacts() {
  return kPrinterFacts;
}

}  // namespace host
