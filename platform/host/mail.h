// What the program hands to the mail client, as it stood at that moment.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/host/windows_types.h"

namespace host {

// Texts are absent where the record has a null pointer.
using MailText = std::optional<std::string>;

struct MailRecipient {
  ULONG recipient_class = 0;  // MAPI_TO, MAPI_CC, MAPI_BCC
  MailText name;
  MailText address;
  // Of a record as the program makes them these are 0 and absent.
  ULONG reserved = 0;
  ULONG entry_id_size = 0;
  bool has_entry_id = false;
  bool operator==(const MailRecipient&) const = default;
};

struct MailAttachment {
  MailText path;
  MailText name;
  MailText content;  // of the file; absent: it could not be read
  ULONG position = 0;
  ULONG reserved = 0;
  ULONG flags = 0;
  bool has_type = false;
  bool operator==(const MailAttachment&) const = default;
};

struct SentMail {
  MailText subject;
  MailText text;
  std::vector<MailRecipient> recipients;
  std::vector<MailAttachment> attachments;
  // The rest of the message, and of the call.
  MailText type;
  MailText date;
  MailText conversation;
  ULONG message_reserved = 0;
  ULONG message_flags = 0;
  bool has_originator = false;
  ULONG_PTR session = 0;
  ULONG_PTR window = 0;
  ULONG flags = 0;
  ULONG reserved = 0;
};

}  // namespace host
