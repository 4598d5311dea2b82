// Texts within the records that the layer fills.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "platform/host/code_page.h"
#include "platform/host/windows_types.h"

namespace host {

// As careless drivers fill a field: a text that is as long as the field, or longer, has no
// terminator in it. What the field held behind the terminator stays.
template <std::size_t kSize>
void FillField(CHAR (&field)[kSize], std::string_view text) {
  std::copy_n(text.begin(), std::min(kSize, text.size()), field);
  if (text.size() < kSize) field[text.size()] = '\0';
}

template <std::size_t kSize>
void FillField(WCHAR (&field)[kSize], std::string_view text) {
  std::transform(text.begin(), text.begin() + std::min(kSize, text.size()), field,
                 UnicodeFromCodePage);
  if (text.size() < kSize) field[text.size()] = u'\0';
}

}  // namespace host
