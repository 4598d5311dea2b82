#include "platform/host/version_resource.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "platform/host/code_page.h"

namespace host {
namespace {

// Bytes that are asked for at any place; outside of them everything is 0.
class Bytes {
 public:
  explicit Bytes(std::span<const std::byte> bytes) : bytes_(bytes) {}

  std::uint64_t size() const { return bytes_.size(); }
  std::uint32_t Byte(std::uint64_t at) const {
    return at < bytes_.size() ? std::to_integer<std::uint32_t>(bytes_[at]) : 0;
  }
  std::uint32_t Word(std::uint64_t at) const { return Byte(at) | Byte(at + 1) << 8; }
  std::uint32_t Number(std::uint64_t at) const { return Word(at) | Word(at + 2) << 16; }
  // What there is of a part.
  std::span<const std::byte> Part(std::uint64_t at, std::uint64_t size) const {
    if (at >= bytes_.size()) return {};
    return bytes_.subspan(at, std::min<std::uint64_t>(size, bytes_.size() - at));
  }

 private:
  std::span<const std::byte> bytes_;
};

// A program file: the headers, and places in it by their address in memory.
class ProgramFile {
 public:
  explicit ProgramFile(const Bytes& bytes) : bytes_(bytes), header_(bytes.Number(0x3C)) {}

  bool IsValid() const {
    constexpr std::uint32_t kDosSignature = 0x5A4D;
    constexpr std::uint32_t kSignature = 0x00004550;
    return bytes_.Word(0) == kDosSignature && bytes_.Number(header_) == kSignature &&
           Directories() != 0;
  }

  // The address of the resources; 0 when there are none.
  std::uint32_t ResourceAddress() const {
    constexpr std::uint64_t kResourceDirectory = 2;
    const std::uint64_t directories = Directories();
    if (bytes_.Number(directories - 4) <= kResourceDirectory) return 0;
    return bytes_.Number(directories + 8 * kResourceDirectory);
  }

  std::optional<std::uint64_t> PlaceOf(std::uint32_t address) const {
    const std::uint32_t count = bytes_.Word(header_ + 6);
    std::uint64_t section = header_ + kOptionalHeader + bytes_.Word(header_ + 20);
    for (std::uint32_t i = 0; i < count && section < bytes_.size(); ++i, section += 40) {
      const std::uint32_t begin = bytes_.Number(section + 12);
      if (address < begin || address - begin >= bytes_.Number(section + 16)) continue;
      return std::uint64_t{bytes_.Number(section + 20)} + (address - begin);
    }
    return std::nullopt;
  }

 private:
  static constexpr std::uint64_t kOptionalHeader = 24;

  // Where the directories begin, behind their count; 0 for a header of neither width.
  std::uint64_t Directories() const {
    switch (bytes_.Word(header_ + kOptionalHeader)) {
      case 0x10B:
        return header_ + kOptionalHeader + 96;
      case 0x20B:
        return header_ + kOptionalHeader + 112;
      default:
        return 0;
    }
  }

