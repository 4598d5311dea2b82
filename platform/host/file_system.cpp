#include "platform/host/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <list>
#include <system_error>
#include <utility>

#include "platform/host/code_page.h"
#include "platform/host/kernel32.h"

namespace host {

namespace fs = std::filesystem;

// Who has which file open, so that sharing can be refused.
struct FileClaims {
  std::mutex mutex;
  std::list<const OpenFile*> files;

  // With the mutex: whether somebody's claim on the file and the wanted use exclude each other.
  bool Refuse(const struct stat& status, const FileUse& wanted) const {
    return std::any_of(files.begin(), files.end(), [&](const OpenFile* file) {
      const FileUse& held = file->use_;
      return file->device_ == status.st_dev && file->number_ == status.st_ino &&
             ((wanted.read && !held.share_read) || (wanted.write && !held.share_write) ||
              (held.read && !wanted.share_read) || (held.write && !wanted.share_write));
    });
  }

  // With the mutex.
  static void Add(const std::shared_ptr<FileClaims>& claims, OpenFile& file) {
    struct stat status;
    if (fstat(file.descriptor_, &status) != 0) return;
    file.device_ = status.st_dev;
    file.number_ = status.st_ino;
    file.claims_ = claims;
    claims->files.push_back(&file);
  }
};

OpenFile::OpenFile(int descriptor, const FileUse& use)
    : Object("file"), descriptor_(descriptor), use_(use) {}

OpenFile::~OpenFile() {
  if (claims_ != nullptr) {
    const std::lock_guard lock(claims_->mutex);
    claims_->files.remove(this);
  }
  close(descriptor_);
}

namespace {

bool IsSeparator(char character) {
  return character == '\\' || character == '/';
}

bool HasDrive(std::string_view path) {
  return path.size() >= 2 && path[1] == ':' && UpperCase(path[0]) >= 'A' &&
         UpperCase(path[0]) <= 'Z';
}

// A full path taken apart; "." and ".." are worked in by the text alone, as Windows does.
struct Parts {
  char drive = 0;  // 0: the user's own files
  std::vector<std::string> components;
};

void AddComponent(Parts& parts, std::string_view component) {
  if (component == "..") {
    if (!parts.components.empty()) parts.components.pop_back();
    return;
  }
  // On a drive final dots and blanks do not belong to a name.
  while (parts.drive != 0 && !component.empty() &&
         (component.back() == '.' || component.back() == ' '))
    component.remove_suffix(1);
  if (!component.empty() && component != ".") parts.components.emplace_back(component);
}

void AddComponents(Parts& parts, std::string_view rest) {
  while (!rest.empty()) {
    const auto end = std::find_if(rest.begin(), rest.end(), IsSeparator);
    const auto length = static_cast<std::size_t>(end - rest.begin());
    AddComponent(parts, rest.substr(0, length));
    rest.remove_prefix(std::min(length + 1, rest.size()));
  }
}

Parts SplitFullPath(std::string_view path) {
  Parts parts;
  if (HasDrive(path)) {
    parts.drive = UpperCase(path[0]);
    path.remove_prefix(2);
  }
  AddComponents(parts, path);
  return parts;
}

DWORD Split(std::string_view path, std::string_view current_folder, Parts& parts) {
  if (path.empty()) return ERROR_PATH_NOT_FOUND;
  if (path.starts_with("\\\\.\\")) return ERROR_FILE_NOT_FOUND;  // no device is described here
  if (path.starts_with("\\\\")) return ERROR_PATH_NOT_FOUND;     // nor any server
  parts = SplitFullPath(current_folder);
  if (path[0] == '/') {
    parts = SplitFullPath(path);
  } else if (HasDrive(path)) {
    const char drive = UpperCase(path[0]);
    path.remove_prefix(2);
    const bool from_root = drive != parts.drive || (!path.empty() && IsSeparator(path[0]));
    if (from_root) parts = Parts{drive, {}};
    AddComponents(parts, path);
  } else {
    if (IsSeparator(path[0])) parts.components.clear();
    AddComponents(parts, path);
  }
  return parts.drive != 0 && path.size() >= MAX_PATH ? ERROR_FILENAME_EXCED_RANGE : ERROR_SUCCESS;
}

bool Exists(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error);
}

bool IsFolder(const fs::path& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

// Goes from the folder to what the component names in it; false when it is not there, and the path
// is then the one under which it would be made.
bool Descend(FolderListings& listings, fs::path& path, const std::string& component) {
  const fs::path folder = path;
  path = folder / Utf8FromCodePage(component);
  if (Exists(path)) return true;
  const fs::path found = listings.Find(folder, component);
  if (found.empty()) return false;
  path = found;
  return true;
}

bool IsPossibleName(const Parts& parts, const std::string& component) {
  // The user's own files are not bound by what Windows allows, but patterns are no names there
  // either.
  const std::string_view forbidden = parts.drive != 0 ? "*?<>|\":" : "*?";
  return component.find_first_of(forbidden) == std::string::npos;
}

DWORD Walk(const Parts& parts, const fs::path& start, FolderListings& listings,
           FileSystem::Place& place) {
  place.path = start;
  place.own = parts.drive == 0;
  place.root = parts.components.empty();
  place.exists = Exists(start);
  place.name = place.own ? std::string() : std::string{parts.drive, ':'};
  for (const std::string& component : parts.components) {
    if (!place.exists || !IsFolder(place.path)) return ERROR_PATH_NOT_FOUND;
    // Never a part of a name, although searches show it where the code page lacks a character.
    if (!place.own && component.find('?') != std::string::npos) return ERROR_INVALID_NAME;
    place.exists = Descend(listings, place.path, component);
    if (!place.exists && component.size() > NAME_MAX) return ERROR_FILENAME_EXCED_RANGE;
    if (!place.exists && !IsPossibleName(parts, component)) return ERROR_INVALID_NAME;
    place.name += (place.own ? '/' : '\\') + component;
  }
  if (place.root) place.name += place.own ? '/' : '\\';
  place.folder = place.exists && IsFolder(place.path);
  return ERROR_SUCCESS;
}

int OpenFlags(const FileUse& use) {
  if (use.read && use.write) return O_RDWR;
  if (use.write) return O_WRONLY;
  return use.read ? O_RDONLY : O_PATH;
}

// Opens and, where the disposition says so, makes or empties the file; a descriptor, or -1.
int OpenDescriptor(const fs::path& path, const FileUse& use, Disposition disposition, bool exists) {
  const bool empty = disposition == Disposition::kCreateAlways ||
                     (disposition == Disposition::kTruncate && exists);
  if (!exists || empty) {
    const int made =
        open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | (empty ? O_TRUNC : 0), 0666);
    if (made < 0) return -1;
    close(made);
  }
  return open(path.c_str(), OpenFlags(use) | O_CLOEXEC);
}

}  // namespace

