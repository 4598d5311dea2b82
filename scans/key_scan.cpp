#include "scans/key_scan.h"

#include "scans/key_walk.h"
#include "scans/list_entry.h"
#include "util/numbers.h"
#include "util/registry.h"

namespace hostscope {
namespace {

// "\\server\share\folder" with one backslash more, when it does not end in one, has at least these.
inline constexpr int kUncBackslashes = 5;

bool IsUncFolder(const char* text) {
  int count = 0;
  const char* end = text;
  for (; *end != '\0'; ++end) {
    if (*end == '\\') ++count;
  }
  if (end[-1] != '\\') ++count;
  return count >= kUncBackslashes;
}

bool IsLetter(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

bool IsPlainFile(const char* path) {
  const DWORD attributes = GetFileAttributesA(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

void AppendFolder(const char* path, std::uint32_t folder_number, TextIndex& folders) {
  constexpr std::size_t kNumberSize = 16;  // of "," and the number
  std::size_t length = TextLength(path);
  if (path[length - 1] == '\\') --length;
  OwnedText entry = CopyOfText(path, length, kNumberSize);
  if (!entry.present()) return;
  wsprintfA(entry.data() + length, ",%u", folder_number);
  folders.AppendIfNew(entry.c_str());
}

}  // namespace

ScanNumbers CutScanNumbers(char* entry) {
  const char* const last = CutAtLastComma(entry);
  const char* const before = CutAtLastComma(entry);
  if (before == nullptr) return {.subtree = ParseProfileNumber(last)};
  return {.subtree = ParseProfileNumber(before), .folder = ParseProfileNumber(last)};
}

bool IsFolderPathText(const char* text) {
  if (text[0] == '\\' && text[1] == '\\') return IsUncFolder(text);
  if (!IsLetter(text[0]) || text[1] != ':' || text[2] != '\\' || text[3] == '\\') return false;
  for (const char* next = text; *next != '\0'; ++next) {
    if (*next == '?' || *next == '*' || *next == '<' || *next == '>') return false;
  }
  return true;
}

void ScanKeyForFolders(HKEY key, bool subtree, std::uint32_t folder_number, TextIndex& folders) {
  KeyWalk walk(key, subtree ? WalkReach::kSubtree : WalkReach::kValues);
  for (WalkStep step = walk.Next(); step != WalkStep::kEnd; step = walk.Next()) {
    if (step != WalkStep::kValue || walk.type() != REG_SZ) continue;
    const char* const path = walk.data().data();
    if (IsFolderPathText(path) && !IsPlainFile(path)) AppendFolder(path, folder_number, folders);
  }
}

bool ScanKeys(ItemRun& run) {
  const StringList& entries = run.settings.scan_keys;
  TextIndex folders(run.settings.folders);
  for (int i = 0; i < entries.count(); ++i) {
    OwnedText entry = DuplicateText(entries.Get(i));
    if (!entry.present()) continue;
    const ScanNumbers numbers = CutScanNumbers(entry.data());
    const RegistryPath path = ParseRegistryPath(entry.data());
    if (path.root == nullptr) continue;
    const RegistryKey key = RegistryKey::OpenAsWritten(path.root, path.subkey, kWalkAccess);
    if (key.open()) ScanKeyForFolders(key.get(), numbers.subtree != 0, numbers.folder, folders);
  }
  return true;
}

}  // namespace hostscope
