// The text of a profile taken apart into sections and lines, as the platform's profile functions
// see it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// What Windows 95, 98 and Me see of a section, in bytes from the end of its header's line.
inline constexpr std::size_t kOldSectionLimit = 32767;

// How many characters of an integer key's value are looked at.
inline constexpr std::size_t kIntegerTextLimit = 29;

struct ProfileLine {
  std::size_t number;  // in the file, from 1
  std::string_view key;
  std::optional<std::string_view> value;  // none: a line without "="

  bool IsComment() const { return key.starts_with(';'); }
  // What a program that reads the whole section gets.
  std::string Entry() const;
};

struct ProfileSection {
  std::size_t number = 0;  // of the header's line; 0 for what precedes the first header
  std::string_view name;
  std::vector<ProfileLine> lines;  // the empty ones left out

  // The first of several lines of one key counts.
  const ProfileLine* Find(std::string_view key) const;
};

class ProfileFile {
 public:
  // Lines that begin `section_limit` bytes or more after their section's header are not there.
  ProfileFile(const std::string& content, std::size_t section_limit);
  ProfileFile(const ProfileFile&) = delete;
  ProfileFile& operator=(const ProfileFile&) = delete;

  bool IsOf(std::string_view content, std::size_t section_limit) const {
    return content_ == content && section_limit_ == section_limit;
  }
  // In the order of the file; the first holds what precedes the first header.
  const std::vector<ProfileSection>& sections() const { return sections_; }
  // The first of several sections of one name counts; null when there is none.
  const ProfileSection* Find(std::string_view name) const;
  std::optional<std::string_view> Value(std::string_view section, std::string_view key) const;

 private:
  void Parse();

  std::string content_;  // of the file
  std::size_t section_limit_;
  std::string text_;                      // in the code page
  std::vector<ProfileSection> sections_;  // views of the text
};

// Without the blanks of profiles at both ends.
std::string_view TrimProfileText(std::string_view text);

// A value as a text key gets it: without a pair of quotes around it.
std::string_view WithoutProfileQuotes(std::string_view text);

// A value as an integer key gets it: a sign, a base (0x, 0o, 0b, with a small letter) and digits as
// far as they go; modulo 2^32.
std::uint32_t ParseProfileInteger(std::string_view text);

// How many line ends (CR LF, CR or LF) begin in the text.
std::size_t CountLineEnds(std::string_view text);

}  // namespace host
