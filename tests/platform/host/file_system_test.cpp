// Where the program's paths lead on a described machine, and what it may do there.
#include "platform/host/file_system.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "tests/support/test_folder.h"

namespace host {
namespace {

namespace fs = std::filesystem;

// A machine with a drive C: and the user's own folder beside it, both below a temporary folder.
class FileSystemTest : public testing::Test {
 protected:
  FileSystemTest() : use_(machine_) {
    for (const char* sub : {"c/WINDOWS/system", "c/Program Files", "own/profiles"})
      fs::create_directories(folder_ / sub);
    for (const char* file : {"c/WINDOWS/win.ini", "c/WINDOWS/system/x.dll", "c/autoexec.bat",
                             "own/full.ini", "own/profiles/Short.ini"})
      Write(file, file);
    machine_.files.MountDrive('c', folder_ / "c");
  }
  void Write(const std::string& name, const std::string& content) const {
    files_.Write(name, content);
  }
  std::string Read(const std::string& name) const { return files_.Read(name); }
  // What stands for the own folder in the rows.
  std::string Filled(std::string text) const {
    const std::size_t at = text.find("OWN");
    return at == std::string::npos ? text : text.replace(at, 3, own_);
  }
  // The full name and what is there, or the error.
  std::string Locate(const std::string& path) const {
    FileSystem::Place place;
    if (const DWORD error = machine_.files.Locate(path, place)) {
      return "error " + std::to_string(error);
    }
    return place.name + (place.folder ? " folder" : place.exists ? " file" : " new");
  }
  // The names that match, in the order in which they come.
  static std::string Find(const std::string& pattern) {
    WIN32_FIND_DATAA data;
    const HANDLE search = FindFirstFileA(pattern.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return "error " + std::to_string(GetLastError());
    std::string names = data.cFileName;
    while (FindNextFileA(search, &data))
      names += std::string(" ") + data.cFileName;
    FindClose(search);
    return names;
  }

  Machine machine_;
  UseMachine use_;
  hostscope::test::TestFolder files_;
  const fs::path& folder_ = files_.path();
  const std::string own_ = (folder_ / "own").string();
};

TEST_F(FileSystemTest, Locate) {
  static constexpr struct {
    const char* current;
    const char* path;
    const char* expected;
  } kRows[] = {
      {"C:\\", "C:\\WINDOWS\\win.ini", "C:\\WINDOWS\\win.ini file"},
      {"C:\\", "c:/windows/WIN.INI", "C:\\windows\\WIN.INI file"},
      {"C:\\", "C:\\WINDOWS\\\\win.ini", "C:\\WINDOWS\\win.ini file"},
      {"C:\\", "C:\\WINDOWS\\", "C:\\WINDOWS folder"},
      {"C:\\", "C:\\", "C:\\ folder"},
      {"C:\\", "C:\\WINDOWS\\..\\..\\autoexec.bat", "C:\\autoexec.bat file"},
      {"C:\\", "C:\\absent\\..\\.\\autoexec.bat", "C:\\autoexec.bat file"},
      {"C:\\", "C:\\autoexec.bat. .", "C:\\autoexec.bat file"},
      {"C:\\", "C:\\program files\\new.txt", "C:\\program files\\new.txt new"},
      {"C:\\", "C:\\absent\\new.txt", "error 3"},
      {"C:\\", "C:\\autoexec.bat\\new.txt", "error 3"},
      {"C:\\", "C:\\autoexec.bat\\", "error 123"},
      {"C:\\", "C:\\a|b", "error 123"},
      {"C:\\", "D:\\file", "error 3"},
      {"C:\\", "\\\\.\\PhysicalDrive0", "error 2"},
      {"C:\\", "\\\\server\\share\\file", "error 3"},
      {"C:\\", "", "error 3"},
      // What is missing is taken from the current folder.
      {"C:\\WINDOWS", "win.ini", "C:\\WINDOWS\\win.ini file"},
      {"C:\\WINDOWS", "..\\autoexec.bat", "C:\\autoexec.bat file"},
      {"C:\\WINDOWS", "\\autoexec.bat", "C:\\autoexec.bat file"},
      {"C:\\WINDOWS", "c:system\\x.dll", "C:\\WINDOWS\\system\\x.dll file"},
      {"C:\\WINDOWS", "c:", "C:\\WINDOWS folder"},
      // The user's own files.
      {"C:\\", "OWN/full.ini", "OWN/full.ini file"},
      {"C:\\", "OWN\\full.ini", "OWN/full.ini file"},
      {"C:\\", "OWN\\profiles/SHORT.INI", "OWN/profiles/SHORT.INI file"},
      {"C:\\", "OWN\\a|b", "OWN/a|b new"},
      {"C:\\", "OWN\\a*b", "error 123"},
      {"OWN", "profiles\\Short.ini", "OWN/profiles/Short.ini file"},
      {"OWN\\profiles\\", "..\\report.txt", "OWN/report.txt new"},
      {"OWN", "C:\\autoexec.bat", "C:\\autoexec.bat file"},
      {"OWN", "c:autoexec.bat", "C:\\autoexec.bat file"},
      {"OWN", "\\", "/ folder"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(std::string(row.path) + " in " + row.current);
    ASSERT_EQ(0u, machine_.files.SetCurrentFolder(Filled(row.current)));
    EXPECT_EQ(Filled(row.expected), Locate(Filled(row.path)));
  }
}

TEST_F(FileSystemTest, TheNameAsWrittenComesBeforeAnotherCase) {
  Write("own/FULL.INI", "capitals");
  std::string content;
  EXPECT_EQ(0u, machine_.files.ReadWhole(own_ + "\\FULL.INI", content));
  EXPECT_EQ("capitals", content);
  EXPECT_EQ(0u, machine_.files.ReadWhole(own_ + "\\full.ini", content));
  EXPECT_EQ("own/full.ini", content);
}

TEST_F(FileSystemTest, NamesAreInTheCodePage) {
  Write("own/M\xC3\xBCller.txt", "umlaut");
  Write("own/\xE6\x97\xA5\xE6\x9C\xAC.txt", "not in the code page");
  Write("own/\xFFz.txt", "not UTF-8");
  std::string content;
  EXPECT_EQ(0u, machine_.files.ReadWhole(own_ + "\\m\xDCller.txt", content));
  EXPECT_EQ("umlaut", content);
  EXPECT_EQ(0u, machine_.files.ReadWhole(own_ + "\\??.txt", content));
  EXPECT_EQ("not in the code page", content);
  EXPECT_EQ(". .. ??.txt full.ini M\xFCller.txt profiles \xFFz.txt", Find(own_ + "\\*"));
}

TEST_F(FileSystemTest, NamesOutsideOfTheCodePageHaveShortOnes) {
  Write("c/\xE6\x97\xA5/\xE4\xB8\xAD", "first");
  Write("c/\xE6\x97\xA5/\xE6\x9C\xAC", "second");
  EXPECT_EQ("error 123", Locate("C:\\?"));
  EXPECT_EQ("error 123", Find("C:\\?\\*"));
  WIN32_FIND_DATAA data;
  FindClose(FindFirstFileA("C:\\?", &data));
  const std::string folder = std::string("C:\\") + data.cAlternateFileName + "\\";
  EXPECT_EQ(". .. ? ?", Find(folder + "*"));
  std::string contents;
  const HANDLE search = FindFirstFileA((folder + "?").c_str(), &data);
  do {
    std::string content, name = folder + LowerCase(data.cAlternateFileName);
    EXPECT_EQ(0u, machine_.files.ReadWhole(name, content)) << name;
    EXPECT_EQ("?", Find(name));
    contents += content + " ";
  } while (FindNextFileA(search, &data));
  FindClose(search);
  EXPECT_EQ("first second ", contents);
}

TEST_F(FileSystemTest, ListingsAreKeptUntilTheFolderChanges) {
  constexpr int kFiles = 400;
  const fs::path many = folder_ / "many";
  const auto name = [](char letter, int i) { return letter + std::to_string(i); };
  for (int i = 0; i < kFiles; ++i)
    Write("many/" + name('F', i), "");
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  std::shared_ptr<const FolderListing> listing;
  std::clock_t begin = std::clock();
  for (int i = 0; i < 20; ++i)
    ASSERT_EQ(0u, FolderListings().List(many, listing));
  const std::clock_t twenty_listings = std::clock() - begin;
  begin = std::clock();
  FolderListings kept;
  for (int i = 0; i < kFiles; ++i)
    ASSERT_EQ(many / name('F', i), kept.Find(many, name('f', i)));
  EXPECT_LT(std::clock() - begin, 4 * twenty_listings);
  Write("many/NEW", "");
  EXPECT_EQ(many / "NEW", kept.Find(many, "new"));
  fs::remove(many / "NEW");
  EXPECT_EQ("", kept.Find(many, "new"));
  // However fast the changes come.
  for (int i = 0; i < 30; ++i) {
    Write("few/" + name('N', i), "");
    ASSERT_EQ(folder_ / "few" / name('N', i), kept.Find(folder_ / "few", name('n', i)));
  }
}

TEST_F(FileSystemTest, DrivesAreReadOnly) {
  static constexpr struct {
    const char* name;
    FileUse use;
    Disposition disposition;
    DWORD expected;
  } kRows[] = {
      {"C:\\autoexec.bat", {.read = true}, Disposition::kOpenExisting, 0},
      {"C:\\autoexec.bat", {.read = true}, Disposition::kOpenAlways, 0},
      {"C:\\autoexec.bat", {}, Disposition::kOpenExisting, 0},
      {"C:\\autoexec.bat", {.write = true}, Disposition::kOpenExisting, ERROR_WRITE_PROTECT},
      {"C:\\autoexec.bat", {.read = true}, Disposition::kCreateAlways, ERROR_WRITE_PROTECT},
      {"C:\\autoexec.bat", {.read = true}, Disposition::kTruncate, ERROR_WRITE_PROTECT},
      {"C:\\new.txt", {.read = true}, Disposition::kOpenAlways, ERROR_WRITE_PROTECT},
      {"C:\\new.txt", {.write = true}, Disposition::kCreateNew, ERROR_WRITE_PROTECT},
      {"C:\\new.txt", {.write = true}, Disposition::kOpenExisting, ERROR_FILE_NOT_FOUND},
      {"C:\\no\\new.txt", {.write = true}, Disposition::kCreateAlways, ERROR_PATH_NOT_FOUND},
      {"C:\\WINDOWS", {.write = true}, Disposition::kCreateAlways, ERROR_ACCESS_DENIED},
      {"D:\\new.txt", {.write = true}, Disposition::kCreateAlways, ERROR_PATH_NOT_FOUND},
  };
  for (const auto& row : kRows) {
    std::shared_ptr<OpenFile> file;
    EXPECT_EQ(row.expected, machine_.files.Open(row.name, row.use, row.disposition, file))
        << row.name << ", write " << row.use.write << ", disposition "
        << static_cast<int>(row.disposition);
  }
  EXPECT_EQ("c/autoexec.bat", Read("c/autoexec.bat"));
  EXPECT_FALSE(fs::exists(folder_ / "c/new.txt"));
}

// Opening it would wait for whoever writes into it.
TEST_F(FileSystemTest, APipeOnADriveIsRefused) {
  ASSERT_EQ(mkfifo((folder_ / "c/pipe").c_str(), 0600), 0);
  EXPECT_EQ(CreateFileA("C:\\pipe", GENERIC_READ, 1, nullptr, OPEN_EXISTING, 0, nullptr),
            INVALID_HANDLE_VALUE);
  EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
}

// Files come sorted by name without regard to case; "." and ".." come first, but not at the root.
TEST_F(FileSystemTest, FindInOrder) {
  for (const char* name : {"c/WINDOWS/b.INI", "c/WINDOWS/A.ini", "c/WINDOWS/C.ini"})
    Write(name, "");
  EXPECT_EQ("A.ini b.INI C.ini win.ini", Find("C:\\WINDOWS\\*.ini"));
  EXPECT_EQ(". .. A.ini b.INI C.ini system win.ini", Find("C:\\windows\\\\*.*"));
  EXPECT_EQ("autoexec.bat Program Files WINDOWS", Find("C:\\*"));
  EXPECT_EQ("WINDOWS", Find("C:\\windows"));
  EXPECT_EQ("win.ini", Find("C:\\windows\\WIN.ini"));
}

// A handle of another kind is not CloseHandle's to close.
TEST_F(FileSystemTest, SearchesAreClosedByFindCloseAlone) {
  WIN32_FIND_DATAA data;
  const HANDLE search = FindFirstFileA("C:\\*", &data);
  EXPECT_FALSE(CloseHandle(search));
  EXPECT_EQ(ERROR_INVALID_HANDLE, GetLastError());
  EXPECT_EQ((std::map<std::string, int>{{"search", 1}}), machine_.handles.OpenObjects());
  EXPECT_TRUE(FindClose(search));
  const HANDLE file =
      CreateFileA("C:\\autoexec.bat", GENERIC_READ, 1, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_FALSE(FindClose(file));
  EXPECT_TRUE(CloseHandle(file));
  EXPECT_TRUE(machine_.handles.OpenObjects().empty());
}

}  // namespace
}  // namespace host
