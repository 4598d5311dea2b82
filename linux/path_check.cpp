#include "linux/path_check.h"

#include <cstddef>

#include "linux/profile_finding.h"
#include "platform/win32.h"

namespace host {
namespace {

constexpr std::string_view kSeparators = "\\/";
constexpr std::size_t kDriveLength = 2;  // a letter and ":"

bool HoldsVariable(std::string_view path) {
  const std::size_t first = path.find('%');
  return first != std::string_view::npos && path.find('%', first + 2) != std::string_view::npos;
}

bool IsLetter(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

bool BeginsWithDrive(std::string_view path) {
  return path.size() >= kDriveLength && IsLetter(path[0]) && path[1] == ':';
}

// What is wrong with the path's colons; empty for nothing.
std::string ColonFault(std::string_view path, const PathUse& use) {
  const std::size_t colon = path.rfind(':');
  if (colon == std::string_view::npos) return {};
  if (colon >= kDriveLength || !BeginsWithDrive(path)) {
    return std::string("a path has no colon but the one behind the letter of a drive, so ") +
           use.failure + ": begin it like C:\\";
  }
  const std::string drive(path.substr(0, kDriveLength));
  const std::string_view rest = path.substr(kDriveLength);
  if (!rest.empty() && kSeparators.find(rest[0]) != std::string_view::npos) return {};
  return QuotedForFinding(drive) + " without a backslash is the folder in which drive " + drive +
         " stands at that time: write " + drive + "\\" + std::string(rest);
}

// Two separators at the start want a computer and a share behind them.
std::string ShareFault(std::string_view path, const PathUse& use) {
  if (path.size() < 2 || path.find_first_not_of(kSeparators) < 2 ||
      kSeparators.find(path[0]) == std::string_view::npos) {
    return {};
  }
  const std::size_t server = path.find_first_not_of(kSeparators);
  const std::size_t behind = path.find_first_of(kSeparators, server);
  if (path.find_first_not_of(kSeparators, behind) != std::string_view::npos) return {};
  return std::string("no share is named behind the computer, so ") + use.failure +
         ": write \\\\computer\\share" + (use.folder ? "" : "\\file");
}

}  // namespace

std::vector<std::string> CheckPath(std::string_view path, const PathUse& use) {
  std::vector<std::string> reasons;
  const auto add = [&](const std::string& reason) {
    if (!reason.empty()) reasons.push_back(reason);
  };
  if (HoldsVariable(path)) {
    add("variables are not replaced in " + QuotedForFinding(path) + ", so " + use.variables +
        ": write the path itself");
  }
  if (path.find('"') != std::string_view::npos) {
    add(std::string("no path has a double quote, so ") + use.failure +
        ": write the path without quotes, with its blanks");
    return reasons;
  }
  const std::size_t impossible = path.find_first_of("*?<>|");
  if (impossible != std::string_view::npos) {
    add("no path has a " + QuotedForFinding(path.substr(impossible, 1)) + ", so " + use.failure +
        ": write one " + (use.folder ? "folder" : "file") + " with its whole name");
  }
  add(ColonFault(path, use));
  add(ShareFault(path, use));
  if (path.size() >= MAX_PATH) {
    add("the path has " + std::to_string(path.size()) + " characters, so " + use.failure +
        ": none has more than " + std::to_string(MAX_PATH - 1));
  }
  if (!use.folder && !path.empty() && kSeparators.find(path.back()) != std::string_view::npos) {
    add(std::string("the path is that of a folder, so ") + use.failure +
        ": add the name of the file");
  }
  return reasons;
}

}  // namespace host
