// The report as an e-mail, prepared in the mail client that is installed on the machine.
#pragma once

#include "util/library.h"

namespace hostscope {

// Whether the system says that it has Simple MAPI: in the registry from NT 4.0 and Windows 95 on,
// and on all systems in the section Mail of win.ini.
bool IsMapiInstalled();

// What one e-mail is made of. Every text is there and may be empty; it is handed on as it stands.
struct ReportMail {
  const char* to;    // the recipient's address
  const char* name;  // the recipient's display name
  const char* cc;    // one address, however many stand in it; empty: no such recipient
  const char* bcc;   // the same
  const char* subject;
  const char* body;
  const char* attachment_path;  // of the report
};

// The library of the mail client, from LoadSimpleMapi until UnloadSimpleMapi or the end of the
// object.
class SimpleMapi {
 public:
  // Loads the library that the default mail client names in the registry, else "mapi32.dll". False,
  // with nothing left loaded, when Simple MAPI is not installed, or the library or one of its
  // twelve functions is missing.
  bool LoadSimpleMapi();
  // Has the mail client show the prepared message, and returns when the user has sent or discarded
  // it. What came of it is not told. Only while loaded.
  void SendReportMail(const ReportMail& mail) const;
  void UnloadSimpleMapi() { library_.Release(); }

 private:
  BoundLibrary<12> library_;
};

}  // namespace hostscope
