// What the platform tells of a file besides its contents; for the layer's own files.
#pragma once

#include <cstdint>
#include <filesystem>

#include "platform/host/windows_types.h"

namespace host {

struct FileFacts {
  DWORD attributes = 0;
  std::uint64_t size = 0;
  std::uint64_t write_time = 0;  // UTC, as a FILETIME
};

// 0 or the error; kernel32_find.cpp.
DWORD ReadFileFacts(const std::filesystem::path& path, FileFacts& facts);

}  // namespace host
