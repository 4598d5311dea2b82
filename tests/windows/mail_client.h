// Simple MAPI and a mail client, as the program finds them; both go with the object.
#pragma once

#include <string>

#include "tests/windows/surroundings.h"

namespace drive {

// What the registry and win.ini say about Simple MAPI.
struct InstalledMapi {
  InstalledMapi(const std::string& registry, const std::string& win_ini)
      : value(RegistryValue::Text(HKEY_LOCAL_MACHINE,
                                  "Software\\Microsoft\\Windows Messaging Subsystem", "MAPI",
                                  registry)),
        ini(win_ini) {}
  RegistryValue value;
  MailInWinIni ini;
};

// A mail client that comes before all others; mail_library.dll writes what it is handed into
// mail.txt beside itself.
struct MailClient {
  explicit MailClient(const std::string& library)
      : name(RegistryValue::Text(HKEY_LOCAL_MACHINE, kMail, "", "!client")),
        path(RegistryValue::Text(HKEY_LOCAL_MACHINE, std::string(kMail) + "\\!client", "DLLPath",
                                 library)) {}
  static constexpr char kMail[] = "Software\\Clients\\Mail";
  RegistryValue name, path;
};

}  // namespace drive
