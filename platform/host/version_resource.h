// The version resource of a program file, from nothing but the file's bytes. Whatever numbers the
// file states, nothing outside of the bytes is read.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace host {

// The block as it lies in the file: a tree of nodes, their names and texts in UTF-16. Its own
// length (the first 16 bits) is that of `block`, also where the file says otherwise.
struct VersionResource {
  std::vector<std::byte> block;
};

// From a 32-bit or 64-bit program file (PE32, PE32+); the first one, where there are several.
// Absent when the bytes are no such file or hold no version resource.
std::optional<VersionResource> ReadVersionResource(std::span<const std::byte> file);

// Where a value lies in its block, in bytes, cut to the block.
struct VersionValue {
  std::size_t begin = 0;
  std::size_t size = 0;
  bool is_text = false;  // UTF-16
};

// The value of the node that the path leads to: "\" for the fixed record, else names parted by
// backslashes, case ignored ("\VarFileInfo\Translation"). Absent when there is no such node.
std::optional<VersionValue> FindVersionValue(std::span<const std::byte> block,
                                             std::string_view path);

}  // namespace host
