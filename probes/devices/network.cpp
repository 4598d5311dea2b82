#include "probes/devices/network.h"

#include <cstring>

#include "probes/devices/device_scanner.h"
#include "probes/devices/record_list.h"
#include "probes/devices/windows_sockets.h"
#include "probes/system/user.h"
#include "util/registry.h"
#include "util/text.h"

namespace hostscope {
namespace {

// The texts of the list with ", " between each two, in its order. Of a list that is longer than the
// area, as many whole texts as fit.
void JoinTexts(const StringList& texts, std::span<char> area) {
  constexpr char kBetween[] = ", ";
  std::size_t length = 0;
  for (int i = 0; i < texts.count(); ++i) {
    const char* const between = i == 0 ? "" : kBetween;
    const std::size_t between_length = TextLength(between);
    const std::size_t text_length = TextLength(texts.Get(i));
    if (area.size() - 1 - length < between_length + text_length) break;
    std::memcpy(area.data() + length, between, between_length);
    std::memcpy(area.data() + length + between_length, texts.Get(i), text_length);
    length += between_length + text_length;
  }
  area[length] = '\0';
}

// A list of one line: its label, and all texts behind it.
bool WriteJoinedList(ItemRun& run, const char* list_name,
                     bool (*collect)(const ProbeContext& context, const char* host_name,
                                     StringList& texts)) {
  StringList texts;
  const bool succeeded = texts.Create() && collect(run.context, nullptr, texts);
  if (succeeded) {
    char label[kListLabelSize];
    FormatListLabel(label, list_name, texts.count());
    run.report.WriteFormatted(kLabelFormat, label);
    JoinTexts(texts, run.work);
    run.report.WriteText(run.work.data());
  } else {
    run.report.WriteFormatted(kLabelFormat, list_name);
  }
  run.report.WriteText(kLineEnd);
  return succeeded;
}

bool WriteComponents(ItemRun& run, const char* list_name, const char* class_name) {
  StringList descriptions;
  if (!descriptions.Create() || ScanDeviceClass(run.context, class_name, descriptions) < 0)
    return WriteFailedList(run.report, list_name);
  if (descriptions.count() == 0) WriteEmptyList(run.report, list_name);
  char label[kListLabelSize];
  FormatListLabel(label, list_name, descriptions.count());
  for (int i = 0; i < descriptions.count(); ++i) {
    run.report.WriteFormatted(kLabelFormat, label);
    run.report.WriteText(descriptions.Get(i));
    run.report.WriteText(kLineEnd);
    label[0] = '\0';
  }
  run.report.WriteText(kLineEnd);
  return true;
}

}  // namespace

void StartSocketsForSection(ItemRun& run) {
  StartSockets(run.context);
}

void StopSocketsOfSection(ItemRun& run) {
  StopSockets(run.context);
}

bool WriteWindowsSockets(ItemRun& run) {
  constexpr char kName[] = "Windows sockets";
  const WindowsSocketsState& sockets = run.context.sockets;
  if (!sockets.started) return WriteFailedList(run.report, kName);
  run.report.WriteFormatted(kTextFieldFormat, kName, "Version", sockets.version);
  run.report.WriteFormatted(kTextFieldFormat, "", "Description", sockets.description);
  run.report.WriteFormatted(kTextFieldFormat, "", "Status", sockets.status);
  return true;
}

bool ReadDomainName(ProbeContext& context, std::span<char> text) {
  TokenAccount account;
  const bool found = LookupTokenAccount(context, account);
  CopyText(text.data(), text.size(), account.domain);
  return found;
}

bool WriteHostAliases(ItemRun& run) {
  return WriteJoinedList(run, "Aliases", ListHostAliases);
}

bool WriteHostAddresses(ItemRun& run) {
  return WriteJoinedList(run, "Host IP", ListHostAddresses);
}

bool WriteNetClients(ItemRun& run) {
  return WriteComponents(run, "Net clients", "NetClient");
}

bool WriteNetServices(ItemRun& run) {
  return WriteComponents(run, "Net services", "NetService");
}

bool ReadDefaultEmailClient(ProbeContext&, std::span<char> text) {
  CopyText(text.data(), text.size(), "");
  ReadRegistryValue(HKEY_LOCAL_MACHINE, "Software\\Clients\\Mail", nullptr).CopyTextTo(text);
  if (text.front() == '\0') CopyText(text.data(), text.size(), "none");
  return true;
}

}  // namespace hostscope