FileSystem::FileSystem() : claims_(std::make_shared<FileClaims>()) {}

void FileSystem::MountDrive(char letter, fs::path folder) {
  const std::lock_guard lock(mutex_);
  drives_[UpperCase(letter)] = std::move(folder);
}

void FileSystem::StateSize(std::string_view path, std::uint64_t size) {
  std::string full_path = FullPath(path);
  const std::lock_guard lock(mutex_);
  stated_sizes_.insert_or_assign(std::move(full_path), size);
}

std::optional<std::uint64_t> FileSystem::StatedSize(std::string_view path) const {
  return FindStated(stated_sizes_, path);
}

std::optional<std::uint64_t> FileSystem::FindStated(const StatedNumbers& numbers,
                                                    std::string_view path) const {
  const std::lock_guard lock(mutex_);
  const auto found = numbers.find(path);
  return found == numbers.end() ? std::nullopt : std::optional(found->second);
}

std::string FileSystem::MissingSizedFile() const {
  StatedNumbers sizes;
  {
    const std::lock_guard lock(mutex_);
    sizes = stated_sizes_;
  }
  for (const auto& [path, size] : sizes) {
    Place place;
    if (Locate(path, place) != ERROR_SUCCESS || !place.exists || place.folder) return path;
  }
  return "";
}

std::optional<fs::path> FileSystem::DriveFolder(char letter) const {
  const std::lock_guard lock(mutex_);
  const auto found = drives_.find(UpperCase(letter));
  return found == drives_.end() ? std::nullopt : std::optional(found->second);
}

std::string FileSystem::FullPath(std::string_view path) const {
  Parts parts;
  if (Split(path, CurrentFolder(), parts) != ERROR_SUCCESS) return std::string(path);
  const char separator = parts.drive != 0 ? '\\' : '/';
  std::string full = parts.drive != 0 ? std::string{parts.drive, ':'} : "";
  for (const std::string& component : parts.components)
    full += separator + component;
  return parts.components.empty() ? full + separator : full;
}

DWORD FileSystem::Locate(std::string_view path, Place& place) const {
  Parts parts;
  if (const DWORD error = Split(path, CurrentFolder(), parts)) return error;
  const std::optional<fs::path> start = parts.drive != 0 ? DriveFolder(parts.drive) : fs::path("/");
  if (!start) return ERROR_PATH_NOT_FOUND;
  place = Place();
  if (const DWORD error = Walk(parts, *start, listings_, place)) return error;
  // A final separator asks for a folder.
  if (!IsSeparator(path.back()) || place.folder) return ERROR_SUCCESS;
  return place.exists ? ERROR_INVALID_NAME : ERROR_FILE_NOT_FOUND;
}

