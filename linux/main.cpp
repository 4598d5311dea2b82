// The Linux program: runs the program on a described machine, seen from a terminal, or checks a
// profile.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "linux/profile_check.h"
#include "linux/profile_summary.h"
#include "platform/host/code_page.h"
#include "platform/host/machine.h"
#include "platform/host/machine_folder.h"
#include "platform/host/process.h"
#include "platform/host/shell32.h"
#include "platform/host/terminal.h"
#include "platform/program.h"
#include "platform/resources.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr int kFindings = 1;
constexpr int kRefused = 2;

constexpr const char* kUsage =
    "Usage: hscope --machine DIR [--debug-output] [profile] [output folder]\n"
    "       hscope --check-profile FILE\n"
    "\n"
    "Inspects the machine that the folder DIR describes and writes the report that the\n"
    "profile asks for. Without a profile the current folder is searched for one; without an\n"
    "output folder the report goes to the current folder, unless the profile says otherwise.\n"
    "In place of a profile: a shows the authors, h or ? the usage of the program itself.\n"
    "\n"
    "  --machine DIR         the machine's folder\n"
    "  --debug-output        what a debugger would be told goes to standard error\n"
    "  --check-profile FILE  lists what in a profile cannot do what was meant, as\n"
    "                        FILE:LINE: reason, and inspects nothing\n"
    "  --help                shows this text\n"
    "  --version             shows the version\n"
    "\n"
    "Exit code: 0; 1 when a checked profile has findings; 2 when the arguments, the machine\n"
    "or the file cannot be used.\n";

// A wrong argument or machine: what is said before the program ends with code 2.
struct Refusal {
  std::string reason;
  bool show_usage = false;
};

struct Arguments {
  bool help = false;
  bool version = false;
  bool debug_output = false;
  std::optional<std::string> machine;
  std::optional<std::string> checked_profile;
  std::vector<std::string> program;  // profile and output folder
};

std::string VersionText() {
  std::string name;
  std::string version;
#define TAKE_VALUE(key, text)                              \
  if (std::string_view(key) == "ProductName") name = text; \
  if (std::string_view(key) == "ProductVersion") version = text;
  HOSTSCOPE_VERSION_VALUES(TAKE_VALUE)
#undef TAKE_VALUE
  return name + " " + version;
}

Arguments ReadArguments(const std::vector<std::string>& given) {
  Arguments arguments;
  for (std::size_t at = 0; at < given.size(); ++at) {
    const std::string& argument = given[at];
    if (argument == "--help") {
      arguments.help = true;
    } else if (argument == "--version") {
      arguments.version = true;
    } else if (argument == "--debug-output") {
      arguments.debug_output = true;
    } else if (argument == "--machine") {
      if (++at == given.size()) throw Refusal{"--machine takes a folder", true};
      if (arguments.machine) throw Refusal{"--machine is there twice", true};
      arguments.machine = given[at];
    } else if (argument == "--check-profile") {
      if (++at == given.size()) throw Refusal{"--check-profile takes a file", true};
      if (arguments.checked_profile) throw Refusal{"--check-profile is there twice", true};
      arguments.checked_profile = given[at];
    } else if (argument.starts_with('-')) {
      throw Refusal{"unknown option " + argument, true};
    } else {
      arguments.program.push_back(argument);
    }
  }
  if (arguments.help || arguments.version) return arguments;
  if (arguments.checked_profile) {
    if (arguments.machine || arguments.debug_output || !arguments.program.empty())
      throw Refusal{"--check-profile FILE goes with nothing else", true};
    return arguments;
  }
  if (!arguments.machine) throw Refusal{"--machine DIR is missing", true};
  if (arguments.program.size() > 2) throw Refusal{"too many arguments", true};
  return arguments;
}

// A path of the user's as the program knows it.
std::string ProgramPath(const std::string& path) {
  const std::optional<std::string> text = CodePageFromUtf8(path);
  if (!text) throw Refusal{path + ": the name has characters outside of code page 1252"};
  if (text->find('"') != std::string::npos) {
    throw Refusal{path + ": the program takes no name with a double quote"};
  }
  return *text;
}

bool AsksForNotice(std::string_view profile) {
  return EqualNoCase(profile, "a") || EqualNoCase(profile, "h") || profile == "?";
}

// The program joins a profile to its own folder, which is the current one, but takes a path with a
// colon as complete.
std::string ProfileArgument(const std::string& given, const fs::path& current) {
  if (AsksForNotice(given)) return given;
  std::string path = given;
  if (given.starts_with('/')) {
    path = fs::path(given).lexically_normal().lexically_relative(current).native();
    if (AsksForNotice(path)) path = "./" + path;
  }
  if (path.find(':') == std::string::npos) return path;
  return (current / given).lexically_normal().native();
}

