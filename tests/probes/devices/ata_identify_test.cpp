#include "probes/devices/ata_identify.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace hostscope {
namespace {

using namespace std::string_literals;

constexpr std::size_t kModelWord = 27;
constexpr std::size_t kModelSize = 40;

// As a drive stores it: the first of two characters in the high byte.
void PutText(IdentifyBlock& block, std::size_t word, std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i)
    block[word + i / 2] |= static_cast<std::uint8_t>(text[i]) << (i % 2 == 0 ? 8 : 0);
}

TEST(AtaIdentifyTest, TextsLoseTheirSpacesButNotThoseBeforeZeroBytes) {
  const std::string spaces(kModelSize, ' ');
  struct Row {
    std::string stored;  // filled up with zero bytes
    std::string model;
  };
  const Row rows[] = {
      {"  ST340014A" + std::string(29, ' '), "ST340014A"},
      {"IBM DTLA" + std::string(32, ' '), "IBM DTLA"},
      {std::string(kModelSize, 'M'), std::string(kModelSize, 'M')},
      {std::string(39, ' ') + "X", "X"},
      {"X" + std::string(39, ' '), "X"},
      {spaces, ""},
      {"", ""},
      {" ", ""},
      {"MAXTOR   ", "MAXTOR   "},
      {"  QUANTUM\0 FIREBALL"s, "QUANTUM"},
      {"\0HIDDEN"s, ""},
      {"\xC4\xFFlt", "\xC4\xFFlt"},
  };
  for (const Row& row : rows) {
    IdentifyBlock block{};
    PutText(block, kModelWord, row.stored);
    EXPECT_EQ(DecodeIdentifyBlock(0, block).model, row.model) << "stored '" << row.stored << "'";
  }
}

TEST(AtaIdentifyTest, FieldsComeFromTheirWordsAlone) {
  IdentifyBlock block;
  block.fill(0x7A7A);
  const auto put = [&](std::size_t first, std::size_t end, std::string_view text) {
    std::fill(block.begin() + first, block.begin() + end, std::uint16_t{0});
    PutText(block, first, text);
  };
  put(10, 20, "SERIAL SERIAL SERIAL");
  put(23, 27, "REVISION");
  put(27, 47, "MODEL MODEL MODEL MODEL MODEL MODEL MO-L");
  block[1] = 16383;
  block[3] = 16;
  block[6] = 63;
  const DiskDriveRecord record = DecodeIdentifyBlock(0, block);
  EXPECT_STREQ(record.serial_number, "SERIAL SERIAL SERIAL");
  EXPECT_STREQ(record.revision, "REVISION");
  EXPECT_STREQ(record.model, "MODEL MODEL MODEL MODEL MODEL MODEL MO-L");
  EXPECT_EQ(record.cylinders, 16383u);
  EXPECT_EQ(record.heads, 16u);
  EXPECT_EQ(record.sectors_per_track, 63u);
}

TEST(AtaIdentifyTest, PlaceAndType) {
  struct Row {
    unsigned drive;
    std::uint16_t configuration;
    std::string controller;
    std::string place;
    std::string type;
  };
  const Row rows[] = {
      {0, 0x0040, "primary controller", "master drive", "fixed"},
      {1, 0x848A, "primary controller", "slave drive", "removable"},
      {2, 0x00C0, "secondary controller", "master drive", "removable"},
      {3, 0xFF3F, "secondary controller", "slave drive", "unknown"},
      {4, 0x0000, "tertiary controller", "master drive", "unknown"},
      {5, 0x8000, "tertiary controller", "slave drive", "unknown"},
      {6, 0x4040, "quaternary controller", "master drive", "fixed"},
      {7, 0xFFFF, "quaternary controller", "slave drive", "removable"},
  };
  for (const Row& row : rows) {
    IdentifyBlock block{};
    block[0] = row.configuration;
    const DiskDriveRecord record = DecodeIdentifyBlock(row.drive, block);
    EXPECT_EQ(record.controller, row.controller) << "drive " << row.drive;
    EXPECT_EQ(record.drive, row.place) << "drive " << row.drive;
    EXPECT_EQ(record.type, row.type) << "drive " << row.drive;
  }
}

}  // namespace
}  // namespace hostscope
