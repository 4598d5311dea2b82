// Any bytes as a program file, and as the version resource of one: reading it stays within them,
// and the program's texts within their fields.
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/machine.h"
#include "platform/host/version_resource.h"
#include "tests/support/test_folder.h"
#include "tests/support/versioned_file.h"
#include "util/file_version.h"

namespace {

using hostscope::ReadFileVersionItem;
using hostscope::VersionResource;

void Require(bool held) {
  if (!held) std::abort();
}

void ReadAsTheLayer(std::string_view file) {
  const auto resource = host::ReadVersionResource(std::as_bytes(std::span(file)));
  if (!resource) return;
  const std::span<const std::byte> block = resource->block;
  const auto stated =
      std::to_integer<std::size_t>(block[0]) | std::to_integer<std::size_t>(block[1]) << 8;
  Require(stated == block.size());
  for (const char* path : {"\\", "\\VarFileInfo\\Translation", "\\StringFileInfo",
                           "\\StringFileInfo\\040904E4\\FileVersion", "\\\\x"}) {
    const auto value = host::FindVersionValue(block, path);
    Require(!value || (value->begin <= block.size() && value->size <= block.size() - value->begin));
  }
}

void ReadAsTheProgram(std::string_view file) {
  static const hostscope::test::TestFolder folder;
  static host::Machine machine;
  static const host::UseMachine use(machine);
  machine.files.MountDrive('C', folder.path());
  folder.Write("x.dll", file);
  const auto open = machine.handles.OpenObjects();
  for (const char* item : {"FileVersion", "CompanyName"}) {
    for (const std::size_t size : {hostscope::kVersionTextSize, std::size_t{1}}) {
      // Of just this size, for the sanitizer to see what is written beyond it.
      std::vector<char> text(size, 'x');
      ReadFileVersionItem("C:\\x.dll", item, text);
      Require(std::memchr(text.data(), '\0', size) != nullptr);
    }
  }
  hostscope::FileVersion version;
  if (VersionResource resource("C:\\x.dll"); resource.present())
    resource.FindFixedVersion(VersionResource::RecordLength::kAny, version);
  Require(machine.handles.OpenObjects() == open);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  // The second reaches deeper: a sound program file around a resource of these bytes.
  for (const std::string& file : {bytes, hostscope::test::BytesOf(bytes, {})}) {
    ReadAsTheLayer(file);
    ReadAsTheProgram(file);
  }
  return 0;
}
