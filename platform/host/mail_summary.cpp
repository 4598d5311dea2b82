// A message for the mail client, for whoever sits at the terminal.
#include "platform/host/mapi32.h"
#include "platform/host/terminal.h"

namespace host {
namespace {

const char* Heading(ULONG recipient_class) {
  if (recipient_class == MAPI_CC) return "Copy to";
  return recipient_class == MAPI_BCC ? "Blind copy to" : "To";
}

std::string Person(const MailRecipient& recipient) {
  const std::string name = recipient.name.value_or("");
  const std::string address = recipient.address.value_or("");
  if (name.empty() && address.empty()) return "(for the user to fill in)";
  if (name.empty() || address.empty()) return name + address;
  return name + " <" + address + ">";
}

std::string Line(const std::string& heading, const std::string& text) {
  return "  " + heading + ": " + TerminalText(text) + "\n";
}

std::string Indented(const std::string& text) {
  std::string lines;
  for (const char character : TerminalText(text, true)) {
    const bool begins = lines.empty() || lines.back() == '\n';
    if (begins && character != '\n') lines += "    ";
    lines += character;
  }
  return lines + "\n";
}

}  // namespace

std::string MailSummary(const SentMail& mail) {
  std::string summary = "Prepared in the mail client (nothing is sent from here):\n";
  for (const MailRecipient& recipient : mail.recipients)
    summary += Line(Heading(recipient.recipient_class), Person(recipient));
  summary += Line("Subject", mail.subject.value_or(""));
  for (const MailAttachment& attachment : mail.attachments) {
    const std::string size = attachment.content
                                 ? std::to_string(attachment.content->size()) + " bytes"
                                 : "which can not be read";
    summary += Line("Attached", attachment.path.value_or("") + ", " + size);
  }
  const std::string text = mail.text.value_or("");
  return text.empty() ? summary : summary + "  Text:\n" + Indented(text);
}

}  // namespace host
