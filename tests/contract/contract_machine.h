// Where the contract tests work. They are one source for two platforms: compiled for Windows they
// say what Windows (in practice Wine) answers, compiled over the host layer they hold the layer to
// the same answers. All that differs between the two is behind this header: making what a test
// finds there, which the program itself never does.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/win32.h"

namespace contract {

enum class Platform { kNone, kHostLayer, kWine, kWindows };
Platform ThisPlatform();

// An answer that one platform is known to get wrong, and why that stays so for now.
struct KnownDifference {
  Platform platform = Platform::kNone;
  const char* reason = "";
};

// Compares an answer with the expected one; a difference prints the row, what was expected and what
// came. On the platform of a known difference the answers must differ: a difference that has healed
// is a failure, so that its mark goes.
void ExpectAnswer(const std::string& row, const std::string& expected, const std::string& came,
                  const KnownDifference& known = {});
void ExpectAnswer(const std::string& row, long long expected, long long came,
                  const KnownDifference& known = {});

// "yes", or the last error of the call that has just answered no.
std::string Outcome(bool succeeded);

// The bytes with "|" for a zero, and \xHH for what does not print.
std::string Visible(std::string_view bytes);

// A function of a library, which stays loaded.
template <typename Function>
Function FindIn(const char* library, const char* name) {
  HMODULE const module = LoadLibraryA(library);
  const auto found =
      reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
  EXPECT_NE(nullptr, found) << name;
  return found;
}

// A library that is there but not loaded, and a function of it.
inline constexpr char kSpareLibrary[] = "LZ32.DLL";
inline constexpr char kSpareFunction[] = "LZInit";

// An item of a dialog; they stand one below the other.
struct Control {
  const char* window_class;  // "BUTTON", "LISTBOX"
  const char* text;
  int id;
  DWORD style;
  DWORD extended_style;
};

// A place of its own for one test: an empty temporary folder, made the current one, and an empty
// registry key. Both go with the object. Over the layer it is also the current machine.
class Place {
 public:
  Place();
  ~Place();
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;

  // The folder as the platform names it, without a final separator.
  const std::string& folder() const;
  std::string Path(std::string_view name) const;
  // Names are relative to the folder; a backslash parts folders.
  void MakeFile(std::string_view name, std::string_view content) const;
  void MakeFolder(std::string_view name) const;
  // When the file was last written, in seconds since 1970, UTC.
  void SetTime(std::string_view name, long long time) const;

  // The key below HKEY_CURRENT_USER, without a backslash on either side.
  const std::string& key() const;
  // Subkeys are relative to the key; an empty one is the key itself.
  void MakeKey(std::string_view subkey);
  void SetValue(std::string_view subkey, std::string_view name, DWORD type, std::string_view data);

  // A key below HKEY_LOCAL_MACHINE that goes with the object, with all that a test puts below it.
  void OwnMachineKey(std::string_view key);
  void SetMachineText(std::string_view key, std::string_view name, std::string_view text);

  // A printer that goes with the object; the machine has no other.
  void InstallPrinter(const std::string& name, const std::string& port, DWORD attributes);
  // What the user's setting of the default device says until the object goes.
  void SetDefaultDevice(const std::string& setting);

  // Runs a dialog named "Contract" that holds the controls, as DialogBoxParamA does.
  INT_PTR RunDialog(std::span<const Control> controls, DLGPROC procedure, LPARAM parameter);

 private:
  std::filesystem::path OnDisk(std::string_view name) const;

  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace contract