// Without a final separator, but for the topmost folder.
std::string FolderArgument(const std::string& given, const fs::path& current) {
  std::string path = (current / given).lexically_normal().native();
  if (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

std::string CommandLine(const std::vector<std::string>& given, const fs::path& current) {
  std::string line = "\"hscope.exe\"";
  for (std::size_t at = 0; at < given.size(); ++at) {
    const std::string argument =
        at == 0 ? ProfileArgument(given[at], current) : FolderArgument(given[at], current);
    line += " \"" + ProgramPath(argument) + "\"";
  }
  return line;
}

// The drives of a described machine are only read, so its user's folders are those of whoever runs
// the program, unless the machine states others.
void StateOwnFolders(Machine& machine) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing here sets a variable
  const char* const home = std::getenv("HOME");
  if (home == nullptr) return;
  const std::pair<int, const char*> folders[] = {{CSIDL_DESKTOPDIRECTORY, "Desktop"},
                                                 {CSIDL_PERSONAL, "Documents"}};
  for (const auto& [number, name] : folders) {
    const fs::path folder = fs::path(home) / name;
    const std::optional<std::string> text = CodePageFromUtf8(folder.native());
    std::error_code ignored;
    if (text && fs::is_directory(folder, ignored)) machine.special_folders.emplace(number, *text);
  }
}

void Load(Machine& machine, const std::string& folder) {
  std::optional<LoadError> error = LoadMachine(folder, machine);
  if (!error) return;
  if (error->file != fs::path(folder).native()) {
    error->file = (fs::path(folder) / error->file).native();
  }
  throw Refusal{error->Text()};
}

int Run(const Arguments& arguments) {
  const fs::path current = fs::current_path();
  Machine machine;
  Load(machine, *arguments.machine);
  StateOwnFolders(machine);
  if (arguments.debug_output) {
    machine.debugger = [](const std::string& text) { std::cerr << TerminalText(text, true); };
  }
  machine.module_path = ProgramPath(current.native()) + "\\hscope.exe";
  machine.command_line = CommandLine(arguments.program, current);
  machine.files.SetCurrentFolder(ProgramPath(current.native()));
  int exit_code = 0;
  {
    const Terminal terminal(machine.desktop, Terminal::StandardSetting());
    exit_code = RunProcess(machine, hostscope::RunProgram);
  }
  for (const std::string& target : machine.opened_targets) {
    std::cout << "Asked to open: " << TerminalText(target) << "\n";
  }
  for (const SentMail& mail : machine.mail)
    std::cout << MailSummary(mail);
  return exit_code;
}

std::string ReadFile(const std::string& path) {
  if (!fs::exists(path)) throw Refusal{path + ": there is no such file"};
  if (!fs::is_regular_file(path)) throw Refusal{path + ": is not a file"};
  std::ifstream file(path, std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(file), {}};
  if (!file) throw Refusal{path + ": cannot be read"};
  return content;
}

// A file that is no profile at all has a finding in every line.
constexpr std::size_t kMostFindings = 200;

int CheckProfileFile(const std::string& path) {
  const std::vector<ProfileFinding> findings = CheckProfile(ReadFile(path));
  const std::size_t shown = std::min(findings.size(), kMostFindings);
  for (std::size_t i = 0; i < shown; ++i)
    std::cout << path << ":" << findings[i].line << ": " << TerminalText(findings[i].reason)
              << "\n";
  if (findings.empty()) std::cout << path << ": no findings\n";
  if (shown < findings.size())
    std::cout << path << ": " << findings.size() - shown << " further findings are not shown\n";
  std::cout << "\n" << ProfileSummary(path);
  return findings.empty() ? 0 : kFindings;
}

int Main(const std::vector<std::string>& given) {
  try {
    const Arguments arguments = ReadArguments(given);
    if (arguments.help) {
      std::cout << kUsage;
    } else if (arguments.version) {
      std::cout << VersionText() << "\n";
    } else if (arguments.checked_profile) {
      return CheckProfileFile(*arguments.checked_profile);
    } else {
      return Run(arguments);
    }
    return 0;
  } catch (const Refusal& refusal) {
    std::cerr << "hscope: " << refusal.reason << "\n";
    if (refusal.show_usage) std::cerr << "\n" << kUsage;
  } catch (const fs::filesystem_error& error) {
    std::cerr << "hscope: " << error.what() << "\n";
  }
  return kRefused;
}

}  // namespace
}  // namespace host

int main(int count, char** arguments) {
  return host::Main(std::vector<std::string>(arguments + 1, arguments + count));
}
