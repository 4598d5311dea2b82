#include "platform/host/machine_facts.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>
#include <optional>
#include <span>
#include <string>

#include "platform/host/code_page.h"
#include "platform/host/fact.h"
#include "platform/host/file_time.h"
#include "platform/host/functions.h"
#include "platform/host/security_id.h"

namespace host {
namespace {

using std::string_view;

std::string ReadServicePackText(Machine& machine, string_view, string_view value) {
  if (value.size() > 127) return "the text is longer than the 127 characters of its field";
  machine.version.service_pack_text = value;
  return "";
}

std::string ReadSid(Machine& machine, string_view, string_view value) {
  if (!SecurityIdBytes(value)) return "the value is no security identifier (\"S-1-5-...\")";
  machine.user.sid = value;
  return "";
}

std::string ReadSpecialFolder(Machine& machine, string_view key, string_view value) {
  const std::optional<std::uint64_t> number = Number(key, 0xFFFF);
  if (!number) return "the key is no number of a special folder";
  const bool is_new =
      machine.special_folders.emplace(static_cast<int>(*number), std::string(value)).second;
  return is_new ? "" : "the folder's number stands twice";
}

std::string ReadEnvironment(Machine& machine, string_view key, string_view value) {
  machine.environment.emplace(key, value);
  return "";
}

std::string ReadProcessorAge(Machine& machine, string_view, string_view value) {
  using hostscope::ProcessorAge;
  constexpr std::pair<string_view, ProcessorAge> kAges[] = {
      {"80386", ProcessorAge::k80386},
      {"80486", ProcessorAge::k80486},
      {"identifiable", ProcessorAge::kIdentifiable}};
  for (const auto& [name, age] : kAges) {
    if (value != name) continue;
    machine.hardware.processor.age = age;
    return "";
  }
  return "the value is neither \"80386\" nor \"80486\" nor \"identifiable\"";
}

std::string ReadRealProcessor(Machine& machine, string_view, string_view value) {
  bool& real = machine.hardware.processor.real;
  if (std::string reason = ReadValue(value, real); !reason.empty()) return reason;
  return real && !HasRealProcessor() ? "this computer's processor is no x86" : "";
}

std::string ReadProcessorLeaf(Machine& machine, string_view key, string_view value) {
  const std::optional<std::uint64_t> leaf = Number(key);
  if (!leaf) return "the key is no number of a leaf";
  std::array<DWORD, 4> registers;
  for (DWORD& one : registers) {
    const std::optional<std::uint64_t> number = Number(TakeItem(value, ' '));
    if (!number) return "the value is not the four numbers of EAX, EBX, ECX and EDX";
    one = static_cast<DWORD>(*number);
  }
  if (!value.empty()) return "the value has more than four numbers";
  const auto [eax, ebx, ecx, edx] = registers;
  const bool is_new =
      machine.hardware.processor.leaves
          .emplace(static_cast<DWORD>(*leaf), hostscope::ProcessorLeaf{eax, ebx, ecx, edx})
          .second;
  return is_new ? "" : "the leaf's number stands twice";
}

// Bytes, or megabytes where "MB" follows.
std::string ReadByteCount(string_view value, std::uint64_t& bytes) {
  const std::uint64_t unit = value.ends_with(" MB") ? 1024 * 1024 : 1;
  if (unit != 1) value.remove_suffix(3);
  const std::uint64_t most = std::numeric_limits<std::uint64_t>::max() / unit;
  const std::optional<std::uint64_t> number = Number(value, most);
  if (!number) return "the value is no number of bytes, and none of megabytes (\"256 MB\")";
  bytes = *number * unit;
  return "";
}

template <std::uint64_t Memory::*field>
std::string ReadMemorySize(Machine& machine, string_view, string_view value) {
  return ReadByteCount(value, machine.hardware.memory.*field);
}

std::string ReadFileSize(Machine& machine, string_view key, string_view value) {
  std::uint64_t size = 0;
  std::string reason = ReadByteCount(value, size);
  if (reason.empty()) machine.files.StateSize(key, size);
  return reason;
}

std::string ReadPercent(string_view value, DWORD& percent) {
  const std::optional<std::uint64_t> number = Number(value, 100);
  if (!number) return "the value is no number from 0 to 100";
  percent = static_cast<DWORD>(*number);
  return "";
}

std::string ReadMemoryLoad(Machine& machine, string_view, string_view value) {
  return ReadPercent(value, machine.hardware.memory.load.emplace());
}

SwapFile& StatedSwapFile(Machine& machine) {
  std::optional<SwapFile>& swap_file = machine.hardware.swap_file;
  return swap_file ? *swap_file : swap_file.emplace();
}

std::string ReadSwapFilePath(Machine& machine, string_view, string_view value) {
  // What the program makes room for.
  if (value.size() >= MAX_PATH) return "the path is longer than 259 characters";
  StatedSwapFile(machine).path = value;
  return "";
}

std::string ReadSwapFilePages(Machine& machine, string_view, string_view value) {
  return ReadValue(value, StatedSwapFile(machine).pages);
}

template <unsigned kind>
std::string ReadFreeResources(Machine& machine, string_view, string_view value) {
  DWORD percent = 0;
  std::string reason = ReadPercent(value, percent);
  if (reason.empty()) StateFreeResources(machine, kind, percent);
  return reason;
}

std::string ReadLibrary(Machine& machine, string_view key, string_view value) {
  const Library library = LibraryNamed(key);
  if (value == "present") {
    machine.libraries.Add(library);
    return "";
  }
  if (value == "absent") {
    machine.libraries.Remove(library.name);
    return "";
  }
  if (value.starts_with("like ")) {
    const bool copied = machine.libraries.AddLike(key, value.substr(5));
    return copied ? "" : "the machine has no library of that name";
  }
  if (TakeItem(value, ' ') != "without" || value.empty()) {
    return "the value is neither \"present\", \"absent\", \"like\" and a library, nor \"without\" "
           "and names of functions";
  }
  while (!value.empty()) {
    const string_view function = TakeItem(value, ',');
    if (function.empty()) return "the name of a function is missing";
    machine.libraries.RemoveExport(library.name, function);
  }
  return "";
}

std::string ReadPlugIn(Machine& machine, string_view key, string_view value) {
  const std::size_t comma = key.rfind(',');
  if (comma == string_view::npos || comma == 0 || comma + 1 == key.size()) {
    return "the key is no library and function with a comma between them";
  }
  PlugIn plug_in;
  std::string reason = ReadValue(TakeItem(value, ' '), plug_in.succeeds);
  if (!reason.empty()) return reason;
  while (value.starts_with(' '))
    value.remove_prefix(1);
  const std::optional<std::string> text = QuotedText(value.empty() ? "\"\"" : value);
  if (!text)
    return "the text is not between double quotes, or has a \"\\\" that stands for nothing";
  plug_in.text = *text;
  const FARPROC function = machine.plug_ins.Add(std::move(plug_in));
  if (function == nullptr) return "there are too many plug-ins";
  Library library = LibraryNamed(key.substr(0, comma));
  library.exports.emplace(key.substr(comma + 1), function);
  machine.libraries.Add(library);
  return "";
}

// "5.81.4916.0", "20-byte 5.81.4916" or "refused".
std::optional<DllVersionAnswer> ParseDllVersion(string_view text) {
  DllVersionAnswer answer;
  if (text == "refused") return answer;
  std::size_t count = 4;
  if (text.starts_with("20-byte ")) {
    text.remove_prefix(8);
    count = 3;
  }
  for (std::size_t i = 0; i < count; ++i) {
    const std::optional<WORD> part = TakeNumber(text, i + 1 < count ? '.' : '\0');
    if (!part) return std::nullopt;
    answer.parts[i] = *part;
  }
  answer.plain = true;
  answer.extended = count == 4;
  return answer;
}

std::string ReadDllVersion(Machine& machine, string_view key, string_view value) {
  const std::optional<DllVersionAnswer> answer = ParseDllVersion(value);
  if (answer) return StateDllVersion(machine, key, *answer);
  return "the value is neither a version (5.81.4916.0), \"20-byte\" and three numbers of one nor "
         "\"refused\"";
}

std::string ReadFileTime(Machine& machine, string_view key, string_view value) {
  if (key != "*" && key.substr(1, 2) != ":\\") return "the key is neither a full path nor \"*\"";
  LocalTime time;
  std::string reason = ReadValue(value, time);
  if (reason.empty()) machine.files.StateWriteTime(key, StepsOf(time));
  return reason;
}

std::string ReadDeniedKey(Machine& machine, string_view key, string_view value) {
  const std::optional<Hive> hive = HiveByName(key.substr(0, key.find('\\')));
  if (!hive) return "the key is no path that begins with a hive";
  // Which key that is may be stated further down.
  if (hive == Hive::kCurrentUser) return "a key of the user is stated below HKU";
  const auto error = static_cast<DWORD>(Number(value).value_or(0));
  if (error == 0) return "the value is no error code";
  machine.registry.DenyAccess(key, error);
  return "";
}

struct Fault {
  DWORD call = 0;  // 0: every call
  DWORD error = 0;
};

// "always ERROR" or "call NUMBER ERROR".
std::optional<Fault> ParseFault(string_view text) {
  Fault fault;
  const string_view when = TakeItem(text, ' ');
  if (when == "call") {
    fault.call = static_cast<DWORD>(Number(TakeItem(text, ' ')).value_or(0));
    if (fault.call == 0) return std::nullopt;
  } else if (when != "always") {
    return std::nullopt;
  }
  fault.error = static_cast<DWORD>(Number(TakeItem(text, ' ')).value_or(0));
  if (fault.error == 0 || !text.empty()) return std::nullopt;
  return fault;
}

std::string ReadFault(Machine& machine, string_view key, string_view value) {
  if (!IsLayerFunction(key)) return "the layer has no function of that name";
  do {
    const std::optional<Fault> fault = ParseFault(TakeItem(value, ','));
    if (!fault) {
      return "the value is neither \"always ERROR\" nor \"call NUMBER ERROR\" nor a list of these";
    }
    if (fault->call == 0) {
      machine.faults.FailAlways(key, fault->error);
    } else {
      machine.faults.FailNth(key, fault->call, fault->error);
    }
  } while (!value.empty());
  return "";
}

constexpr bool kRequired = true;

constexpr Fact kOwnFacts[] = {
    {"Version", "Major", Read<&Machine::version, &WindowsVersion::major>, kRequired},
    {"Version", "Minor", Read<&Machine::version, &WindowsVersion::minor>, kRequired},
    {"Version", "Build", Read<&Machine::version, &WindowsVersion::build>, kRequired},
    {"Version", "Platform", Read<&Machine::version, &WindowsVersion::platform_id>, kRequired},
    {"Version", "ServicePackText", ReadServicePackText},
    {"Version", "ProductType", Read<&Machine::version, &WindowsVersion::product_type>},
    {"Version", "ServicePackMajor", Read<&Machine::version, &WindowsVersion::service_pack_major>},
    {"Version", "ServicePackMinor", Read<&Machine::version, &WindowsVersion::service_pack_minor>},
    {"Version", "SuiteMask", Read<&Machine::version, &WindowsVersion::suite_mask>},
    {"Version", "ExtendedRecord", Read<&Machine::version, &WindowsVersion::extended_record>},
    {"Clock", "LocalTime", Read<&Machine::local_time>},
    {"Clock", "TickCount", Read<&Machine::tick_count>},
    {"Computer", "Name", Read<&Machine::computer_name>},
    {"User", "Name", Read<&Machine::user, &User::name>},
    {"User", "Account", Read<&Machine::user, &User::account>},
    {"User", "Domain", Read<&Machine::user, &User::domain>},
    {"User", "Imitated", Read<&Machine::user, &User::imitated>},
    {"User", "Sid", ReadSid},
    {"User", "RegistryKey", Read<&Machine::user, &User::registry_key>},
    {"Locale", "Language", Read<&Machine::locale, &Locale::language>},
    {"Locale", "EnglishLanguage", Read<&Machine::locale, &Locale::english_language>},
    {"Folders", "Windows", Read<&Machine::windows_folder>},
    {"Folders", "System", Read<&Machine::system_folder>},
    {"Folders", "Temp", Read<&Machine::temp_folder>},
    {"SpecialFolders", "*", ReadSpecialFolder},
    {"Environment", "*", ReadEnvironment},
    {"Processor", "Count", Read<&Machine::hardware, &Hardware::processor, &Processor::count>},
    {"Processor", "Age", ReadProcessorAge},
    {"Processor", "CounterFrequency",
     Read<&Machine::hardware, &Hardware::processor, &Processor::counter_frequency>},
    {"Processor", "Real", ReadRealProcessor},
    {"ProcessorLeaves", "*", ReadProcessorLeaf},
    {"Memory", "Total", ReadMemorySize<&Memory::total>},
    {"Memory", "Available", ReadMemorySize<&Memory::available>},
    {"Memory", "Load", ReadMemoryLoad},
    {"SwapFile", "Path", ReadSwapFilePath},
    {"SwapFile", "Pages", ReadSwapFilePages},
    {"FreeResources", "System", ReadFreeResources<0>},
    {"FreeResources", "GDI", ReadFreeResources<1>},
    {"FreeResources", "User", ReadFreeResources<2>},
    {"FileSizes", "*", ReadFileSize},
    {"DeniedKeys", "*", ReadDeniedKey},
    {"Libraries", "*", ReadLibrary},
    {"PlugIns", "*", ReadPlugIn},
    {"DllVersions", "*", ReadDllVersion},
    {"FileTimes", "*", ReadFileTime},
    {"Faults", "*", ReadFault},
};

// All rows, in the order of the description.
const std::vector<Fact>& AllFacts() {
  static const std::vector<Fact> facts = [] {
    std::vector<Fact> all;
    for (const std::span<const Fact> group :
         {std::span<const Fact>(kOwnFacts), DisplayFacts(), MultimediaFacts(), NetworkFacts(),
          DiskFacts(), PrinterFacts(), ProcessFacts()})
      all.insert(all.end(), group.begin(), group.end());
    return all;
  }();
  return facts;
}

const Fact* FindFact(string_view section, string_view key) {
  const std::vector<Fact>& facts = AllFacts();
  const auto found = std::find_if(facts.begin(), facts.end(), [&](const Fact& fact) {
    return fact.section == section && (fact.key == "*" || fact.key == key);
  });
  return found == facts.end() ? nullptr : &*found;
}

bool IsSection(string_view name) {
  const std::vector<Fact>& facts = AllFacts();
  return std::any_of(facts.begin(), facts.end(),
                     [name](const Fact& fact) { return fact.section == name; });
}

bool IsStated(const Fact& fact, const std::vector<IniSection>& sections) {
  return std::any_of(sections.begin(), sections.end(), [&fact](const IniSection& section) {
    return section.name == fact.section &&
           std::any_of(section.entries.begin(), section.entries.end(),
                       [&fact](const IniEntry& entry) { return entry.key == fact.key; });
  });
}

std::optional<LoadError> StateSection(const IniSection& section, Machine& machine) {
  const std::string shown = "[" + Utf8FromCodePage(section.name) + "]";
  if (!IsSection(section.name)) {
    return LoadError{"", section.line, "there is no section " + shown};
  }
  for (const IniEntry& entry : section.entries) {
    const std::string key = Utf8FromCodePage(entry.key);
    const Fact* const fact = FindFact(section.name, entry.key);
    if (fact == nullptr)
      return LoadError{"", entry.line, "section " + shown + " has no key " + key};
    const std::string reason = fact->read(machine, entry.key, entry.value);
    if (!reason.empty()) return LoadError{"", entry.line, key + ": " + reason};
  }
  return std::nullopt;
}

// Which fact cannot hold beside the others; an empty text for none.
std::string Contradiction(const Machine& machine) {
  const Processor& processor = machine.hardware.processor;
  const bool described = processor.age != hostscope::ProcessorAge::kIdentifiable ||
                         !processor.leaves.empty() || processor.counter_frequency != 0;
  if (processor.real && described) return "[Processor] Real: the processor is described as well";
  for (const auto& [number, place] : machine.disks.physical_drives) {
    if (place && !machine.disks.channels[*place / 2].drives[*place % 2])
      return "[PhysicalDrives] " + std::to_string(number) + ": there is no such IDE drive";
  }
  for (const UINT number : machine.joysticks.connected) {
    if (number >= machine.joysticks.slots)
      return "[Joysticks] Connected: there is no slot of number " + std::to_string(number);
  }
  return "";
}

}  // namespace

std::vector<std::pair<string_view, string_view>> MachineFactNames() {
  std::vector<std::pair<string_view, string_view>> names;
  for (const Fact& fact : AllFacts())
    names.emplace_back(fact.section, fact.key);
  return names;
}

std::optional<LoadError> StateMachineFacts(const std::vector<IniSection>& sections,
                                           Machine& machine) {
  // What a machine lacks is taken from what all its other sections bring.
  for (const bool of_libraries : {false, true}) {
    for (const IniSection& section : sections) {
      if ((section.name == "Libraries") != of_libraries) continue;
      if (auto error = StateSection(section, machine)) return error;
    }
  }
  for (const Fact& fact : AllFacts()) {
    if (fact.required && !IsStated(fact, sections)) {
      const std::string place = "[" + std::string(fact.section) + "] " + std::string(fact.key);
      return LoadError{"", 0, place + " is missing"};
    }
  }
  if (const std::string error = Contradiction(machine); !error.empty())
    return LoadError{"", 0, error};
  const User& user = machine.user;
  machine.registry.SetCurrentUser(user.registry_key ? *user.registry_key
                                  : machine.IsNt()  ? user.sid
                                                    : ".DEFAULT");
  return std::nullopt;
}

}  // namespace host
