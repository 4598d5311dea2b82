#include "app/start_notice.h"

#include "util/text.h"

namespace hostscope {
namespace {

constexpr const char* kNoProfile[] = {"Can not find ini file!", "", kPressAnyKey};

constexpr const char* kCredits[] = {"Hostscope was designed,", "written and tested by",
                                    "the Hostscope developers.", "", kPressAnyKey};

constexpr const char* kUsage[] = {"Usage: hscope [ini] [out]",
                                  "",
                                  "[ini]: Settings file path",
                                  "[out]: Report file output",
                                  "       folder (current by ",
                                  "       default)",
                                  "",
                                  kPressAnyKey};

struct NoticeRow {
  const char* argument;
  std::span<const char* const> lines;
};

constexpr NoticeRow kNotices[] = {{"a", kCredits}, {"h", kUsage}, {"?", kUsage}};

const NoticeRow* FindNotice(const char* ini_argument) {
  for (const NoticeRow& row : kNotices) {
    if (SameTextIgnoringCase(ini_argument, row.argument)) return &row;
  }
  return nullptr;
}

}  // namespace

bool AsksForNotice(const char* ini_argument) {
  return FindNotice(ini_argument) != nullptr;
}

std::span<const char* const> StartNotice(const char* ini_argument) {
  const NoticeRow* const row = FindNotice(ini_argument);
  return row != nullptr ? row->lines : kNoProfile;
}

}  // namespace hostscope
