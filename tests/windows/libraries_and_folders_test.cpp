// The versions of the libraries that a profile names, and the trees of its folders.
#include <gtest/gtest.h>

#include "tests/support/versioned_file.h"
#include "tests/windows/driver.h"
#include "tests/windows/expected.h"

namespace drive {
namespace {

using hostscope::test::Bytes;

// The report's text behind a heading.
std::string TextBehind(const std::string& report, const std::string& heading) {
  const size_t at = report.find("\r\n\r\n" + heading);
  return at == std::string::npos ? report : report.substr(at + 4 + heading.size());
}

TEST(DllVersions, AreTheLibrariesOwn) {
  const std::pair<const char*, const char*> built[] = {
      {"v_both.dll", "5.81.4916.65535"}, {"v_older.dll", "5.81.4916.0"},
      {"v_refuses.dll", "6.0.2600.7"},   {"v_silent.dll", "6.0.2600.7"},
      {"v_bare.dll", "dll is missing"},
  };
  for (const char* name : {"win98", "winxp"}) {
    const Release release(name);
    const Folder folder;
    std::string profile = "[DLLS]\r\nnosuch.dll\r\n";
    std::vector<std::string> list;
    std::string expected = Padded("nosuch.dll", 27) + "dll is missing\r\n";
    const auto expect = [&](const std::string& entry, const std::string& version) {
      profile += entry + "\r\n";
      expected += Padded(entry, 27) + version + "\r\n";
    };
    for (const auto& [library, version] : built) {
      folder.CopyFromBuild(library);
      expect(library, version);
    }
    const std::string report = ReportOf(folder, profile, {}, &list);
    EXPECT_EQ(TextBehind(report, "[dll name]                 [version]\r\n"), expected) << name;
    EXPECT_EQ(list.front(), ProgressLine("Dlls versions...", "Ok"));
  }
}

std::wstring WidePath(const Folder& folder, const std::wstring& name) {
  return std::wstring(folder.path().begin(), folder.path().end()) + L"\\" + name;
}

// Every file of the tree was written on 9 February 2004.
void MakeFile(const Folder& folder, const std::wstring& name, const std::string& bytes,
              LONGLONG size) {
  const HANDLE file = CreateFileW(WidePath(folder, name).c_str(), GENERIC_WRITE, 0, nullptr,
                                  CREATE_ALWAYS, 0, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  DWORD done = 0;
  WriteFile(file, bytes.data(), bytes.size(), &done, nullptr);
  LONG high = static_cast<LONG>(size >> 32);
  SetFilePointer(file, static_cast<LONG>(size), &high, FILE_BEGIN);
  SetEndOfFile(file);
  const SYSTEMTIME parts = {2004, 2, 0, 9, 23, 30, 0, 0};
  FILETIME time;
  SystemTimeToFileTime(&parts, &time);
  SetFileTime(file, nullptr, nullptr, &time);
  CloseHandle(file);
}

TEST(Folders, AreListedAsTrees) {
  const Folder folder;
  for (const char* name : {"T", "T\\Sub", "T\\Sub\\Void", "T\\Last"})
    folder.MakeFolder(name);
  MakeFile(folder, L"T\\Sub\\Plain.Txt", "abc", 3);
  MakeFile(folder, L"T\\co-op.dll", Bytes({.fixed = {{5, 0, 2, 1}}}), 2048);
  MakeFile(folder, L"T\\COOP.DLL",
           Bytes({.strings = {{"FileVersion", "a text"}}, .translation = {}, .string_length = 99}),
           1024);
  MakeFile(folder, L"T\\a name that is longer than its column", "", 5000000000);
  const RegistryValue value = RegistryValue::Text(HKEY_CURRENT_USER, "Software\\HostscopeTests",
                                                  "Folder", folder.Path("T") + "\\");
  const std::string files =
      "|---a name that is longer than its column09.02.045000000000 b     \r\n"
      "|---coop.dll                 09.02.04      1024 b     a text\r\n"
      "|---co-op.dll                09.02.04      2048 b     5.0.2.1\r\n\r\n";
  const std::string tree = folder.Path("T") +
                           "\r\n"
                           "|---\\LAST\r\n"
                           "|   \r\n"
                           "|---\\SUB\r\n"
                           "|   |---\\VOID\r\n"
                           "|   |   \r\n"
                           "|   |---plain.txt                09.02.04         3 b     \r\n"
                           "|   \r\n" +
                           files;
  std::vector<std::string> list;
  const std::string report =
      ReportOf(folder,
               "[FOLDERS]\r\n" + folder.Path("T") +
                   ",1\r\nHKCU\\Software\\HostscopeTests,Folder,0\r\n"
                   "HKCU\\Software\\HostscopeTests,Other,0\r\nC:\\nosuch\r\n<run folder>,0\r\n",
               {}, &list);
  const std::string text = TextBehind(
      report, "Folders & Files:      [path]   [last write date]   [size]   [version]\r\n\r\n");
  const std::string expected = tree + folder.Path("T") + "\r\n|---\\LAST\r\n|---\\SUB\r\n" + files +
                               "Can not read registry value.\r\n\r\n"
                               "C:\\nosuch\r\nFolder is not exists.\r\n\r\n" +
                               folder.path() + "\r\n|---\\T\r\n|---hscope.exe  ";
  EXPECT_EQ(text.substr(0, expected.size()), expected);
  EXPECT_EQ(list.front(), ProgressLine("Folders...", "Ok"));
}

TEST(Folders, HaveNamesOutsideOfTheCodePage) {
  const Folder folder;
  folder.MakeFolder("T");
  CreateDirectoryW(WidePath(folder, L"T\\\u65E5\u672C").c_str(), nullptr);
  MakeFile(folder, L"T\\\u65E5\u672C\\a", "abc", 3);
  MakeFile(folder, L"T\\\u4E2D.dll", Bytes({.fixed = {{1, 0, 0, 1}}}), 1024);
  MakeFile(folder, L"T\\\u672C.dll", Bytes({.fixed = {{2, 0, 0, 2}}}), 1025);
  const std::string report = ReportOf(folder, "[FOLDERS]\r\n" + folder.Path("T") + ",1\r\n");
  for (const std::string line :
       {"|---\\??\r\n|   |---a                        09.02.04         3 b",
        "\r\n|---?.dll                    09.02.04      1024 b     1.0.0.1",
        "\r\n|---?.dll                    09.02.04      1025 b     2.0.0.2"})
    EXPECT_NE(report.find(line), std::string::npos) << line << report;
}

}  // namespace
}  // namespace drive
