#include "linux/free_text_check.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/host/code_page.h"
#include "util/profile_text.h"

namespace host {
namespace {

using hostscope::ProfileText;

class FreeTextCheck {
 public:
  FreeTextCheck(const std::string& content, const ProfileFile& file, const char* name,
                std::size_t most)
      : content_(content),
        file_(file),
        name_(name),
        header_(SectionHeader(name)),
        most_(most),
        body_(ProfileText::FindBody(content.c_str(), name)),
        found_(body_.header == nullptr ? 0 : LineOf(body_.header)) {}

  std::vector<ProfileFinding> Run() {
    const ProfileSection* const section = SectionAt(found_);
    const bool at_header = section != nullptr && EqualNoCase(section->name, name_);
    CheckHeaders(at_header);
    if (at_header) CheckBody();
    return std::move(findings_);
  }

 private:
  void Report(std::size_t line, std::string reason) {
    findings_.push_back({line, std::move(reason)});
  }
  std::size_t LineOf(const char* place) const {
    const auto offset = static_cast<std::size_t>(place - content_.c_str());
    return 1 + CountLineEnds(std::string_view(content_).substr(0, offset));
  }
  // The section whose header stands in the line; null for none.
  const ProfileSection* SectionAt(std::size_t line) const {
    const auto found =
        std::find_if(file_.sections().begin() + 1, file_.sections().end(),
                     [&](const ProfileSection& section) { return section.number == line; });
    return found == file_.sections().end() ? nullptr : &*found;
  }

  void CheckHeaders(bool at_header);
  void CheckBody();
  void CheckComments();

  const std::string& content_;
  const ProfileFile& file_;
  const char* name_;
  const std::string header_;
  const std::size_t most_;
  const ProfileText::Body body_;
  const std::size_t found_;  // the line of the header that the program finds; 0 for none
  std::vector<ProfileFinding> findings_;
};

// The program looks for the header letter for letter, wherever it stands.
void FreeTextCheck::CheckHeaders(bool at_header) {
  if (found_ != 0 && !at_header) {
    Report(found_, header_ +
                       " stands in this line, so the text is taken from here and not from "
                       "below a header: write the name without brackets");
    return;
  }
  for (auto section = file_.sections().begin() + 1; section != file_.sections().end(); ++section) {
    if (!EqualNoCase(section->name, name_) || section->number == found_) continue;
    if (at_header) {
      Report(section->number, "the text is taken from line " + std::to_string(found_) +
                                  ", so the one below this header is not read: leave one out");
    } else {
      Report(section->number, "the text below this header is not found: write " + header_ +
                                  " at the start of the line, in capitals and without blanks in "
                                  "the brackets");
    }
  }
}

void FreeTextCheck::CheckBody() {
  const char* const behind = body_.header + header_.size();
  if (*behind != '\0' && *behind != '\r' && *behind != '\n') {
    Report(found_,
           "what stands behind the header goes into the text, but for its first two "
           "characters: end the line behind the \"]\"");
  }
  const auto length = static_cast<std::size_t>(body_.end - body_.start);
  if (length > most_) {
    Report(LineOf(body_.start + most_), "the text of " + header_ + " has " +
                                            std::to_string(length) +
                                            " characters and is cut after " +
                                            std::to_string(most_) + ", in this line: shorten it");
  }
  CheckComments();
  if (*body_.boundary == '[' && SectionAt(LineOf(body_.boundary)) == nullptr) {
    Report(LineOf(body_.boundary), "the text of " + header_ +
                                       " ends before the \"[\" in this line: write another "
                                       "bracket");
  }
}

// The first of them is enough.
void FreeTextCheck::CheckComments() {
  const std::string_view text(body_.start, static_cast<std::size_t>(body_.end - body_.start));
  std::size_t at = text.starts_with(';') ? 0 : text.find("\n;");
  if (at == std::string_view::npos) return;
  if (text[at] == '\n') ++at;
  Report(LineOf(body_.start + at), "the text of " + header_ +
                                       " has no comments, so this line is part of it: move it "
                                       "above the header, or below that of another section");
}

}  // namespace

std::vector<ProfileFinding> CheckFreeText(const std::string& content, const ProfileFile& file,
                                          const char* name, std::size_t most) {
  return FreeTextCheck(content, file, name, most).Run();
}

}  // namespace host
