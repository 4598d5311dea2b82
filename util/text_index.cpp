#include "util/text_index.h"

#include <cstdint>

#include "util/text.h"

namespace hostscope {
namespace {

inline constexpr unsigned kFirstSlotCount = 64;
inline constexpr unsigned kMostSlots = 1U << 28;

// FNV-1a.
std::uint32_t HashOf(const char* text) {
  std::uint32_t hash = 2166136261U;
  for (; *text != '\0'; ++text)
    hash = (hash ^ static_cast<unsigned char>(*text)) * 16777619U;
  return hash;
}

}  // namespace

TextIndex::TextIndex(StringList& list) : list_(list) {
  MakeRoom();
}

void TextIndex::AppendIfNew(const char* text) {
  if (!MakeRoom()) {
    if (!ListHolds(text)) list_.Append(text);
    return;
  }
  int& slot = SlotOf(text);
  if (slot == 0) slot = list_.Append(text) + 1;
}

int& TextIndex::SlotOf(const char* text) {
  auto* const slots = reinterpret_cast<int*>(slots_.data());
  unsigned place = HashOf(text) & (slot_count_ - 1);
  while (slots[place] != 0 && !SameText(list_.Get(slots[place] - 1), text))
    place = (place + 1) & (slot_count_ - 1);
  return slots[place];
}

bool TextIndex::ListHolds(const char* text) const {
  for (int i = 0; i < list_.count(); ++i) {
    if (SameText(list_.Get(i), text)) return true;
  }
  return false;
}

// At most half of the slots are taken, so that a search soon meets an empty one.
bool TextIndex::MakeRoom() {
  const auto wanted = (static_cast<unsigned>(list_.count()) + 1) * 2;
  if (slots_.present() && wanted <= slot_count_) return true;
  unsigned count = kFirstSlotCount;
  while (count < wanted && count < kMostSlots)
    count *= 2;
  slots_ = count < wanted ? HeapBuffer() : HeapBuffer(count * sizeof(int));
  if (!slots_.present()) return false;
  slot_count_ = count;
  for (int i = 0; i < list_.count(); ++i)
    SlotOf(list_.Get(i)) = i + 1;
  return true;
}

}  // namespace hostscope
