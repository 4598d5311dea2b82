// Files, searches and the current folder, in a folder of the test's own.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

class FileContract : public testing::Test {
 protected:
  Place place;
};

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

HANDLE Open(const std::string& path, DWORD access, DWORD share, DWORD disposition) {
  return CreateFileA(path.c_str(), access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                     nullptr);
}

// What opening leads to: the error, or "open" with the size the file has then.
std::string OpenAnswer(const std::string& path, DWORD access, DWORD share, DWORD disposition) {
  SetLastError(0);
  const HANDLE file = Open(path, access, share, disposition);
  const DWORD error = GetLastError();
  if (file == INVALID_HANDLE_VALUE) return std::to_string(error);
  std::string answer = "open, " + std::to_string(GetFileSize(file, nullptr)) + " bytes";
  if (error != 0) answer += ", last error " + std::to_string(error);
  CloseHandle(file);
  return answer;
}

TEST(OpenFileContract, CreateFile) {
  static constexpr struct {
    const char* name;
    DWORD access;
    DWORD disposition;
    const char* expected;
  } kRows[] = {{"here", GENERIC_READ, OPEN_EXISTING, "open, 5 bytes"},
               {"HERE", GENERIC_READ, OPEN_EXISTING, "open, 5 bytes"},
               {"here", GENERIC_WRITE, CREATE_ALWAYS, "open, 0 bytes, last error 183"},
               {"absent", GENERIC_READ, OPEN_EXISTING, "2"},
               {"absent", GENERIC_WRITE, CREATE_ALWAYS, "open, 0 bytes"},
               {"sub", GENERIC_READ, OPEN_EXISTING, "5"},
               {"sub", GENERIC_WRITE, CREATE_ALWAYS, "5"},
               {"sub\\inside", GENERIC_READ, OPEN_EXISTING, "open, 6 bytes"},
               {"sub/inside", GENERIC_READ, OPEN_EXISTING, "open, 6 bytes"},
               {"sub\\..\\here", GENERIC_READ, OPEN_EXISTING, "open, 5 bytes"},
               {".\\here", GENERIC_READ, OPEN_EXISTING, "open, 5 bytes"},
               {"no folder\\new", GENERIC_WRITE, CREATE_ALWAYS, "3"},
               {"here\\new", GENERIC_WRITE, CREATE_ALWAYS, "3"},
               {"bad?name", GENERIC_READ, OPEN_EXISTING, "123"},
               {"bad*name", GENERIC_WRITE, CREATE_ALWAYS, "123"}};
  for (const auto& row : kRows) {
    Place place;
    place.MakeFile("here", "12345");
    place.MakeFolder("sub");
    place.MakeFile("sub\\inside", "123456");
    const std::string text = std::string(row.name) + ", access " + std::to_string(row.access) +
                             ", disposition " + std::to_string(row.disposition);
    ExpectAnswer(text, row.expected,
                 OpenAnswer(place.Path(row.name), row.access, FILE_SHARE_READ, row.disposition));
  }
}

TEST_F(FileContract, Sharing) {
  static constexpr struct {
    DWORD first_access;
    DWORD first_share;
    DWORD access;
    DWORD share;
    const char* expected;
  } kRows[] = {// A report being written: others may read it when they put up with the writer.
               {GENERIC_WRITE, FILE_SHARE_READ, GENERIC_READ, kShareAll, "open, 4 bytes"},
               {GENERIC_WRITE, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, "32"},
               {GENERIC_WRITE, FILE_SHARE_READ, GENERIC_WRITE, kShareAll, "32"},
               // A profile being read.
               {GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, "open, 4 bytes"},
               {GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, 0, "32"},
               {GENERIC_READ, FILE_SHARE_READ, GENERIC_WRITE, kShareAll, "32"}};
  for (const auto& row : kRows) {
    place.MakeFile("shared", "1234");
    const std::string path = place.Path("shared");
    const std::string text = "first " + std::to_string(row.first_access) + "/" +
                             std::to_string(row.first_share) + ", second " +
                             std::to_string(row.access) + "/" + std::to_string(row.share);
    const HANDLE first = Open(path, row.first_access, row.first_share, OPEN_EXISTING);
    ASSERT_NE(INVALID_HANDLE_VALUE, first) << text;
    ExpectAnswer(text, row.expected, OpenAnswer(path, row.access, row.share, OPEN_EXISTING));
    CloseHandle(first);
    ExpectAnswer(text + ", once closed", "open, 4 bytes",
                 OpenAnswer(path, row.access, row.share, OPEN_EXISTING));
  }
}

TEST_F(FileContract, WriteAndRead) {
  const std::string path = place.Path("text");
  HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                            FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, file);
  DWORD done = 99;
  ExpectAnswer("write", "yes", Outcome(WriteFile(file, "line\r\n", 6, &done, nullptr)));
  ExpectAnswer("written", 6, done);
  WriteFile(file, "a\0b", 3, &done, nullptr);
  char bytes[64] = "~~~~~~~~~~~~";
  ExpectAnswer("close", "yes", Outcome(CloseHandle(file)));

  file = Open(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
  DWORD high = 99;
  ExpectAnswer("size", 9, GetFileSize(file, &high));
  ExpectAnswer("its upper half", 0, high);
  ExpectAnswer("read", "yes", Outcome(ReadFile(file, bytes, 4, &done, nullptr)));
  ExpectAnswer("bytes read", "4 line~", std::to_string(done) + " " + std::string(bytes, 5));
  ExpectAnswer("read more than there is", "yes",
               Outcome(ReadFile(file, bytes, 64, &done, nullptr)));
  ExpectAnswer("rest", "5 \\x0D\\x0Aa|b",
               std::to_string(done) + " " + Visible(std::string(bytes, done)));
  ExpectAnswer("read at the end", "yes", Outcome(ReadFile(file, bytes, 64, &done, nullptr)));
  ExpectAnswer("nothing there", 0, done);
  CloseHandle(file);
}

