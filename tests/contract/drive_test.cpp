// Drive letters and what is in the drives. Which there are is the machine's own; C: is on all.
#include <gtest/gtest.h>

#include <string>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

std::string Roots() {
  std::string roots(200, '#');
  roots.resize(GetLogicalDriveStringsA(200, roots.data()));
  return roots;
}

TEST(DriveContract, TheListOfRoots) {
  const Place place;
  const std::string roots = Roots();
  const auto length = static_cast<DWORD>(roots.size());
  ExpectAnswer("four characters each", 0, length % 4);
  ExpectAnswer("has C:", true, roots.find(std::string("C:\\\0", 4)) != std::string::npos);
  std::string buffer(length + 2, '#');
  ExpectAnswer("size asked for", length + 1, GetLogicalDriveStringsA(0, nullptr));
  ExpectAnswer("too small", length + 1, GetLogicalDriveStringsA(length, buffer.data()));
  ExpectAnswer("large enough", length, GetLogicalDriveStringsA(length + 1, buffer.data()));
  ExpectAnswer("with a zero behind", Visible(roots + '\0') + "#", Visible(buffer));
}

TEST(DriveContract, TypeSpaceAndVolume) {
  const Place place;
  std::string missing = "D:\\";
  while (Roots().find(missing) != std::string::npos)
    ++missing[0];
  for (const std::string& root : {std::string("C:\\"), std::string("c:\\"), missing}) {
    const bool is_there = root != missing;
    const std::string outcome = is_there ? "yes" : "3";
    ExpectAnswer(root, is_there ? DRIVE_FIXED : DRIVE_NO_ROOT_DIR, GetDriveTypeA(root.c_str()));
    DWORD sectors = 0, bytes = 0, free_clusters = 0, clusters = 0, flags = 0;
    ExpectAnswer(
        root + ", space", outcome,
        Outcome(GetDiskFreeSpaceA(root.c_str(), &sectors, &bytes, &free_clusters, &clusters)));
    ULARGE_INTEGER available = {}, total = {}, free = {};
    ExpectAnswer(root + ", larger space", outcome,
                 Outcome(GetDiskFreeSpaceExA(root.c_str(), &available, &total, &free)));
    if (is_there) {
      ExpectAnswer(root + ", both alike", total.QuadPart, 1ULL * sectors * bytes * clusters);
      ExpectAnswer(root + ", parts of the whole", true,
                   0 < free_clusters && free_clusters <= clusters && 0 < available.QuadPart &&
                       available.QuadPart <= free.QuadPart && free.QuadPart <= total.QuadPart);
    }
    char label[256], file_system[256] = "";
    ExpectAnswer(root + ", volume", outcome,
                 Outcome(GetVolumeInformationA(root.c_str(), label, 256, nullptr, nullptr, &flags,
                                               file_system, 256)));
    ExpectAnswer(root + ", file system", is_there ? "NTFS" : "", file_system);
    ExpectAnswer(root + ", flags", is_there, flags != 0);
  }
}

}  // namespace
}  // namespace contract
