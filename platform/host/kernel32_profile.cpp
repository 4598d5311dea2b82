// Profiles: reading INI files, private ones and win.ini. On NT the entries of one section of
// win.ini are in the registry.
//
// Every call reads anew, so that it shows what is there now. Windows 95/98/Me see only the first
// 32767 bytes of a section of a file; lines that begin beyond are not there for them.
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/host/code_page.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"
#include "platform/host/profile_file.h"

using namespace host;

namespace {

constexpr char kSystemProfile[] = "win.ini";

// A name without a folder is looked for in the Windows folder.
std::string ProfilePath(const Machine& machine, LPCSTR file) {
  const std::string_view name = file == nullptr ? kSystemProfile : file;
  if (name.empty() || name.find_first_of("\\/:") != std::string_view::npos)
    return std::string(name);
  return machine.windows_folder + "\\" + std::string(name);
}

// The profile as it is now; one that can't be read has no sections. The last error says why it
// can't be read, and is 0 otherwise. A program asks for one key after the other, so the last
// profile is kept, and only another content is taken apart again.
std::shared_ptr<const ProfileFile> ReadProfile(LPCSTR file) {
  const Machine& machine = CurrentMachine();
  std::string content;
  SetLastError(machine.files.ReadWhole(ProfilePath(machine, file), content));
  const std::size_t section_limit = machine.IsNt() ? SIZE_MAX : kOldSectionLimit;
  thread_local std::shared_ptr<const ProfileFile> last;
  if (last == nullptr || !last->IsOf(content, section_limit)) {
    last = std::make_shared<const ProfileFile>(content, section_limit);
  }
  return last;
}

DWORD GiveText(std::string_view text, LPSTR buffer, DWORD size) {
  const std::size_t length = text.copy(buffer, size - 1);
  buffer[length] = '\0';
  return static_cast<DWORD>(length);
}

// A list of texts, each with its zero, and one more zero at the end, which the result leaves out. A
// list that is cut ends in two zeros, of which the result leaves out both; an empty one is two
// zeros.
DWORD GiveList(const std::string& list, LPSTR buffer, DWORD size) {
  if (size < 2) {
    buffer[0] = '\0';
    return 0;
  }
  const bool cut = list.size() + 2 > size;
  const std::size_t length = cut ? size - 2 : list.size();
  std::memcpy(buffer, list.data(), length);
  buffer[length] = '\0';
  if (cut || list.empty()) buffer[length + 1] = '\0';
  if (cut) SetLastError(ERROR_INSUFFICIENT_BUFFER);
  return static_cast<DWORD>(length);
}

std::string SectionLines(const ProfileSection* section) {
  std::string list;
  if (section == nullptr) return list;
  for (const ProfileLine& line : section->lines) {
    if (!line.IsComment()) list.append(line.Entry()).push_back('\0');
  }
  return list;
}

// The entries of the section "windows" of win.ini, as far as they are asked for one by one, are
// values of the user's registry on NT.
bool IsInRegistry(LPCSTR section, LPCSTR file) {
  return CurrentMachine().IsNt() && EqualNoCase(TrimProfileText(section), "windows") &&
         (file == nullptr || EqualNoCase(file, kSystemProfile));
}

std::optional<std::string> RegistryEntry(LPCSTR key) {
  const Registry& registry = CurrentMachine().registry;
  const std::lock_guard lock(registry.mutex());
  const auto found =
      Registry::FindBelow(registry.Root(Hive::kCurrentUser),
                          "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows");
  const RegistryValue* const value =
      found == nullptr ? nullptr : found->values.Find(TrimProfileText(key));
  if (value == nullptr || value->type != kRegistryText) return std::nullopt;
  return value->data.substr(0, value->data.find('\0'));
}

DWORD GetString(LPCSTR section, LPCSTR key, LPCSTR fallback, LPSTR buffer, DWORD size,
                LPCSTR file) {
  if (section == nullptr || key == nullptr || buffer == nullptr || size == 0) return 0;
  if (IsInRegistry(section, file)) {
    const std::optional<std::string> entry = RegistryEntry(key);
    return GiveText(entry ? *entry : fallback == nullptr ? "" : fallback, buffer, size);
  }
  const std::shared_ptr<const ProfileFile> profile = ReadProfile(file);
  std::string_view text = fallback == nullptr ? "" : fallback;
  const std::optional<std::string_view> value =
      profile->Value(TrimProfileText(section), TrimProfileText(key));
  if (value) {
    text = *value;
  } else {
    text = text.substr(0, text.find_last_not_of(' ') + 1);
  }
  return GiveText(WithoutProfileQuotes(text), buffer, size);
}

UINT GetInteger(LPCSTR section, LPCSTR key, INT fallback, LPCSTR file) {
  char text[kIntegerTextLimit + 1];
  if (GetString(section, key, "", text, sizeof(text), file) == 0) {
    return static_cast<UINT>(fallback);
  }
  return ParseProfileInteger(text);
}

}  // namespace

UINT WINAPI GetProfileIntA(LPCSTR section, LPCSTR key, INT fallback) {
  if (EndableCallFails("GetProfileIntA")) return static_cast<UINT>(fallback);
  return GetInteger(section, key, fallback, kSystemProfile);
}

DWORD WINAPI GetProfileStringA(LPCSTR section, LPCSTR key, LPCSTR fallback, LPSTR buffer,
                               DWORD size) {
  if (!EndableCallFails("GetProfileStringA"))
    return GetString(section, key, fallback, buffer, size, kSystemProfile);
  if (buffer == nullptr || size == 0) return 0;
  return GiveText(fallback == nullptr ? "" : fallback, buffer, size);
}

UINT WINAPI GetPrivateProfileIntA(LPCSTR section, LPCSTR key, INT fallback, LPCSTR file) {
  if (EndableCallFails("GetPrivateProfileIntA")) return static_cast<UINT>(fallback);
  return GetInteger(section, key, fallback, file);
}

DWORD WINAPI GetPrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR fallback, LPSTR buffer,
                                      DWORD size, LPCSTR file) {
  if (!EndableCallFails("GetPrivateProfileStringA")) {
    return GetString(section, key, fallback, buffer, size, file);
  }
  // Also when it fails the default is what the buffer holds.
  if (buffer == nullptr || size == 0) return 0;
  return GiveText(fallback == nullptr ? "" : fallback, buffer, size);
}

DWORD WINAPI GetPrivateProfileSectionA(LPCSTR section, LPSTR buffer, DWORD size, LPCSTR file) {
  if (EndableCallFails("GetPrivateProfileSectionA")) {
    if (buffer != nullptr && size != 0) buffer[0] = '\0';
    return 0;
  }
  if (section == nullptr || buffer == nullptr || size == 0) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  return GiveList(SectionLines(ReadProfile(file)->Find(section)), buffer, size);
}