// Files and folders that match, sorted by their bytes, a folder's name followed by a backslash; or
// the error.
std::string Find(const std::string& pattern) {
  WIN32_FIND_DATAA data;
  const HANDLE search = FindFirstFileA(pattern.c_str(), &data);
  if (search == INVALID_HANDLE_VALUE) return "error " + std::to_string(GetLastError());
  std::multiset<std::string> names;
  do {
    const bool folder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    names.insert(data.cFileName + std::string(folder ? "\\" : ""));
  } while (FindNextFileA(search, &data));
  ExpectAnswer(pattern + ", end of the listing", 18, GetLastError());
  ExpectAnswer(pattern + ", close", TRUE, FindClose(search));
  std::string all;
  for (const std::string& name : names)
    all += (all.empty() ? "" : " ") + name;
  return all;
}

TEST_F(FileContract, Find) {
  static constexpr char kAll[] = "..\\ .\\ TWO.INI a.b.c folder.ini\\ noext one.ini x.txt xy.txt";
  static constexpr struct {
    const char* pattern;
    const char* expected;
    KnownDifference known = {};
  } kRows[] = {{"*.ini", "TWO.INI folder.ini\\ one.ini"},
               {"*.INI", "TWO.INI folder.ini\\ one.ini"},
               {"*", kAll},
               {"*.*", kAll},
               {"one.ini", "one.ini"},
               {"ONE.INI", "one.ini"},
               {"o*", "one.ini"},
               {"*o*", "TWO.INI folder.ini\\ noext one.ini"},
               {"?.txt", "x.txt"},
               {"a.*", "a.b.c"},
               {"*.c", "a.b.c"},
               {"folder.ini", "folder.ini\\"},
               {"folder.ini\\*", "..\\ .\\ inside.ini"},
               {"folder.ini\\*.ini", "inside.ini"},
               {"folder.ini/*.ini", "inside.ini"},
               {"*.none", "error 2"},
               {"absent", "error 2"},
               {"absent\\*", "error 3"},
               {"folder.ini\\", "error 2"},
               // NT's answers: a question mark before a dot also stands for nothing, and a folder
               // that is a file has an error of its own.
               {"x?.txt", "x.txt xy.txt", {Platform::kWine, "wants one character"}},
               {"one.ini\\*", "error 267", {Platform::kWine, "calls the name invalid, 123"}}};
  for (const char* name : {"one.ini", "TWO.INI", "noext", "a.b.c", "x.txt", "xy.txt"}) {
    place.MakeFile(name, "");
  }
  place.MakeFolder("folder.ini");
  place.MakeFile("folder.ini\\inside.ini", "");
  for (const auto& row : kRows) {
    ExpectAnswer(row.pattern, row.expected, Find(place.Path(row.pattern)), row.known);
    ExpectAnswer(std::string(row.pattern) + ", relative", row.expected, Find(row.pattern),
                 row.known);
  }
}

TEST_F(FileContract, FindData) {
  place.MakeFile("file.bin", std::string(70000, 'x'));
  place.SetTime("file.bin", 1015491900);  // 2002-03-07 09:05:00 UTC
  WIN32_FIND_DATAA data;
  HANDLE search = FindFirstFileA(place.Path("FILE.bin").c_str(), &data);
  ASSERT_NE(INVALID_HANDLE_VALUE, search);
  ExpectAnswer("size", 70000, data.nFileSizeLow);
  ExpectAnswer("no folder", 0, data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
  ExpectAnswer("name as it is kept", "file.bin", data.cFileName);
  const long long time = static_cast<long long>(data.ftLastWriteTime.dwHighDateTime) << 32 |
                         data.ftLastWriteTime.dwLowDateTime;
  ExpectAnswer("written, in 100 ns since 1601", 126599655000000000, time);
  ExpectAnswer("nothing further", "18", Outcome(FindNextFileA(search, &data)));
  FindClose(search);
}

std::string CurrentFolder() {
  char folder[MAX_PATH] = "";
  const DWORD length = GetCurrentDirectoryA(sizeof folder, folder);
  EXPECT_EQ(std::string(folder).size(), length);
  return folder;
}

TEST_F(FileContract, CurrentFolder) {
  place.MakeFolder("Sub");
  place.MakeFile("outside", "12");
  ExpectAnswer("to begin with", place.folder(), CurrentFolder());
  const DWORD length = static_cast<DWORD>(place.folder().size());
  char buffer[MAX_PATH] = "";
  ExpectAnswer("size query", length + 1, GetCurrentDirectoryA(0, nullptr));
  ExpectAnswer("one too short", length + 1, GetCurrentDirectoryA(length, buffer));
  ExpectAnswer("just fits", length, GetCurrentDirectoryA(length + 1, buffer));

  ExpectAnswer("into Sub", "yes", Outcome(SetCurrentDirectoryA(place.Path("Sub").c_str())));
  ExpectAnswer("one deeper", length + 4, CurrentFolder().size());

  ExpectAnswer("absent folder", "2", Outcome(SetCurrentDirectoryA(place.Path("absent").c_str())));
  ExpectAnswer("a file", "267", Outcome(SetCurrentDirectoryA(place.Path("outside").c_str())));
  ExpectAnswer("unchanged", length + 4, CurrentFolder().size());
  ExpectAnswer("back", "yes", Outcome(SetCurrentDirectoryA("..")));
  ExpectAnswer("where it began", place.folder(), CurrentFolder());
}

}  // namespace
}  // namespace contract
