// Any bytes as a program file: reading its version resource stays within them.
#include <cstdlib>
#include <span>
#include <string>

#include "platform/host/version_resource.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const auto resource =
      host::ReadVersionResource(std::as_bytes(std::span<const unsigned char>(data, size)));
  if (!resource) return 0;
  const std::span<const std::byte> block = resource->block;
  const auto stated =
      std::to_integer<std::size_t>(block[0]) | std::to_integer<std::size_t>(block[1]) << 8;
  if (stated != block.size()) std::abort();
  for (const char* path : {"\\", "\\VarFileInfo\\Translation", "\\StringFileInfo",
                           "\\StringFileInfo\\040904E4\\FileVersion", "\\\\x"}) {
    const auto value = host::FindVersionValue(block, path);
    if (value && (value->begin > block.size() || value->size > block.size() - value->begin))
      std::abort();
  }
  return 0;
}
