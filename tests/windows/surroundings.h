// What a test arranges around the program before it starts, and puts back afterwards: its folder,
// the Windows release that it meets, registry values, environment variables.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace drive {

// Longer than anything here takes on a busy machine.
inline constexpr DWORD kPatienceMilliseconds = 20000;

// Looks every few milliseconds; false when the condition did not come true in time.
bool WaitUntil(const std::function<bool()>& condition, DWORD milliseconds = kPatienceMilliseconds);

// The bytes of a file that another process may be writing; nothing when there is no such file.
std::optional<std::string> ReadFileBytes(const std::string& path);
void WriteFileBytes(const std::string& path, const std::string& bytes);
bool FileExists(const std::string& path);

// A folder of the test's own, holding a copy of the program that the environment variable
// HSCOPE_EXE names. Its name holds a blank. It goes with everything in it.
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  const std::string& path() const { return path_; }
  std::string program() const { return Path("hscope.exe"); }
  std::string Path(const std::string& name) const { return path_ + "\\" + name; }
  void Write(const std::string& name, const std::string& bytes) const;
  void MakeFolder(const std::string& name) const;
  // Copies a file that was built beside the program that HSCOPE_EXE names.
  void CopyFromBuild(const std::string& name) const;
  std::optional<std::string> Read(const std::string& name) const;

 private:
  std::string path_;
};

// The path of a file that the build has put beside the program under test.
std::string BuiltFile(const std::string& name);

// Sets one registry value and puts back what was there. A key that had to be made stays, empty.
class RegistryValue {
 public:
  RegistryValue(HKEY root, const std::string& key, const std::string& name, DWORD type,
                const std::string& data);
  static RegistryValue Text(HKEY root, const std::string& key, const std::string& name,
                            const std::string& text);
  static RegistryValue Number(HKEY root, const std::string& key, const std::string& name,
                              DWORD number);
  ~RegistryValue();
  RegistryValue(const RegistryValue&) = delete;
  RegistryValue& operator=(const RegistryValue&) = delete;

 private:
  HKEY key_ = nullptr;
  std::string name_;
  bool was_there_ = false;
  DWORD old_type_ = 0;
  std::vector<BYTE> old_data_;
};

// Puts texts into a key of the local machine, which is made when needed.
void PutTexts(const std::string& key,
              std::initializer_list<std::pair<const char*, std::string>> texts);

// Keys of the local machine that go with the object, and with them all that had to be made for
// them.
class SeededKeys {
 public:
  SeededKeys() = default;
  ~SeededKeys();
  SeededKeys(const SeededKeys&) = delete;
  SeededKeys& operator=(const SeededKeys&) = delete;

  void Put(const std::string& key,
           std::initializer_list<std::pair<const char*, std::string>> texts);

 private:
  std::vector<std::string> made_;
};

// The Windows release that programs named hscope.exe find when they start.
class Release {
 public:
  // One of win95 win98 winme nt351 nt40 win2k winxp and what else Wine calls its versions.
  explicit Release(const std::string& version);

 private:
  RegistryValue value_;
};

// What the key MAPI of section Mail in win.ini says: whether there is a mail client.
class MailInWinIni {
 public:
  explicit MailInWinIni(const std::string& value);
  ~MailInWinIni();
  MailInWinIni(const MailInWinIni&) = delete;
  MailInWinIni& operator=(const MailInWinIni&) = delete;

 private:
  std::string old_value_;
};

// The path of the test program.
std::string OwnProgram();

}  // namespace drive
