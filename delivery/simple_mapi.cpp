#include "delivery/simple_mapi.h"

#include "util/error_mode.h"
#include "util/paths.h"
#include "util/registry.h"
#include "util/text.h"
#include "util/windows_version.h"

namespace hostscope {
namespace {

constexpr std::array<const char*, 12> kEntryPoints = {
    "MAPILogon",      "MAPILogoff",   "MAPISendMail", "MAPISendDocuments",
    "MAPIFindNext",   "MAPIReadMail", "MAPISaveMail", "MAPIDeleteMail",
    "MAPIFreeBuffer", "MAPIAddress",  "MAPIDetails",  "MAPIResolveName"};
constexpr std::size_t kSendMail = 2;

constexpr char kMailClients[] = "Software\\Clients\\Mail";
constexpr char kMessagingSubsystem[] = "SOFTWARE\\Microsoft\\Windows Messaging Subsystem";

// A name or a path from the registry.
using Field = char[MAX_PATH];

// NT 3.51 and older know no such key in their registry.
constexpr bool KnowsMessagingSubsystem(DWORD major, DWORD minor) {
  return major > 3 || (major == 3 && minor > 51);
}

// False, the field empty, when the value can't be read or does not fit.
bool ReadField(HKEY key, const char* value_name, Field& field) {
  DWORD size = sizeof(field);
  if (RegQueryValueExA(key, value_name, nullptr, nullptr, reinterpret_cast<BYTE*>(field), &size) !=
      ERROR_SUCCESS) {
    field[0] = '\0';
    return false;
  }
  // A text in the registry need not have its terminator.
  field[size < sizeof(field) ? size : sizeof(field) - 1] = '\0';
  return true;
}

// The name of the default mail client, else that of the first one. False: no client has registered.
bool FindMailClient(Field& name) {
  const RegistryKey clients = RegistryKey::Open(HKEY_LOCAL_MACHINE, kMailClients, KEY_READ);
  if (!clients.open()) return false;
  if (!ReadField(clients.get(), nullptr, name) &&
      RegEnumKeyA(clients.get(), 0, name, sizeof(name)) != ERROR_SUCCESS)
    name[0] = '\0';
  return true;
}

// The path of the client's own library, as it stands in the registry; empty when it has none.
void FindClientLibrary(Field& path) {
  path[0] = '\0';
  Field name;
  if (!FindMailClient(name)) return;
  char key_name[sizeof(kMailClients) + sizeof(Field)];
  wsprintfA(key_name, "%s\\%s", kMailClients, name);
  const RegistryKey client = RegistryKey::Open(HKEY_LOCAL_MACHINE, key_name, KEY_READ);
  if (client.open()) ReadField(client.get(), "DLLPath", path);
}

// The path with its variables replaced; none when that can't be done.
OwnedText ExpandVariables(const char* path) {
  const DWORD size = ExpandEnvironmentStringsA(path, nullptr, 0);
  if (size == 0) return {};
  // One more than asked for: some systems count a text of 8 bits one short.
  const DWORD room = size + 1;
  HeapBuffer block(room);
  if (!block.present()) return {};
  const DWORD written = ExpandEnvironmentStringsA(path, block.data(), room);
  if (written == 0 || written > room) return {};
  return OwnedText(static_cast<HeapBuffer&&>(block));
}

HMODULE LoadMailLibrary() {
  // A library that is missing is no reason for a message box.
  const ErrorMode quiet(SEM_NOOPENFILEERRORBOX);
  Field path;
  FindClientLibrary(path);
  if (path[0] == '\0') CopyText(path, "mapi32.dll");
  const OwnedText expanded = ExpandVariables(path);
  return LoadLibraryA(expanded.present() ? expanded.c_str() : path);
}

// The records of Simple MAPI take no constant texts, and leave them as they are.
char* Given(const char* text) {
  return const_cast<char*>(text);
}

MapiRecipDesc Recipient(ULONG recipient_class, const char* name, const char* address) {
  MapiRecipDesc recipient = {};
  recipient.ulRecipClass = recipient_class;
  recipient.lpszName = Given(name);
  recipient.lpszAddress = Given(address);
  return recipient;
}

}  // namespace

bool IsMapiInstalled() {
  OSVERSIONINFOA version;
  if (!ReadWindowsVersion(version)) return false;
  if (KnowsMessagingSubsystem(version.dwMajorVersion, version.dwMinorVersion)) {
    const RegistryValue value = ReadRegistryValue(HKEY_LOCAL_MACHINE, kMessagingSubsystem, "MAPI");
    if (SameText(value.AsText().c_str(), "1")) return true;
  }
  return GetProfileIntA("Mail", "MAPI", 0) != 0;
}

bool SimpleMapi::LoadSimpleMapi() {
  return IsMapiInstalled() && library_.BindLoaded(LoadMailLibrary(), kEntryPoints);
}

void SimpleMapi::SendReportMail(const ReportMail& mail) const {
  MapiRecipDesc recipients[3] = {Recipient(MAPI_TO, mail.name, mail.to)};
  ULONG count = 1;
  if (*mail.cc != '\0') recipients[count++] = Recipient(MAPI_CC, nullptr, mail.cc);
  if (*mail.bcc != '\0') recipients[count++] = Recipient(MAPI_BCC, nullptr, mail.bcc);

  const OwnedText path = FullPath(mail.attachment_path);
  MapiFileDesc report = {};
  report.nPosition = 0xFFFFFFFF;  // nowhere in the text
  report.lpszPathName = Given(path.present() ? path.c_str() : mail.attachment_path);

  MapiMessage message = {};
  message.lpszSubject = Given(mail.subject);
  message.lpszNoteText = Given(mail.body);
  message.nRecipCount = count;
  message.lpRecips = recipients;
  message.nFileCount = 1;
  message.lpFiles = &report;
  library_.Get<LPMAPISENDMAIL>(kSendMail)(0, 0, &message, MAPI_LOGON_UI | MAPI_DIALOG, 0);
}

}  // namespace hostscope
