#include "platform/host/disks.h"

#include <algorithm>

#include "platform/host/machine.h"

namespace host {
namespace {

// The first of two characters is in the high byte.
void PutText(std::span<WORD> words, std::string_view text) {
  const auto at = [text](std::size_t i) {
    return static_cast<WORD>(i < text.size() ? static_cast<BYTE>(text[i]) : ' ');
  };
  for (std::size_t i = 0; i < words.size(); ++i)
    words[i] = static_cast<WORD>(at(2 * i) << 8 | at(2 * i + 1));
}

constexpr DWORD kMediaOf360[] = {10, 9, 7, 8, 6};
constexpr DWORD kMediaOf1200[] = {10, 9, 7, 8, 6, 1};
constexpr DWORD kMediaOf720[] = {5};
constexpr DWORD kMediaOf1440[] = {5, 2};
constexpr DWORD kMediaOf2880[] = {5, 2, 3};
constexpr FloppyKind kFloppyKinds[] = {{"360 KB", 0, kMediaOf360},
                                       {"1.2 MB", 1, kMediaOf1200},
                                       {"720 KB", 2, kMediaOf720},
                                       {"1.44 MB", 7, kMediaOf1440},
                                       {"2.88 MB", 9, kMediaOf2880}};

}  // namespace

IdeBlock IdentifyBlockOf(const IdeDrive& drive) {
  IdeBlock block = {};
  const std::span words(block);
  block[0] = drive.configuration;
  block[1] = drive.cylinders;
  block[3] = drive.heads;
  block[6] = drive.sectors_per_track;
  PutText(words.subspan(10, 10), drive.serial_number);
  PutText(words.subspan(23, 4), drive.revision);
  PutText(words.subspan(27, 20), drive.model);
  return block;
}

const FloppyKind* FindFloppyKind(std::string_view name) {
  const auto found = std::find_if(std::begin(kFloppyKinds), std::end(kFloppyKinds),
                                  [name](const FloppyKind& kind) { return kind.name == name; });
  return found == std::end(kFloppyKinds) ? nullptr : found;
}

std::map<char, Drive> DriveLetters(const Machine& machine) {
  std::map<char, Drive> letters = machine.disks.letters;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (machine.files.DriveFolder(letter)) letters.emplace(letter, Drive{});
  }
  return letters;
}

}  // namespace host
