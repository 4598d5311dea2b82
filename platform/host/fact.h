// What a key of machine.ini is made of: who reads its value, and the readers that several keys
// share. A reader answers what is wrong with the value, or an empty text.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/host/machine.h"

namespace host {

// One row of the catalogue.
struct Fact {
  std::string_view section;
  std::string_view key;  // "*": any; the reader looks at it
  std::string (*read)(Machine& machine, std::string_view key, std::string_view value);
  bool required = false;
};

// The rows of single subjects, in the order of the description.
std::span<const Fact> DisplayFacts();
std::span<const Fact> MultimediaFacts();
std::span<const Fact> NetworkFacts();
std::span<const Fact> DiskFacts();
std::span<const Fact> PrinterFacts();
std::span<const Fact> ProcessFacts();

// Decimal, or hexadecimal after "0x". Anything else, or a number above the limit, is absent.
std::optional<std::uint64_t> Number(std::string_view text,
                                    std::uint64_t most = std::numeric_limits<DWORD>::max());
// Takes digits off the front up to the stop character, which goes too; the end of the text for
// none. Absent for anything else, and above 0xFFFF.
std::optional<WORD> TakeNumber(std::string_view& text, char stop);
// Takes what stands before the next separator off the front, without the blanks around it.
std::string_view TakeItem(std::string_view& text, char separator);
// The text between double quotes: \r, \n, \t, \" and \\ stand for what they do in C; none for
// anything else.
std::optional<std::string> QuotedText(std::string_view quoted);

template <typename Field>
requires std::is_integral_v<Field> std::string ReadValue(std::string_view value, Field& field) {
  const std::uint64_t most = std::numeric_limits<Field>::max();
  const std::optional<std::uint64_t> number = Number(value, most);
  if (!number) return "the value is no number from 0 to " + std::to_string(most);
  field = static_cast<Field>(*number);
  return "";
}
std::string ReadValue(std::string_view value, bool& field);
std::string ReadValue(std::string_view value, std::string& field);
std::string ReadValue(std::string_view value, std::optional<std::string>& field);
std::string ReadValue(std::string_view value, LocalTime& field);

template <typename Record>
Record& FieldOf(Record& record) {
  return record;
}
template <typename Record, typename Member, typename... Members>
auto& FieldOf(Record& record, Member member, Members... members) {
  return FieldOf(record.*member, members...);
}

// The reader of a plain field: the members on the way to it, from the machine's own on.
template <auto... members>
std::string Read(Machine& machine, std::string_view, std::string_view value) {
  return ReadValue(value, FieldOf(machine, members...));
}

}  // namespace host
