// Arbitrary bytes as a profile: checked, told in words, looked for and read at all moments, on a
// machine of each family.
// Whatever they are, nothing is read or written out of bounds and every text ends in its field.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "linux/profile_check.h"
#include "linux/profile_summary.h"
#include "platform/host/machine.h"
#include "profile/read_profile.h"
#include "tests/support/test_folder.h"

namespace {

using namespace hostscope;

void Require(bool holds) {
  if (!holds) std::abort();
}

// Longer than the longest section that is seen; each key reads the whole file again.
constexpr std::size_t kLongest = 40000;

constexpr char kPath[] = "C:\\p.ini";

void Find() {
  const OwnedText found = FindProfile("C:");
  Require(!found.present() || SameText(found.c_str(), kPath));
}

void ReadAll(std::size_t work_size) {
  const auto settings = std::make_unique<ProfileSettings>();
  std::vector<char> work(work_size, 'w');
  CreateLists(*settings);
  for (const ReadMoment moment :
       {ReadMoment::kStartUp, ReadMoment::kMessage, ReadMoment::kDialog, ReadMoment::kWorker})
    ReadProfile(kPath, moment, *settings, work);
  for (const CatalogueRow& row : Catalogue()) {
    if (row.text != nullptr) {
      const std::span<char> field = row.text(*settings);
      Require(TextLength(field.data()) < field.size());
    }
    if (row.list == nullptr) continue;
    for (int i = 0; i < (settings.get()->*row.list).count(); ++i)
      Require(*(settings.get()->*row.list).Get(i) != '\0');
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > kLongest) return 0;
  static const test::TestFolder folder;
  folder.Write("p.ini", {reinterpret_cast<const char*>(data), size});
  host::CheckProfile({reinterpret_cast<const char*>(data), size});
  Require(!host::ProfileSummary(folder.path() / "p.ini").empty());
  static std::array<host::Machine, 2> machines;
  for (std::size_t i = 0; i < machines.size(); ++i) {
    host::Machine& machine = machines[i];
    const host::UseMachine use(machine);
    machine.version.platform_id = static_cast<DWORD>(i + 1);
    machine.files.MountDrive('C', folder.path());
    Find();
    // The program's own work area, and one that cuts the sections short.
    ReadAll(i == 0 ? 32767 : 2 + size % 512);
    Require(machine.handles.OpenObjects().empty());
  }
  return 0;
}
