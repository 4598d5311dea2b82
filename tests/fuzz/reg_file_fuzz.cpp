// Registry exports of any kind: none crashes the reader, and what it reads can be listed again.

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/host/reg_file.h"

namespace {

void ListAll(const host::Registry& registry) {
  std::vector<std::shared_ptr<host::RegistryKey>> keys;
  for (const auto hive : {host::Hive::kLocalMachine, host::Hive::kUsers, host::Hive::kCurrentConfig,
                          host::Hive::kDynData})
    keys.push_back(registry.Root(hive));
  while (!keys.empty()) {
    const auto key = keys.back();
    keys.pop_back();
    for (std::size_t i = 0; const auto value = key->values.At(i, true); ++i)
      if (key->values.Find(value->name) != value) std::abort();
    for (std::size_t i = 0; const auto subkey = key->subkeys.At(i, true); ++i) {
      if (key->subkeys.Find(subkey->name) != subkey || subkey->removed) std::abort();
      keys.push_back(subkey);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  host::Registry registry;
  const auto error = host::ReadRegText({reinterpret_cast<const char*>(data), size}, registry);
  if (error && error->reason.empty()) std::abort();
  ListAll(registry);
  return 0;
}
