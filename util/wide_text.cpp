#include "util/wide_text.h"

namespace hostscope {

void NarrowText(const WCHAR* wide, std::size_t length, std::span<char> text) {
  if (text.empty()) return;
  // Composed characters for decomposed ones. A system whose code page is UTF-8 takes no flags.
  for (const DWORD flags : {DWORD{WC_COMPOSITECHECK | WC_DISCARDNS}, DWORD{0}}) {
    const int converted =
        WideCharToMultiByte(CP_ACP, flags, wide, static_cast<int>(length), text.data(),
                            static_cast<int>(text.size() - 1), nullptr, nullptr);
    if (converted <= 0) continue;
    text[static_cast<std::size_t>(converted)] = '\0';
    return;
  }
  // A conversion that breaks off has written a part.
  text.front() = '\0';
}

}  // namespace hostscope
