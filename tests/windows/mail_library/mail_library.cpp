// The library of a mail client that writes the message it is handed into the file mail.txt beside
// itself, one line for each field of each record.

#include <windows.h>
// Needs windows.h before it.
#include <mapi.h>

#include <fstream>
#include <string>

namespace {

HINSTANCE own_library = nullptr;

std::string Quoted(const char* text) {
  return text == nullptr ? "none" : "\"" + std::string(text) + "\"";
}

}  // namespace

extern "C" {

// Called with the arguments of functions of its kind by nobody.
ULONG NotSupported() {
  return MAPI_E_NOT_SUPPORTED;
}

ULONG WINAPI SendMail(LHANDLE session, ULONG_PTR window, lpMapiMessage message, FLAGS flags,
                      ULONG reserved) {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(own_library, path, MAX_PATH);
  const std::string folder(path, std::string(path).rfind('\\') + 1);
  std::ofstream record(folder + "mail.txt", std::ios::binary | std::ios::app);
  record << "call " << session << " " << window << " " << flags << " " << reserved << "\n"
         << "message " << message->ulReserved << " " << Quoted(message->lpszSubject) << " "
         << Quoted(message->lpszNoteText) << " " << Quoted(message->lpszMessageType) << " "
         << Quoted(message->lpszDateReceived) << " " << Quoted(message->lpszConversationID) << " "
         << message->flFlags << " " << message->lpOriginator << "\n";
  for (ULONG i = 0; i < message->nRecipCount; ++i) {
    const MapiRecipDesc& recipient = message->lpRecips[i];
    record << "recipient " << recipient.ulReserved << " " << recipient.ulRecipClass << " "
           << Quoted(recipient.lpszName) << " " << Quoted(recipient.lpszAddress) << " "
           << recipient.ulEIDSize << " " << recipient.lpEntryID << "\n";
  }
  for (ULONG i = 0; i < message->nFileCount; ++i) {
    const MapiFileDesc& file = message->lpFiles[i];
    record << "file " << file.ulReserved << " " << file.flFlags << " " << file.nPosition << " "
           << Quoted(file.lpszPathName) << " " << Quoted(file.lpszFileName) << " "
           << file.lpFileType << "\n";
  }
  return SUCCESS_SUCCESS;
}

}  // extern "C"

BOOL WINAPI DllMain(HINSTANCE library, DWORD, LPVOID) {
  own_library = library;
  return TRUE;
}
