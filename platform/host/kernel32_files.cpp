// Files and the current folder.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <string_view>

#include "platform/host/devices.h"
#include "platform/host/file_attributes.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

using namespace host;

namespace {

bool Refuse(DWORD error) {
  SetLastError(error);
  return false;
}

std::shared_ptr<OpenFile> FileOf(HANDLE handle) {
  auto file = CurrentMachine().handles.FindAs<OpenFile>(reinterpret_cast<std::uintptr_t>(handle));
  if (file == nullptr) SetLastError(ERROR_INVALID_HANDLE);
  return file;
}

// The handle of the current process or thread, which needs no closing.
bool IsPseudoHandle(HANDLE handle) {
  const auto value = reinterpret_cast<LONG_PTR>(handle);
  return value == -1 || value == -2;
}

// Handles of other functions have their own ways of closing.
bool IsClosedByCloseHandle(const Object& object) {
  constexpr std::array<std::string_view, 6> kKinds = {"device",   "file",   "process",
                                                      "snapshot", "thread", "token"};
  return std::find(kKinds.begin(), kKinds.end(), object.kind()) != kKinds.end();
}

// Each knows its own names.
constexpr OpenDeviceFunction kDevices[] = {OpenVwin32, OpenPhysicalDrive, OpenDriveLetter};

HANDLE OpenDevice(Machine& machine, std::string_view name) {
  for (const OpenDeviceFunction open : kDevices) {
    if (auto device = open(machine, name)) {
      return reinterpret_cast<HANDLE>(machine.handles.Open(std::move(device)));
    }
  }
  SetLastError(ERROR_FILE_NOT_FOUND);
  return INVALID_HANDLE_VALUE;
}

int OriginOf(DWORD method) {
  switch (method) {
    case FILE_BEGIN:
      return SEEK_SET;
    case FILE_CURRENT:
      return SEEK_CUR;
    case FILE_END:
      return SEEK_END;
    default:
      return -1;
  }
}

}  // namespace

HANDLE WINAPI CreateFileA(LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES,
                          DWORD disposition, DWORD, HANDLE) {
  if (EndableCallFails("CreateFileA")) return INVALID_HANDLE_VALUE;
  if (disposition < CREATE_NEW || disposition > TRUNCATE_EXISTING) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return INVALID_HANDLE_VALUE;
  }
  const FileUse use{.read = (access & GENERIC_READ) != 0,
                    .write = (access & GENERIC_WRITE) != 0,
                    .share_read = (share & FILE_SHARE_READ) != 0,
                    .share_write = (share & FILE_SHARE_WRITE) != 0};
  Machine& machine = CurrentMachine();
  const std::string_view path = name == nullptr ? "" : name;
  if (path.starts_with(kDevicePrefix)) {
    return OpenDevice(machine, path.substr(kDevicePrefix.size()));
  }
  std::shared_ptr<OpenFile> file;
  bool existed = false;
  const DWORD error =
      machine.files.Open(path, use, static_cast<Disposition>(disposition), file, &existed);
  if (error != ERROR_SUCCESS) {
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
  }
  const bool may_make = disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS;
  SetLastError(may_make && existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
  return reinterpret_cast<HANDLE>(machine.handles.Open(std::move(file)));
}

BOOL WINAPI ReadFile(HANDLE handle, LPVOID buffer, DWORD size, LPDWORD count, LPOVERLAPPED) {
  if (count != nullptr) *count = 0;
  if (EndableCallFails("ReadFile")) return FALSE;
  const std::shared_ptr<OpenFile> file = FileOf(handle);
  if (file == nullptr) return FALSE;
  if (!file->use().read) return Refuse(ERROR_ACCESS_DENIED);
  DWORD done = 0;
  while (done < size) {
    const ssize_t part = read(file->descriptor(), static_cast<char*>(buffer) + done, size - done);
    if (part < 0) return Refuse(ErrorFromErrno(errno));
    if (part == 0) break;
    done += static_cast<DWORD>(part);
  }
  if (count != nullptr) *count = done;
  return TRUE;
}