DWORD FileSystem::Open(std::string_view path, const FileUse& use, Disposition disposition,
                       std::shared_ptr<OpenFile>& file, bool* existed) const {
  Place place;
  if (const DWORD error = Locate(path, place)) return error;
  if (existed != nullptr) *existed = place.exists;
  const bool must_exist =
      disposition == Disposition::kOpenExisting || disposition == Disposition::kTruncate;
  if (must_exist && !place.exists) return ERROR_FILE_NOT_FOUND;
  if (disposition == Disposition::kCreateNew && place.exists) return ERROR_FILE_EXISTS;
  if (place.folder) return ERROR_ACCESS_DENIED;
  const bool changes = use.write || !place.exists || disposition == Disposition::kCreateAlways ||
                       disposition == Disposition::kTruncate;
  if (changes && !place.own) return ERROR_WRITE_PROTECT;
  // A pipe or a device among the files of a drive would keep the run waiting.
  if (!place.own && !std::filesystem::is_regular_file(place.path)) return ERROR_ACCESS_DENIED;

  const std::lock_guard lock(claims_->mutex);
  const bool claims = use.read || use.write;
  struct stat status;
  if (claims && stat(place.path.c_str(), &status) == 0 && claims_->Refuse(status, use)) {
    return ERROR_SHARING_VIOLATION;
  }
  const int descriptor = OpenDescriptor(place.path, use, disposition, place.exists);
  if (descriptor < 0) return ErrorFromErrno(errno);
  file = std::make_shared<OpenFile>(descriptor, use);
  if (claims) FileClaims::Add(claims_, *file);
  return ERROR_SUCCESS;
}

void FileSystem::StateWriteTime(std::string_view path, std::uint64_t time) {
  const std::lock_guard lock(mutex_);
  write_times_.insert_or_assign(std::string(path), time);
}

std::optional<std::uint64_t> FileSystem::StatedWriteTime(std::string_view path) const {
  if (!HasDrive(path)) return std::nullopt;
  const std::optional<std::uint64_t> own = FindStated(write_times_, path);
  return own ? own : FindStated(write_times_, "*");
}

DWORD FileSystem::ReadWhole(std::string_view path, std::string& content) const {
  std::shared_ptr<OpenFile> file;
  const FileUse use{.read = true, .write = false, .share_read = true, .share_write = true};
  if (const DWORD error = Open(path, use, Disposition::kOpenExisting, file)) return error;
  content.clear();
  char block[16384];
  while (true) {
    const ssize_t size = read(file->descriptor(), block, sizeof(block));
    if (size < 0) return ErrorFromErrno(errno);
    if (size == 0) return ERROR_SUCCESS;
    content.append(block, static_cast<std::size_t>(size));
  }
}

DWORD FileSystem::List(const Place& folder, std::vector<Entry>& entries) const {
  entries.clear();
  std::shared_ptr<const FolderListing> listing;
  if (const DWORD error = listings_.List(folder.path, listing)) return error;
  entries = listing->entries;
  return ERROR_SUCCESS;
}

std::string FileSystem::CurrentFolder() const {
  const std::lock_guard lock(mutex_);
  return current_folder_;
}

DWORD FileSystem::SetCurrentFolder(std::string_view path) {
  Place place;
  if (const DWORD error = Locate(path, place)) return error;
  if (!place.exists) return ERROR_FILE_NOT_FOUND;
  if (!place.folder) return ERROR_DIRECTORY;
  if (access(place.path.c_str(), X_OK) != 0) return ERROR_ACCESS_DENIED;
  const std::lock_guard lock(mutex_);
  current_folder_ = place.name;
  return ERROR_SUCCESS;
}

DWORD ErrorFromErrno(int number) {
  switch (number) {
    case ENOENT:
      return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
      return ERROR_PATH_NOT_FOUND;
    case EROFS:
      return ERROR_WRITE_PROTECT;
    case EMFILE:
    case ENFILE:
      return ERROR_TOO_MANY_OPEN_FILES;
    case ENOSPC:
    case EDQUOT:
      return ERROR_DISK_FULL;
    case EEXIST:
      return ERROR_FILE_EXISTS;
    case ENAMETOOLONG:
      return ERROR_FILENAME_EXCED_RANGE;
    case ENOMEM:
      return ERROR_NOT_ENOUGH_MEMORY;
    case EINVAL:
      return ERROR_INVALID_PARAMETER;
    default:
      return ERROR_ACCESS_DENIED;
  }
}

}  // namespace host
