#include "app/pre_run_message.h"

#include "platform/win32.h"
#include "util/heap.h"
#include "util/text.h"

namespace hostscope {
namespace {

inline constexpr std::size_t kMessageWorkSize = 100000;

void ReplaceKind(char (&message)[kLongTextSize], const char* placeholder, const char* value,
                 HeapBuffer& work) {
  // Each replacement is followed by a search from the start, as it may have joined the parts of
  // another placeholder. That ends, since a value without the sign only lessens the signs of the
  // text; behind a value that holds one the search goes on instead, or the value could be replaced
  // forever.
  const bool restart = FindCharacter(value, '#') == nullptr;
  std::size_t start = 0;
  while (start <= TextLength(message)) {
    const char* const found = FindText(message + start, placeholder);
    if (found == nullptr) return;
    const auto place = static_cast<std::size_t>(found - message);
    message[place] = '\0';
    wsprintfA(work.data(), "%s%s%s", message, value, message + place + TextLength(placeholder));
    CopyText(message, work.data());
    start = restart ? 0 : place + TextLength(value);
  }
}

}  // namespace

void ReplacePlaceholders(char (&message)[kLongTextSize], const PlaceholderValues& values) {
  HeapBuffer work(kMessageWorkSize);
  if (!work.present()) return;
  ReplaceKind(message, "#RFNAME#", values.report_name, work);
  ReplaceKind(message, "#RFFOLDER#", values.report_folder, work);
  ReplaceKind(message, "#RFPATH#", values.report_path, work);
}

bool ConfirmPreRunMessage(RunState& state, const ProfileSettings& settings) {
  CopyText(state.message_text, settings.message);
  ReplacePlaceholders(state.message_text, {.report_name = settings.report_file_name,
                                           .report_folder = state.report_folder.c_str(),
                                           .report_path = state.report_path.c_str()});
  const UINT style = static_cast<UINT>(settings.message_buttons) | MB_ICONINFORMATION;
  const int answer = MessageBoxA(nullptr, state.message_text, "Hostscope", style);
  return answer != IDCANCEL && answer != IDNO;
}

}  // namespace hostscope