BOOL WINAPI WriteFile(HANDLE handle, LPCVOID data, DWORD size, LPDWORD count, LPOVERLAPPED) {
  if (count != nullptr) *count = 0;
  if (EndableCallFails("WriteFile")) return FALSE;
  const std::shared_ptr<OpenFile> file = FileOf(handle);
  if (file == nullptr) return FALSE;
  if (!file->use().write) return Refuse(ERROR_ACCESS_DENIED);
  DWORD done = 0;
  while (done < size) {
    const ssize_t part =
        write(file->descriptor(), static_cast<const char*>(data) + done, size - done);
    if (part < 0) return Refuse(ErrorFromErrno(errno));
    done += static_cast<DWORD>(part);
    if (count != nullptr) *count = done;
  }
  return TRUE;
}

DWORD WINAPI GetFileSize(HANDLE handle, LPDWORD high) {
  if (CallFails("GetFileSize")) return INVALID_FILE_SIZE;
  const std::shared_ptr<OpenFile> file = FileOf(handle);
  if (file == nullptr) return INVALID_FILE_SIZE;
  struct stat status;
  if (fstat(file->descriptor(), &status) != 0) {
    SetLastError(ErrorFromErrno(errno));
    return INVALID_FILE_SIZE;
  }
  const auto size = static_cast<std::uint64_t>(status.st_size);
  if (high != nullptr) *high = static_cast<DWORD>(size >> 32);
  return static_cast<DWORD>(size);
}

DWORD WINAPI SetFilePointer(HANDLE handle, LONG distance, LONG* distance_high, DWORD method) {
  if (CallFails("SetFilePointer")) return INVALID_SET_FILE_POINTER;
  const std::shared_ptr<OpenFile> file = FileOf(handle);
  if (file == nullptr) return INVALID_SET_FILE_POINTER;
  const int origin = OriginOf(method);
  if (origin < 0) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return INVALID_SET_FILE_POINTER;
  }
  // Without a high half the low one is signed.
  std::int64_t offset = distance;
  if (distance_high != nullptr) {
    offset = static_cast<std::int64_t>(*distance_high) * (std::int64_t{1} << 32) +
             static_cast<DWORD>(distance);
  }
  const off_t position = lseek(file->descriptor(), offset, origin);
  if (position < 0) {
    SetLastError(ERROR_NEGATIVE_SEEK);
    return INVALID_SET_FILE_POINTER;
  }
  if (distance_high != nullptr) *distance_high = static_cast<LONG>(position >> 32);
  return static_cast<DWORD>(position);
}

BOOL WINAPI CloseHandle(HANDLE handle) {
  if (CallFails("CloseHandle")) return FALSE;
  if (IsPseudoHandle(handle)) return TRUE;
  HandleTable& handles = CurrentMachine().handles;
  const auto value = reinterpret_cast<std::uintptr_t>(handle);
  const std::shared_ptr<Object> object = handles.Find(value);
  if (object == nullptr || !IsClosedByCloseHandle(*object)) return Refuse(ERROR_INVALID_HANDLE);
  handles.Close(value);
  return TRUE;
}

DWORD WINAPI GetFileAttributesA(LPCSTR name) {
  if (EndableCallFails("GetFileAttributesA")) return INVALID_FILE_ATTRIBUTES;
  FileSystem::Place place;
  DWORD error = CurrentMachine().files.Locate(name == nullptr ? "" : name, place);
  if (error == ERROR_SUCCESS && !place.exists) error = ERROR_FILE_NOT_FOUND;
  FileFacts facts;
  if (error == ERROR_SUCCESS) error = ReadFileFacts(place.path, facts);
  if (error == ERROR_SUCCESS) return facts.attributes;
  SetLastError(error);
  return INVALID_FILE_ATTRIBUTES;
}

BOOL WINAPI SetCurrentDirectoryA(LPCSTR path) {
  if (EndableCallFails("SetCurrentDirectoryA")) return FALSE;
  const DWORD error = CurrentMachine().files.SetCurrentFolder(path == nullptr ? "" : path);
  return error == ERROR_SUCCESS ? TRUE : Refuse(error);
}
