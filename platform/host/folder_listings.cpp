#include "platform/host/folder_listings.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <system_error>
#include <utility>

#include "platform/host/file_system.h"

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kKeptListings = 8;
// File times stand still for some milliseconds; a folder that has changed so lately may change once
// more without another time.
constexpr std::int64_t kSettledNanoseconds = 50'000'000;

std::int64_t Nanoseconds(const timespec& time) {
  return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

bool IsSettled(const struct stat& status) {
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  return Nanoseconds(now) - Nanoseconds(status.st_ctim) > kSettledNanoseconds;
}

bool IsUnchanged(const struct stat& before, const struct stat& now) {
  return before.st_dev == now.st_dev && before.st_ino == now.st_ino &&
         Nanoseconds(before.st_ctim) == Nanoseconds(now.st_ctim) &&
         Nanoseconds(before.st_mtim) == Nanoseconds(now.st_mtim);
}

bool ComesBefore(const FolderEntry& left, const FolderEntry& right) {
  if (!EqualNoCase(left.name, right.name)) return NoCaseLess()(left.name, right.name);
  return left.path < right.path;
}

// Those of the name, in any case.
auto EntriesOf(const FolderListing& listing, std::string_view name) {
  const auto begin = std::lower_bound(listing.entries.begin(), listing.entries.end(), name,
                                      [](const FolderEntry& entry, std::string_view text) {
                                        return NoCaseLess()(entry.name, text);
                                      });
  const auto end = std::find_if(begin, listing.entries.end(), [&](const FolderEntry& entry) {
    return !EqualNoCase(entry.name, name);
  });
  return std::pair(begin, end);
}

void GiveAlternates(FolderListing& listing) {
  for (FolderEntry& entry : listing.entries) {
    if (entry.name.find('?') == std::string::npos) continue;
    std::uint32_t sum = 2166136261;  // FNV-1a
    for (const char character : entry.path.filename().string())
      sum = (sum ^ static_cast<unsigned char>(character)) * 16777619;
    for (bool taken = true; taken; ++sum) {
      char text[9];
      std::snprintf(text, sizeof text, "~%07X", sum & 0xFFFFFFF);
      const auto [begin, end] = EntriesOf(listing, text);
      taken = begin != end || !listing.alternates.emplace(text, entry.path).second;
      entry.alternate = text;
    }
  }
}

DWORD ReadFolder(const fs::path& folder, FolderListing& listing) {
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    listing.entries.push_back({NameOnDisk(entry->path()), entry->path(), ""});
  }
  if (error) return ErrorFromErrno(error.value());
  std::sort(listing.entries.begin(), listing.entries.end(), ComesBefore);
  GiveAlternates(listing);
  return ERROR_SUCCESS;
}

bool Exists(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error);
}

}  // namespace

std::string NameOnDisk(const fs::path& path) {
  const std::string name = path.filename().string();
  // A name is UTF-8 unless somebody else made it; then its bytes are taken as they are.
  return IsUtf8(name) ? CodePageFromUtf8WithMarks(name) : name;
}

DWORD FolderListings::List(const fs::path& folder, std::shared_ptr<const FolderListing>& listing) {
  struct stat status;
  if (stat(folder.c_str(), &status) != 0) return ErrorFromErrno(errno);
  listing = Recall(folder, status);
  if (listing != nullptr) return ERROR_SUCCESS;
  const bool settled = IsSettled(status);
  const auto fresh = std::make_shared<FolderListing>();
  if (const DWORD error = ReadFolder(folder, *fresh)) return error;
  listing = fresh;
  if (settled) Keep({folder, status, listing});
  return ERROR_SUCCESS;
}

fs::path FolderListings::Find(const fs::path& folder, std::string_view name) {
  std::shared_ptr<const FolderListing> listing;
  if (List(folder, listing) != ERROR_SUCCESS) return {};
  const auto [begin, end] = EntriesOf(*listing, name);
  const auto found =
      std::find_if(begin, end, [](const FolderEntry& entry) { return Exists(entry.path); });
  if (found != end) return found->path;
  const auto alternate = listing->alternates.find(name);
  return alternate == listing->alternates.end() ? fs::path() : alternate->second;
}

std::shared_ptr<const FolderListing> FolderListings::Recall(const fs::path& folder,
                                                            const struct stat& status) {
  const std::lock_guard lock(mutex_);
  const auto found = std::find_if(kept_.begin(), kept_.end(), [&](const Kept& kept) {
    return kept.folder == folder && IsUnchanged(kept.status, status);
  });
  if (found == kept_.end()) return nullptr;
  kept_.splice(kept_.begin(), kept_, found);
  return found->listing;
}

void FolderListings::Keep(Kept kept) {
  const std::lock_guard lock(mutex_);
  kept_.remove_if([&](const Kept& other) { return other.folder == kept.folder; });
  kept_.push_front(std::move(kept));
  if (kept_.size() > kKeptListings) kept_.pop_back();
}

}  // namespace host
