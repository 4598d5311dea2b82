// Drive letters and what is in the drives. Which there are is the machine's own; C: is on all.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

class DriveContract : public testing::Test {
 protected:
  static std::string Roots() {
    std::string roots(200, '#');
    roots.resize(GetLogicalDriveStringsA(200, roots.data()));
    return roots;
  }
  // "C:\", and one that isn't there.
  std::string Missing() const {
    for (std::string root = "D:\\"; root[0] <= 'Z'; ++root[0]) {
      if (Roots().find(root) == std::string::npos) return root;
    }
    return "";
  }

  Place place;
};

TEST_F(DriveContract, TheListOfRoots) {
  const std::string roots = Roots();
  ASSERT_FALSE(roots.empty());
  ExpectAnswer("four characters each", 0, roots.size() % 4);
  ExpectAnswer("has C:", true, roots.find(std::string("C:\\\0", 4)) != std::string::npos);
  for (std::size_t i = 4; i < roots.size(); i += 4)
    ExpectAnswer("in order", true, roots[i - 4] < roots[i]);
  const auto length = static_cast<DWORD>(roots.size());
  ExpectAnswer("size asked for", length + 1, GetLogicalDriveStringsA(0, nullptr));
  std::string buffer(length + 2, '#');
  ExpectAnswer("too small", length + 1, GetLogicalDriveStringsA(length, buffer.data()));
  ExpectAnswer("large enough", length, GetLogicalDriveStringsA(length + 1, buffer.data()));
  ExpectAnswer("with a zero behind", Visible(roots + '\0') + "#", Visible(buffer));
}

TEST_F(DriveContract, Types) {
  ExpectAnswer("C:\\", DRIVE_FIXED, GetDriveTypeA("C:\\"));
  ExpectAnswer("c:\\", DRIVE_FIXED, GetDriveTypeA("c:\\"));
  ExpectAnswer(Missing(), DRIVE_NO_ROOT_DIR, GetDriveTypeA(Missing().c_str()));
}

TEST_F(DriveContract, Space) {
  for (const std::string& root : {std::string("C:\\"), Missing()}) {
    const std::string expected = root == "C:\\" ? "yes" : "3";
    DWORD sectors = 0, bytes = 0, free_clusters = 0, clusters = 0;
    ExpectAnswer(
        root, expected,
        Outcome(GetDiskFreeSpaceA(root.c_str(), &sectors, &bytes, &free_clusters, &clusters)));
    ULARGE_INTEGER available = {}, total = {}, total_free = {};
    ExpectAnswer(root + ", larger", expected,
                 Outcome(GetDiskFreeSpaceExA(root.c_str(), &available, &total, &total_free)));
    const unsigned long long told = 1ULL * sectors * bytes * clusters;
    ExpectAnswer(root + ", both alike", true, told == total.QuadPart);
    ExpectAnswer(root + ", free within total", true,
                 available.QuadPart <= total_free.QuadPart &&
                     total_free.QuadPart <= total.QuadPart && free_clusters <= clusters);
  }
}

TEST_F(DriveContract, Volumes) {
  std::array<char, 256> label{}, file_system{};
  DWORD flags = 0;
  const auto ask = [&](const std::string& root, DWORD size) {
    return Outcome(GetVolumeInformationA(root.c_str(), label.data(), label.size(), nullptr, nullptr,
                                         &flags, file_system.data(), size));
  };
  ExpectAnswer("missing", "3", ask(Missing(), 256));
  ExpectAnswer("C:\\", "yes", ask("C:\\", 256));
  ExpectAnswer("C:\\, file system", "NTFS", file_system.data());
  ExpectAnswer("C:\\, flags", true, flags != 0);
}

}  // namespace
}  // namespace contract
