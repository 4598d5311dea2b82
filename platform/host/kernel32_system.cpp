// The version, the clock, the names and folders of the machine.
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "platform/host/file_time.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

using namespace host;

namespace {

thread_local DWORD last_error = 0;

// As the folder functions answer: the length when the text fits, else the size it needs.
DWORD GiveText(std::string_view text, LPSTR buffer, DWORD size) {
  if (text.size() >= size) return static_cast<DWORD>(text.size() + 1);
  std::memcpy(buffer, text.data(), text.size());
  buffer[text.size()] = '\0';
  return static_cast<DWORD>(text.size());
}

// A folder that the machine does not state cannot be given.
DWORD GiveFolder(std::string_view folder, LPSTR buffer, DWORD size) {
  if (!folder.empty()) return GiveText(folder, buffer, size);
  SetLastError(ERROR_PATH_NOT_FOUND);
  return 0;
}

SYSTEMTIME SystemTime(const LocalTime& time) {
  return {time.year, time.month,  time.day_of_week, time.day,
          time.hour, time.minute, time.second,      time.milliseconds};
}

template <typename Record>
void FillVersion(const WindowsVersion& version, Record& record) {
  record.dwMajorVersion = version.major;
  record.dwMinorVersion = version.minor;
  record.dwBuildNumber = version.build;
  record.dwPlatformId = version.platform_id;
  std::memset(record.szCSDVersion, 0, sizeof(record.szCSDVersion));
  version.service_pack_text.copy(record.szCSDVersion, sizeof(record.szCSDVersion) - 1);
}

}  // namespace

BOOL WINAPI GetVersionExA(LPOSVERSIONINFOA record) {
  if (CallFails("GetVersionExA")) return FALSE;
  const WindowsVersion& version = CurrentMachine().version;
  if (record->dwOSVersionInfoSize == sizeof(OSVERSIONINFOA)) {
    FillVersion(version, *record);
    return TRUE;
  }
  if (record->dwOSVersionInfoSize != sizeof(OSVERSIONINFOEXA) || !version.extended_record) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  auto& extended = *reinterpret_cast<LPOSVERSIONINFOEXA>(record);
  FillVersion(version, extended);
  extended.wServicePackMajor = version.service_pack_major;
  extended.wServicePackMinor = version.service_pack_minor;
  extended.wSuiteMask = version.suite_mask;
  extended.wProductType = version.product_type;
  extended.wReserved = 0;
  return TRUE;
}

void WINAPI OutputDebugStringA(LPCSTR text) {
  if (CallFails("OutputDebugStringA") || text == nullptr) return;
  const auto& debugger = CurrentMachine().debugger;
  if (debugger) debugger(text);
}

DWORD WINAPI GetTickCount() {
  if (CallFails("GetTickCount")) return 0;
  return CurrentMachine().tick_count;
}

void WINAPI GetLocalTime(LPSYSTEMTIME time) {
  if (CallFails("GetLocalTime")) return;
  *time = SystemTime(CurrentMachine().local_time);
}

BOOL WINAPI FileTimeToSystemTime(const FILETIME* file_time, LPSYSTEMTIME time) {
  if (CallFails("FileTimeToSystemTime")) return FALSE;
  const auto parts =
      TimeOf(std::uint64_t{file_time->dwHighDateTime} << 32 | file_time->dwLowDateTime);
  if (!parts) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  *time = SystemTime(*parts);
  return TRUE;
}

BOOL WINAPI GetComputerNameA(LPSTR buffer, LPDWORD size) {
  if (CallFails("GetComputerNameA")) return FALSE;
  const std::string& name = CurrentMachine().computer_name;
  const DWORD room = *size;
  *size = GiveText(name, buffer, room);
  if (name.size() < room) return TRUE;
  SetLastError(ERROR_BUFFER_OVERFLOW);
  return FALSE;
}

int WINAPI GetLocaleInfoA(LCID locale, LCTYPE type, LPSTR buffer, int size) {
  if (CallFails("GetLocaleInfoA")) return 0;
  if (size < 0 || (locale != LOCALE_USER_DEFAULT && locale != LOCALE_SYSTEM_DEFAULT)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  std::optional<std::string> text;
  if (type == LOCALE_SLANGUAGE) text = CurrentMachine().locale.language;
  if (type == LOCALE_SENGLANGUAGE) text = CurrentMachine().locale.english_language;
  if (!text) {
    SetLastError(ERROR_INVALID_FLAGS);
    return 0;
  }
  const int needed = static_cast<int>(text->size() + 1);
  if (size == 0) return needed;
  if (size < needed) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  std::memcpy(buffer, text->c_str(), static_cast<std::size_t>(needed));
  return needed;
}

UINT WINAPI GetWindowsDirectoryA(LPSTR buffer, UINT size) {
  if (CallFails("GetWindowsDirectoryA")) return 0;
  return GiveFolder(CurrentMachine().windows_folder, buffer, size);
}

UINT WINAPI GetSystemDirectoryA(LPSTR buffer, UINT size) {
  if (CallFails("GetSystemDirectoryA")) return 0;
  return GiveFolder(CurrentMachine().system_folder, buffer, size);
}

DWORD WINAPI GetTempPathA(DWORD size, LPSTR buffer) {
  if (CallFails("GetTempPathA")) return 0;
  return GiveFolder(CurrentMachine().temp_folder, buffer, size);
}

DWORD WINAPI GetCurrentDirectoryA(DWORD size, LPSTR buffer) {
  if (CallFails("GetCurrentDirectoryA")) return 0;
  return GiveText(CurrentMachine().files.CurrentFolder(), buffer, size);
}

DWORD WINAPI GetFullPathNameA(LPCSTR path, DWORD size, LPSTR buffer, LPSTR*) {
  if (CallFails("GetFullPathNameA")) return 0;
  return GiveText(CurrentMachine().files.FullPath(path), buffer, size);
}

// The program's own copy: it may change it in place.
LPSTR WINAPI GetCommandLineA() {
  if (CallFails("GetCommandLineA")) return nullptr;
  return CurrentMachine().command_line.data();
}

// These two can't be made to fail: that a call fails is told through them.
DWORD WINAPI GetLastError() {
  return last_error;
}

void WINAPI SetLastError(DWORD error) {
  last_error = error;
}

int WINAPI MulDiv(int number, int numerator, int denominator) {
  if (CallFails("MulDiv") || denominator == 0) return -1;
  const std::int64_t product = static_cast<std::int64_t>(number) * numerator;
  const std::int64_t divisor = denominator;
  const std::int64_t half = (divisor < 0 ? -divisor : divisor) / 2;
  // Halves go away from zero.
  const std::int64_t result = (product < 0 ? product - half : product + half) / divisor;
  const std::int64_t limit = std::numeric_limits<int>::max();
  return result > limit || result < -limit ? -1 : static_cast<int>(result);
}
