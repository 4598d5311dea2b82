#include "probes/devices/ata_identify.h"

#include <cstddef>
#include <span>
#include <string_view>

#include "platform/disk_control.h"
#include "platform/ports.h"

namespace hostscope {
namespace {

// --- Asking the drive ---

constexpr unsigned kLooks = 99999;

// Of a controller, counted from its first port, the data port.
constexpr std::uint16_t kDriveHeadPort = 6;
constexpr std::uint16_t kStatusPort = 7;
constexpr std::uint16_t kCommandPort = 7;

constexpr std::uint16_t kDataPorts[] = {0x1F0, 0x170, 0x1E8, 0x168};

constexpr std::uint8_t kError = 0x01;
constexpr std::uint8_t kReady = 0x40;
constexpr std::uint8_t kReadyWithData = 0x48;

// Looks at the status until it shows all the bits wanted, or the error. False when neither comes.
bool AwaitStatus(std::uint16_t port, std::uint8_t wanted, std::uint8_t& status) {
  for (unsigned look = 0; look < kLooks; ++look) {
    if (!ReadPortByte(port, status)) return false;
    if ((status & wanted) == wanted || (status & kError) != 0) return true;
  }
  return false;
}

// --- Reading the block ---

constexpr const char* kControllerTexts[] = {"primary controller", "secondary controller",
                                            "tertiary controller", "quaternary controller"};
constexpr const char* kDriveTexts[] = {"master drive", "slave drive"};

constexpr std::uint16_t kRemovable = 0x80;
constexpr std::uint16_t kFixed = 0x40;

constexpr std::size_t kLongestText = 40;

// Into a zeroed field that is longer than the text.
void FillField(std::span<char, 256> field, std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i)
    field[i] = text[i];
}

// A drive stores the first of two characters in the high byte, and fills a text up with spaces.
// Zero bytes count as characters here: spaces before them stay.
void DecodeText(std::span<const std::uint16_t> words, std::span<char, 256> field) {
  char text[kLongestText];
  std::size_t length = 0;
  for (const std::uint16_t word : words) {
    text[length++] = static_cast<char>(word >> 8);
    text[length++] = static_cast<char>(word & 0xFF);
  }
  while (length > 1 && text[length - 1] == ' ')
    --length;
  std::size_t start = 0;
  while (start < length && text[start] == ' ')
    ++start;
  FillField(field, {text + start, length - start});
}

const char* TypeText(std::uint16_t configuration) {
  if ((configuration & kRemovable) != 0) return "removable";
  return (configuration & kFixed) != 0 ? "fixed" : "unknown";
}

}  // namespace

bool ReadIdentifyBlock(unsigned drive, IdentifyBlock& block) {
  const std::uint16_t data = kDataPorts[drive / 2];
  const std::uint16_t status_port = data + kStatusPort;
  std::uint8_t status = 0;
  if (!AwaitStatus(status_port, kReady, status)) return false;
  if (!WritePortByte(data + kDriveHeadPort, DriveHeadOf(drive))) return false;
  if (!WritePortByte(data + kCommandPort, kIdentifyDevice)) return false;
  if (!AwaitStatus(status_port, kReadyWithData, status) || (status & kError) != 0) return false;
  for (std::uint16_t& word : block) {
    if (!ReadPortWord(data, word)) return false;
  }
  return true;
}

DiskDriveRecord DecodeIdentifyBlock(unsigned drive, const IdentifyBlock& block) {
  const std::span words(block);
  DiskDriveRecord record{};
  FillField(record.controller, kControllerTexts[drive / 2]);
  FillField(record.drive, kDriveTexts[drive % 2]);
  DecodeText(words.subspan(27, 20), record.model);
  DecodeText(words.subspan(10, 10), record.serial_number);
  DecodeText(words.subspan(23, 4), record.revision);
  FillField(record.type, TypeText(block[0]));
  record.cylinders = block[1];
  record.heads = block[3];
  record.sectors_per_track = block[6];
  return record;
}

}  // namespace hostscope
