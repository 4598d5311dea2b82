// A folder of a test's own, removed with everything in it at the end.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace hostscope::test {

class TestFolder {
 public:
  TestFolder();
  ~TestFolder();
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // The full path of a name in it, as the program writes paths: with a backslash.
  std::string PathOf(std::string_view name) const;
  // Makes the folders on the way, too.
  void Write(std::string_view name, std::string_view content) const;
  // The content of a file; empty when there is none.
  std::string Read(std::string_view name) const;
  bool Holds(std::string_view name) const;

 private:
  std::filesystem::path path_;
};

}  // namespace hostscope::test
