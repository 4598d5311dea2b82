// The mail client: it sends nothing, and keeps in Machine::mail what it is handed.
#include "platform/host/mapi32.h"

#include "platform/host/kernel32.h"
#include "platform/host/libraries.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

namespace host {
namespace {

MailText Copy(const char* text) {
  return text == nullptr ? MailText() : MailText(text);
}

MailRecipient Copy(const MapiRecipDesc& record) {
  return {.recipient_class = record.ulRecipClass,
          .name = Copy(record.lpszName),
          .address = Copy(record.lpszAddress),
          .reserved = record.ulReserved,
          .entry_id_size = record.ulEIDSize,
          .has_entry_id = record.lpEntryID != nullptr};
}

MailAttachment Copy(const MapiFileDesc& record) {
  MailAttachment attachment = {.path = Copy(record.lpszPathName),
                               .name = Copy(record.lpszFileName),
                               .position = record.nPosition,
                               .reserved = record.ulReserved,
                               .flags = record.flFlags,
                               .has_type = record.lpFileType != nullptr};
  std::string content;
  const bool read = attachment.path &&
                    CurrentMachine().files.ReadWhole(*attachment.path, content) == ERROR_SUCCESS;
  if (read) attachment.content = std::move(content);
  return attachment;
}

ULONG WINAPI SendMail(LHANDLE session, ULONG_PTR window, lpMapiMessage message, FLAGS flags,
                      ULONG reserved) {
  if (EndableCallFails("MAPISendMail")) return MAPI_E_FAILURE;
  SentMail mail = {.subject = Copy(message->lpszSubject),
                   .text = Copy(message->lpszNoteText),
                   .type = Copy(message->lpszMessageType),
                   .date = Copy(message->lpszDateReceived),
                   .conversation = Copy(message->lpszConversationID),
                   .message_reserved = message->ulReserved,
                   .message_flags = message->flFlags,
                   .has_originator = message->lpOriginator != nullptr,
                   .session = session,
                   .window = window,
                   .flags = flags,
                   .reserved = reserved};
  for (ULONG i = 0; i < message->nRecipCount; ++i)
    mail.recipients.push_back(Copy(message->lpRecips[i]));
  for (ULONG i = 0; i < message->nFileCount; ++i)
    mail.attachments.push_back(Copy(message->lpFiles[i]));
  CurrentMachine().mail.push_back(std::move(mail));
  return SUCCESS_SUCCESS;
}

// Of the other functions the program only wants to see that they are there.
ULONG WINAPI NotSupported() {
  return MAPI_E_NOT_SUPPORTED;
}

std::map<std::string, FARPROC, std::less<>> Exports() {
  std::map<std::string, FARPROC, std::less<>> exports;
  for (const char* const name : {"MAPILogon", "MAPILogoff", "MAPISendDocuments", "MAPIFindNext",
                                 "MAPIReadMail", "MAPISaveMail", "MAPIDeleteMail", "MAPIFreeBuffer",
                                 "MAPIAddress", "MAPIDetails", "MAPIResolveName"})
    exports[name] = Export(&NotSupported);
  exports["MAPISendMail"] = Export(&SendMail);
  return exports;
}

const LayerLibrary kLibrary({.name = "MAPI32.DLL", .exports = Exports()});

}  // namespace
}  // namespace host
