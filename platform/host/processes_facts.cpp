// The keys of machine.ini about processes.
#include <algorithm>

#include "platform/host/fact.h"

namespace host {
namespace {

using std::string_view;

struct NumberFact {
  string_view word;
  DWORD ListedProcess::*number;
};
constexpr NumberFact kNumberFacts[] = {
    {"priority", &ListedProcess::priority_class}, {"threads", &ListedProcess::threads},
    {"handles", &ListedProcess::handles},         {"memory", &ListedProcess::memory},
    {"pagefile", &ListedProcess::pagefile},       {"faults", &ListedProcess::page_faults},
    {"paged", &ListedProcess::paged_pool},        {"nonpaged", &ListedProcess::non_paged_pool},
};

// "refused", "program", "version 4.10" or the word of a number and the number.
bool TakeProcessFact(string_view text, ListedProcess& process, Processes& processes) {
  if (text == "refused") return process.refused = true;
  if (text == "program") {
    processes.own_id = process.id;
    return true;
  }
  const string_view word = TakeItem(text, ' ');
  if (word == "version") {
    const std::optional<WORD> major = TakeNumber(text, '.');
    const std::optional<WORD> minor = major ? TakeNumber(text, '\0') : std::nullopt;
    if (minor) process.version = static_cast<DWORD>(*major) << 16 | *minor;
    return minor.has_value();
  }
  const std::optional<std::uint64_t> number = Number(text);
  for (const NumberFact& fact : kNumberFacts) {
    if (word != fact.word || !number) continue;
    process.*fact.number = static_cast<DWORD>(*number);
    return true;
  }
  return false;
}

// "explorer.exe, threads 12, memory 5242880".
std::string ReadProcess(Machine& machine, string_view key, string_view value) {
  const std::optional<std::uint64_t> id = Number(key);
  if (!id) return "the key is no number of a process";
  ListedProcess process;
  process.id = static_cast<DWORD>(*id);
  std::vector<ListedProcess>& listed = machine.processes.listed;
  if (std::any_of(listed.begin(), listed.end(),
                  [&](const ListedProcess& p) { return p.id == *id; }))
    return "the process's number stands twice";
  process.name = TakeItem(value, ',');
  while (!value.empty()) {
    const string_view fact = TakeItem(value, ',');
    if (!TakeProcessFact(fact, process, machine.processes))
      return "\"" + std::string(fact) + "\" is no fact of a process";
  }
  listed.push_back(std::move(process));
  return "";
}

constexpr Fact kProcessFacts[] = {
    {"Processes", "*", ReadProcess},
};

}  // namespace

std::span<const Fact> ProcessFacts() {
  return kProcessFacts;
}

}  // namespace host
