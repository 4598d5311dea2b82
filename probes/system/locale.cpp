#include "probes/system/locale.h"

#include "platform/win32.h"
#include "util/text.h"

namespace hostscope {
namespace {

// One fact of the user's locale; none when the system does not know it.
OwnedText ReadLocaleInfo(LCTYPE type) {
  const int size = GetLocaleInfoA(LOCALE_USER_DEFAULT, type, nullptr, 0);
  if (size <= 0) return {};
  HeapBuffer name(static_cast<std::size_t>(size) + 1);
  if (!name.present() || GetLocaleInfoA(LOCALE_USER_DEFAULT, type, name.data(), size) == 0)
    return {};
  return OwnedText(static_cast<HeapBuffer&&>(name));
}

const char* NameOrNull(const OwnedText& name) {
  return name.present() ? name.c_str() : nullptr;
}

}  // namespace

bool FormatLanguageNames(const char* local_name, const char* english_name, std::span<char> text) {
  if (local_name != nullptr && english_name != nullptr) {
    wsprintfA(text.data(), "%s (%s)", local_name, english_name);
    EndFormatted(text);
    return true;
  }
  const char* const name = local_name != nullptr ? local_name : english_name;
  if (name == nullptr) return false;
  CopyText(text.data(), text.size(), name);
  return true;
}

bool FormatUserLocale(ProbeContext&, std::span<char> text) {
  const OwnedText local_name = ReadLocaleInfo(LOCALE_SLANGUAGE);
  const OwnedText english_name = ReadLocaleInfo(LOCALE_SENGLANGUAGE);
  return FormatLanguageNames(NameOrNull(local_name), NameOrNull(english_name), text);
}

}  // namespace hostscope
