#include "app/command_line.h"

namespace hostscope {
namespace {

const char* EndOf(const char* text) {
  return text + TextLength(text);
}

const char* SkipSpaces(const char* text) {
  while (*text == ' ')
    ++text;
  return text;
}

// The first place of the character, or the end of the text.
const char* FindOrEnd(const char* text, char character) {
  const char* const found = FindCharacter(text, character);
  return found == nullptr ? EndOf(text) : found;
}

// Where the first argument begins; the end of the text when there is none.
const char* SkipProgramName(const char* command_line) {
  const char* name_end = command_line;
  if (*command_line == '"') name_end = FindOrEnd(command_line + 1, '"');
  return SkipSpaces(FindOrEnd(name_end, ' '));
}

// Cuts out the argument that begins at the place given and moves on to the next one.
OwnedText CutArgument(const char*& place) {
  const bool quoted = *place == '"';
  const char* const start = quoted ? place + 1 : place;
  const char* const end = FindOrEnd(start, quoted ? '"' : ' ');
  place = *end == '\0' ? end : quoted ? FindOrEnd(end + 1, '"') : SkipSpaces(end);
  return CopyOfText(start, static_cast<std::size_t>(end - start));
}

}  // namespace

CommandLineArguments SplitCommandLine(const char* command_line) {
  CommandLineArguments arguments;
  if (command_line == nullptr) return arguments;
  const char* place = SkipProgramName(command_line);
  if (*place != '\0') arguments.first = CutArgument(place);
  if (*place != '\0') arguments.second = CutArgument(place);
  return arguments;
}

}  // namespace hostscope
