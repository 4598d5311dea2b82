#include "tests/support/test_folder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace hostscope::test {

TestFolder::TestFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "hostscope-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = name;
}

TestFolder::~TestFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TestFolder::PathOf(std::string_view name) const {
  return path_.string() + "\\" + std::string(name);
}

void TestFolder::Write(std::string_view name, std::string_view content) const {
  std::filesystem::create_directories((path_ / name).parent_path());
  std::ofstream(path_ / name, std::ios::binary) << content;
}

std::string TestFolder::Read(std::string_view name) const {
  std::ifstream file(path_ / name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

bool TestFolder::Holds(std::string_view name) const {
  return std::filesystem::exists(path_ / name);
}

}  // namespace hostscope::test
