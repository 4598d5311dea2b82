#include "platform/host/version.h"

#include <sys/mman.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/host/code_page.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"
#include "platform/host/version_resource.h"

using namespace host;

namespace {

const LayerLibrary kLibrary({.name = "VERSION.DLL",
                             .loaded_at_start = true,
                             .exports = {HOST_EXPORT(GetFileVersionInfoA),
                                         HOST_EXPORT(GetFileVersionInfoSizeA),
                                         HOST_EXPORT(VerQueryValueA)}});

constexpr DWORD kLengthSize = 2;
constexpr DWORD kLeastBlock = 6;

// Room for a resource of that length, and behind it for its texts in 8 bits.
constexpr DWORD BufferSize(std::size_t resource) {
  return static_cast<DWORD>(2 * resource + 4);
}

bool IsFile(const FileSystem& files, const std::string& path) {
  FileSystem::Place place;
  return files.Locate(path, place) == ERROR_SUCCESS && place.exists && !place.folder;
}

// As the system looks for a library; the name itself when it is nowhere.
std::string FindFile(const Machine& machine, const std::string& name) {
  if (name.find_first_of("\\/:") != std::string::npos) return name;
  const std::string& program = machine.module_path;
  const std::size_t end = std::min(program.find_last_of("\\/"), program.size());
  for (const std::string& folder :
       {program.substr(0, end), std::string("."), machine.system_folder, machine.windows_folder}) {
    std::string path = folder + "\\" + name;
    if (!folder.empty() && IsFile(machine.files, path)) return path;
  }
  return name;
}

// The bytes of an open file, for as long as this is there.
class MappedFile {
 public:
  explicit MappedFile(const OpenFile& file) {
    struct stat status;
    if (fstat(file.descriptor(), &status) != 0 || status.st_size <= 0) return;
    size_ = static_cast<std::size_t>(status.st_size);
    address_ = mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file.descriptor(), 0);
  }
  ~MappedFile() {
    if (address_ != MAP_FAILED) munmap(address_, size_);
  }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::span<const std::byte> bytes() const {
    if (address_ == MAP_FAILED) return {};
    return {static_cast<const std::byte*>(address_), size_};
  }

 private:
  void* address_ = MAP_FAILED;
  std::size_t size_ = 0;
};

// 0 or the error.
DWORD ReadResource(LPCSTR name, std::optional<VersionResource>& resource) {
  if (name == nullptr) return ERROR_INVALID_PARAMETER;
  const Machine& machine = CurrentMachine();
  std::shared_ptr<OpenFile> file;
  const FileUse use{.read = true, .write = false, .share_read = true, .share_write = true};
  if (const DWORD error =
          machine.files.Open(FindFile(machine, name), use, Disposition::kOpenExisting, file)) {
    return error;
  }
  resource = ReadVersionResource(MappedFile(*file).bytes());
  return resource ? ERROR_SUCCESS : ERROR_RESOURCE_DATA_NOT_FOUND;
}

}  // namespace

DWORD WINAPI GetFileVersionInfoSizeA(LPCSTR name, LPDWORD handle) {
  if (EndableCallFails("GetFileVersionInfoSizeA")) return 0;
  if (handle != nullptr) *handle = 0;
  std::optional<VersionResource> resource;
  const DWORD error = ReadResource(name, resource);
  SetLastError(error);
  return error == ERROR_SUCCESS ? BufferSize(resource->block.size()) : 0;
}

BOOL WINAPI GetFileVersionInfoA(LPCSTR name, DWORD, DWORD size, LPVOID data) {
  if (EndableCallFails("GetFileVersionInfoA")) return FALSE;
  std::optional<VersionResource> resource;
  DWORD error = ReadResource(name, resource);
  if (error == ERROR_SUCCESS && (data == nullptr || size < BufferSize(kLeastBlock))) {
    error = ERROR_INSUFFICIENT_BUFFER;
  }
  if (error != ERROR_SUCCESS) {
    SetLastError(error);
    return FALSE;
  }
  const std::size_t copied = std::min<std::size_t>(resource->block.size(), (size - 4) / 2);
  std::memcpy(data, resource->block.data(), copied);
  const WORD length = static_cast<WORD>(copied);
  std::memcpy(data, &length, kLengthSize);
  return TRUE;
}

BOOL WINAPI VerQueryValueA(LPCVOID block, LPCSTR path, LPVOID* value, UINT* length) {
  if (CallFails("VerQueryValueA")) return FALSE;
  WORD size = 0;
  std::memcpy(&size, block, kLengthSize);
  auto* const bytes = static_cast<std::byte*>(const_cast<void*>(block));
  const auto found = FindVersionValue({bytes, size}, path);
  if (!found) {
    SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
    return FALSE;
  }
  *value = bytes + found->begin;
  *length = static_cast<UINT>(found->size);
  if (!found->is_text) return TRUE;
  const std::string text = CodePageFromUtf16({reinterpret_cast<const char*>(*value), found->size});
  *value = bytes + size + 4 + found->begin / 2;
  *length = static_cast<UINT>(text.size());
  std::memcpy(*value, text.data(), text.size());
  return TRUE;
}
