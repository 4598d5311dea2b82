#include "tests/windows/surroundings.h"

#include <algorithm>
#include <stdexcept>

namespace drive {
namespace {

constexpr DWORD kLookMilliseconds = 5;

std::string EnvironmentText(const std::string& name) {
  std::string text(GetEnvironmentVariableA(name.c_str(), nullptr, 0), '\0');
  text.resize(GetEnvironmentVariableA(name.c_str(), text.data(), text.size()));
  return text;
}

std::string ProgramUnderTest() {
  std::string path = EnvironmentText("HSCOPE_EXE");
  if (path.empty()) throw std::runtime_error("HSCOPE_EXE does not name the program to test");
  // A path of the system beneath Wine.
  if (path[0] == '/') path = "Z:" + path;
  return path;
}

std::string TempFolder() {
  char path[MAX_PATH] = {};
  GetTempPathA(MAX_PATH, path);
  return path;
}

void RemoveFolder(const std::string& path) {
  WIN32_FIND_DATAA entry;
  const HANDLE search = FindFirstFileA((path + "\\*").c_str(), &entry);
  if (search != INVALID_HANDLE_VALUE) {
    do {
      const std::string name = entry.cFileName;
      if (name == "." || name == "..") continue;
      if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
        RemoveFolder(path + "\\" + name);
      } else {
        DeleteFileA((path + "\\" + name).c_str());
      }
    } while (FindNextFileA(search, &entry));
    FindClose(search);
  }
  RemoveDirectoryA(path.c_str());
}

}  // namespace

std::string BuiltFile(const std::string& name) {
  const std::string program = ProgramUnderTest();
  return program.substr(0, program.find_last_of("/\\") + 1) + name;
}

bool WaitUntil(const std::function<bool()>& condition, DWORD milliseconds) {
  const DWORD start = GetTickCount();
  while (!condition()) {
    if (GetTickCount() - start > milliseconds) return false;
    Sleep(kLookMilliseconds);
  }
  return true;
}

std::optional<std::string> ReadFileBytes(const std::string& path) {
  const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  std::string bytes(GetFileSize(file, nullptr), '\0');
  DWORD read = 0;
  ReadFile(file, bytes.data(), bytes.size(), &read, nullptr);
  CloseHandle(file);
  bytes.resize(read);
  return bytes;
}

void WriteFileBytes(const std::string& path, const std::string& bytes) {
  const HANDLE file =
      CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  DWORD written = 0;
  const bool done = file != INVALID_HANDLE_VALUE &&
                    WriteFile(file, bytes.data(), bytes.size(), &written, nullptr) &&
                    written == bytes.size();
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
  if (!done) throw std::runtime_error("cannot write " + path);
}

bool FileExists(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

Folder::Folder() {
  static int made = 0;
  path_ = TempFolder() + "host scope " + std::to_string(GetCurrentProcessId()) + "-" +
          std::to_string(++made);
  if (!CreateDirectoryA(path_.c_str(), nullptr)) throw std::runtime_error("cannot make " + path_);
  const std::string source = ProgramUnderTest();
  if (!CopyFileA(source.c_str(), program().c_str(), TRUE)) {
    throw std::runtime_error("cannot copy " + source);
  }
}

Folder::~Folder() {
  RemoveFolder(path_);
}

void Folder::Write(const std::string& name, const std::string& bytes) const {
  WriteFileBytes(Path(name), bytes);
}

void Folder::MakeFolder(const std::string& name) const {
  if (!CreateDirectoryA(Path(name).c_str(), nullptr)) {
    throw std::runtime_error("cannot make " + Path(name));
  }
}

void Folder::CopyFromBuild(const std::string& name) const {
  const std::string program = ProgramUnderTest();
  const std::string built = program.substr(0, program.find_last_of("/\\") + 1) + name;
  if (!CopyFileA(built.c_str(), Path(name).c_str(), FALSE))
    throw std::runtime_error("cannot copy " + built);
}

std::optional<std::string> Folder::Read(const std::string& name) const {
  return ReadFileBytes(Path(name));
}

RegistryValue::RegistryValue(HKEY root, const std::string& key, const std::string& name, DWORD type,
                             const std::string& data)
    : name_(name) {
  if (RegCreateKeyExA(root, key.c_str(), 0, nullptr, 0, KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr,
                      &key_, nullptr) != ERROR_SUCCESS) {
    throw std::runtime_error("cannot make the registry key " + key);
  }
  DWORD size = 0;
  was_there_ =
      RegQueryValueExA(key_, name.c_str(), nullptr, &old_type_, nullptr, &size) == ERROR_SUCCESS;
  old_data_.resize(size);
  if (was_there_) {
    RegQueryValueExA(key_, name.c_str(), nullptr, nullptr, old_data_.data(), &size);
  }
  RegSetValueExA(key_, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(data.data()),
                 data.size());
}

RegistryValue RegistryValue::Text(HKEY root, const std::string& key, const std::string& name,
                                  const std::string& text) {
  return RegistryValue(root, key, name, REG_SZ, text + '\0');
}

RegistryValue RegistryValue::Number(HKEY root, const std::string& key, const std::string& name,
                                    DWORD number) {
  return RegistryValue(root, key, name, REG_DWORD,
                       std::string(reinterpret_cast<const char*>(&number), sizeof(number)));
}

RegistryValue::~RegistryValue() {
  if (was_there_) {
    RegSetValueExA(key_, name_.c_str(), 0, old_type_, old_data_.data(), old_data_.size());
  } else {
    RegDeleteValueA(key_, name_.c_str());
  }
  RegCloseKey(key_);
}

void PutTexts(const std::string& key,
              std::initializer_list<std::pair<const char*, std::string>> texts) {
  HKEY made = nullptr;
  if (RegCreateKeyA(HKEY_LOCAL_MACHINE, key.c_str(), &made) != ERROR_SUCCESS)
    throw std::runtime_error("cannot make the registry key " + key);
  for (const auto& [name, text] : texts)
    RegSetValueExA(made, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>(text.size() + 1));
  RegCloseKey(made);
}

SeededKeys::~SeededKeys() {
  for (const std::string& key : made_)
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, key.c_str());
}

void SeededKeys::Put(const std::string& key,
                     std::initializer_list<std::pair<const char*, std::string>> texts) {
  size_t end = 0;
  HKEY there = nullptr;
  do {
    end = std::min(key.find('\\', end + 1), key.size());
    if (RegOpenKeyA(HKEY_LOCAL_MACHINE, key.substr(0, end).c_str(), &there) != ERROR_SUCCESS) break;
    RegCloseKey(there);
  } while (end != key.size());
  made_.push_back(key.substr(0, end));
  PutTexts(key, texts);
}

Release::Release(const std::string& version)
    : value_(RegistryValue::Text(HKEY_CURRENT_USER, "Software\\Wine\\AppDefaults\\hscope.exe",
                                 "Version", version)) {}

MailInWinIni::MailInWinIni(const std::string& value) : old_value_(80, '\0') {
  old_value_.resize(GetProfileStringA("Mail", "MAPI", "0", old_value_.data(), old_value_.size()));
  WriteProfileStringA("Mail", "MAPI", value.c_str());
}

MailInWinIni::~MailInWinIni() {
  WriteProfileStringA("Mail", "MAPI", old_value_.c_str());
}

std::string OwnProgram() {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, path, MAX_PATH);
  return path;
}

}  // namespace drive
