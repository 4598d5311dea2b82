#include "platform/host/machine_folder.h"

#include <gtest/gtest.h>

#include "tests/support/test_folder.h"

namespace host {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class MachineFolder : public testing::Test {
 protected:
  MachineFolder() { Write("machine.ini", "[Version]\nMajor=4\nMinor=10\nBuild=1\nPlatform=1\n"); }

  void Write(const std::string& name, const std::string& bytes) { own_.Write(name, bytes); }
  // The text of the error, or an empty one.
  std::string Load() {
    machine_.emplace();
    const auto error = LoadMachine(folder_, *machine_);
    return error ? error->Text() : "";
  }

  hostscope::test::TestFolder own_;
  const fs::path& folder_ = own_.path();
  std::optional<Machine> machine_;
};

TEST_F(MachineFolder, RegistryFilesComeInTheOrderOfTheirNames) {
  Write("b.reg", "REGEDIT4\n[HKEY_LOCAL_MACHINE\\K]\n@=\"b\"\n");
  Write("a.reg", "REGEDIT4\n[HKEY_LOCAL_MACHINE\\K]\n@=\"a\"\n\"a\"=\"a\"\n");
  Write("B2.REG", "REGEDIT4\n[HKEY_LOCAL_MACHINE\\K]\n@=\"B2\"\n");
  ASSERT_EQ(Load(), "");
  const auto key = Registry::FindBelow(machine_->registry.Root(Hive::kLocalMachine), "K");
  EXPECT_EQ(key->values.size(), 2u);
  EXPECT_EQ(key->values.Find("")->data, "b\0"s);
}

TEST_F(MachineFolder, TheCurrentUserIsKnownBeforeTheRegistry) {
  Write("machine.ini",
        "[Version]\nMajor=5\nMinor=0\nBuild=1\nPlatform=2\n[User]\nSid=S-1-5-21-4\n");
  Write("a.reg", "REGEDIT4\n[HKEY_USERS\\S-1-5-21-4\\K]\n");
  ASSERT_EQ(Load(), "");
  EXPECT_NE(Registry::FindBelow(machine_->registry.Root(Hive::kCurrentUser), "K"), nullptr);
}

TEST_F(MachineFolder, WhatIsNoPartOfIt) {
  Write("README.md", "");
  Write("notes.txt", "");
  Write(".hidden", "");
  EXPECT_EQ(Load(), "");
  Write("machin.ini", "");
  EXPECT_EQ(Load(), "machin.ini: a machine folder has no part of that name");
  fs::remove(folder_ / "machin.ini");
  fs::create_directories(folder_ / "Drives");
  EXPECT_EQ(Load(), "Drives: a machine folder has no part of that name");
}

TEST_F(MachineFolder, Errors) {
  const struct {
    std::string file;
    std::string bytes;
    std::string error;
  } rows[] = {
      {"a.reg", "REGEDIT4\n\nx", "a.reg:3: this is no key"},
      {"drives/CD/x", "", "drives/CD: it is no folder named by a drive letter"},
      {"drives/1/x", "", "drives/1: it is no folder named by a drive letter"},
      {"drives/E", "", "drives/E: it is no folder named by a drive letter"},
      {"drives", "", "drives: it cannot be read"},
      {"machine.ini", "[Version]\nMajor=4\nMinor=x\n",
       "machine.ini:3: Minor: the value is no number"},
      {"machine.ini", "[Version\n", "machine.ini:1: the section has no closing bracket"},
      {"machine.ini", "", "machine.ini: [Version] Major is missing"},
      {"machine.ini",
       "[Version]\nMajor=4\nMinor=0\nBuild=950\nPlatform=1\n[FileSizes]\nC:\\none=1\n",
       "machine.ini: [FileSizes] C:\\none: no such file"},
  };
  Write("drives/.hidden", "");
  Write("drives/c/x", "");
  EXPECT_EQ(Load(), "");
  Write("drives/C/x", "");
  EXPECT_EQ(Load(), "drives/c: the drive is there twice");
  for (const auto& row : rows) {
    Write(row.file, row.bytes);
    EXPECT_EQ(Load().substr(0, row.error.size()), row.error) << row.file;
    fs::remove_all(folder_ / fs::path(row.file).begin()->string());
  }
  fs::remove(folder_ / "machine.ini");
  EXPECT_EQ(Load(), "machine.ini: it cannot be read");
  fs::remove_all(folder_);
  EXPECT_EQ(Load(), folder_.string() + ": the machine folder cannot be read");
}

}  // namespace
}  // namespace host