  const Bytes& bytes_;
  const std::uint64_t header_;
};

// A folder of the resource tree lies at `at`. Where the entry of that number (any: the first one)
// leads, counted from the tree's begin; the highest bit says that it is another folder.
std::optional<std::uint32_t> FindEntry(const Bytes& bytes, std::uint64_t at,
                                       std::optional<std::uint32_t> id) {
  const std::uint32_t count = bytes.Word(at + 12) + bytes.Word(at + 14);
  std::uint64_t entry = at + 16;
  for (std::uint32_t i = 0; i < count && entry + 8 <= bytes.size(); ++i, entry += 8) {
    if (!id || bytes.Number(entry) == *id) return bytes.Number(entry + 4);
  }
  return std::nullopt;
}

constexpr std::uint32_t kFolderBit = 0x80000000;

// The place of the first version resource's data entry: type, name, language.
std::optional<std::uint64_t> FindDataEntry(const Bytes& bytes, std::uint64_t tree) {
  constexpr std::uint32_t kVersionType = 16;
  std::uint64_t folder = tree;
  for (const auto id : {std::optional(kVersionType), std::optional<std::uint32_t>()}) {
    const std::optional<std::uint32_t> entry = FindEntry(bytes, folder, id);
    if (!entry || (*entry & kFolderBit) == 0) return std::nullopt;
    folder = tree + (*entry & ~kFolderBit);
  }
  const std::optional<std::uint32_t> data = FindEntry(bytes, folder, std::nullopt);
  if (!data || (*data & kFolderBit) != 0) return std::nullopt;
  return tree + *data;
}

// Length, length of the value, kind of the value.
constexpr std::size_t kNodeHeader = 6;

std::uint64_t Aligned(std::uint64_t place) {
  return (place + 3) & ~std::uint64_t{3};
}

struct Node {
  std::string name;
  VersionValue value;
  std::uint64_t children = 0;
  std::uint64_t end = 0;
};

// The node at a place within another one that ends at `limit`.
std::optional<Node> ReadNode(const Bytes& block, std::uint64_t at, std::uint64_t limit) {
  const std::uint32_t length = block.Word(at);
  if (at + kNodeHeader > limit || length < kNodeHeader) return std::nullopt;
  Node node;
  node.end = std::min<std::uint64_t>(at + length, limit);
  std::uint64_t name_end = at + kNodeHeader;
  while (name_end + 2 <= node.end && block.Word(name_end) != 0)
    name_end += 2;
  const auto name = block.Part(at + kNodeHeader, name_end - at - kNodeHeader);
  node.name = CodePageFromUtf16({reinterpret_cast<const char*>(name.data()), name.size()});
  node.value.is_text = block.Word(at + 4) == 1;
  node.value.begin = std::min(Aligned(name_end + 2), node.end);
  const std::uint64_t unit = node.value.is_text ? 2 : 1;
  node.value.size = std::min<std::uint64_t>(block.Word(at + 2) * unit, node.end - node.value.begin);
  node.children = Aligned(node.value.begin + node.value.size);
  return node;
}

std::optional<Node> FindChild(const Bytes& block, const Node& parent, std::string_view name) {
  std::uint64_t at = parent.children;
  while (auto child = ReadNode(block, at, parent.end)) {
    if (EqualNoCase(child->name, name)) return child;
    at = Aligned(child->end);
  }
  return std::nullopt;
}

}  // namespace

std::optional<VersionResource> ReadVersionResource(std::span<const std::byte> file) {
  const Bytes bytes(file);
  const ProgramFile program(bytes);
  if (!program.IsValid()) return std::nullopt;
  const std::uint32_t address = program.ResourceAddress();
  const auto tree = address == 0 ? std::nullopt : program.PlaceOf(address);
  const auto entry = tree ? FindDataEntry(bytes, *tree) : std::nullopt;
  const auto place = entry ? program.PlaceOf(bytes.Number(*entry)) : std::nullopt;
  if (!place) return std::nullopt;
  const auto data = bytes.Part(*place, std::min(bytes.Number(*entry + 4), bytes.Word(*place)));
  if (data.size() < kNodeHeader) return std::nullopt;
  VersionResource resource{{data.begin(), data.end()}};
  resource.block[0] = static_cast<std::byte>(data.size());
  resource.block[1] = static_cast<std::byte>(data.size() >> 8);
  return resource;
}

std::optional<VersionValue> FindVersionValue(std::span<const std::byte> block,
                                             std::string_view path) {
  const Bytes bytes(block);
  std::optional<Node> node = ReadNode(bytes, 0, block.size());
  while (node && !path.empty()) {
    const std::size_t end = std::min(path.find('\\'), path.size());
    if (end > 0) node = FindChild(bytes, *node, path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return node ? std::optional(node->value) : std::nullopt;
}

}  // namespace host
