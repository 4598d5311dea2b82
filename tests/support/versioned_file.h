// The bytes of a program file that holds nothing but a version resource, right or wrong.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace hostscope::test {

struct VersionedFile {
  std::optional<std::array<int, 4>> fixed = {};
  std::vector<std::pair<std::string, std::string>> strings = {};
  std::optional<std::uint32_t> translation = 0x04E40409;  // as it stands in the file
  std::uint32_t table = 0x040904E4;                       // the string table's name
  bool wide = false;                                      // PE32+
  int fixed_length = 52;                                  // as the resource states it
  std::optional<int> string_length = {};                  // stated for every string
  std::uint32_t signature = 0xFEEF04BD;
  std::uint32_t type = 16;  // of the resource
};

inline std::string LittleEndian(std::initializer_list<std::uint32_t> numbers, int size = 4) {
  std::string bytes;
  for (const std::uint32_t number : numbers)
    for (int i = 0; i < size; ++i)
      bytes += static_cast<char>(number >> 8 * i);
  return bytes;
}

inline std::string Filled(std::string bytes, std::size_t size) {
  bytes.resize(size);
  return bytes;
}

inline std::string OnFours(const std::string& bytes) {
  return Filled(bytes, (bytes.size() + 3) / 4 * 4);
}

inline std::string Utf16(const std::string& text) {
  std::string bytes;
  for (const char character : text)
    bytes += LittleEndian({static_cast<unsigned char>(character)}, 2);
  return bytes + std::string(2, '\0');
}

inline std::string VersionNode(const std::string& key, const std::string& value, int length,
                               bool text, const std::vector<std::string>& children = {}) {
  std::string rest = OnFours(std::string(6, '\0') + Utf16(key)) + value;
  for (const std::string& child : children)
    rest = OnFours(rest) + child;
  return LittleEndian(
             {static_cast<std::uint32_t>(rest.size()), static_cast<std::uint32_t>(length), text},
             2) +
         rest.substr(6);
}

inline std::string VersionBlock(const VersionedFile& file) {
  std::vector<std::string> strings, children;
  for (const auto& [key, value] : file.strings)
    strings.push_back(VersionNode(
        key, Utf16(value), file.string_length.value_or(static_cast<int>(value.size()) + 1), true));
  char table[9];
  std::snprintf(table, sizeof table, "%08X", file.table);
  if (!strings.empty())
    children.push_back(
        VersionNode("StringFileInfo", "", 0, true, {VersionNode(table, "", 0, true, strings)}));
  if (file.translation)
    children.push_back(
        VersionNode("VarFileInfo", "", 0, true,
                    {VersionNode("Translation", LittleEndian({*file.translation}), 4, false)}));
  std::string fixed;
  if (file.fixed) {
    const auto& parts = *file.fixed;
    const auto high = static_cast<std::uint32_t>(parts[0] << 16 | parts[1]);
    const auto low = static_cast<std::uint32_t>(parts[2] << 16 | parts[3]);
    fixed = Filled(LittleEndian({file.signature, 0x10000, high, low, high, low}), 52);
  }
  return VersionNode("VS_VERSION_INFO", fixed, file.fixed ? file.fixed_length : 0, false, children);
}

// The section with the resource begins here in the file; its first 88 bytes lead to the block.
inline constexpr std::size_t kVersionSection = 0x200;

// The file around a resource of its own making.
inline std::string BytesOf(const std::string& block, const VersionedFile& file) {
  const auto block_size = static_cast<std::uint32_t>(block.size());
  const auto folder = [](std::uint32_t id, std::uint32_t target) {
    return LittleEndian({0, 0, 0, 0x10000, id, target});
  };
  std::string section = folder(file.type, 0x80000018) + folder(1, 0x80000030) +
                        folder(0x409, 0x48) + LittleEndian({0x1058, block_size, 0, 0}) + block;
  const auto section_size = static_cast<std::uint32_t>((section.size() + 0x1FF) / 0x200 * 0x200);
  section.resize(section_size);
  const std::uint32_t optional_size = file.wide ? 240 : 224;
  std::string header = Filled("MZ", 0x3C) + LittleEndian({0x40}) + std::string("PE\0\0", 4);
  header +=
      LittleEndian({file.wide ? 0x8664u : 0x14Cu, 1, 0, 0, 0, 0, 0, 0, optional_size, 0x2102}, 2);
  std::string optional = LittleEndian({file.wide ? 0x20Bu : 0x10Bu, 0}, 2) + std::string(20, '\0');
  optional += file.wide ? LittleEndian({0x400000, 0}) : LittleEndian({0x400000});
  if (!file.wide) optional.insert(24, 4, '\0');
  optional += LittleEndian({0x1000, 0x200, 4, 0, 4, 0, 0x1000 + section_size, 0x200, 0, 2});
  optional = Filled(optional, optional_size - 132) + LittleEndian({16}) + std::string(16, '\0') +
             LittleEndian({0x1000, section_size});
  header +=
      Filled(optional, optional_size) + Filled(".rsrc", 8) +
      LittleEndian({section_size, 0x1000, section_size, kVersionSection, 0, 0, 0, 0x40000040});
  return Filled(header, kVersionSection) + section;
}

inline std::string Bytes(const VersionedFile& file) {
  return BytesOf(VersionBlock(file), file);
}

}  // namespace hostscope::test
