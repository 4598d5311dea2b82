// Tries to reach a controller port by the exe's own object code, where nothing of it may be
// reached.
#include "platform/ports.h"

int main() {
  std::uint8_t byte = 0x12;
  std::uint16_t word = 0x1234;
  for (int i = 0; i < 2; ++i) {
    if (hostscope::ReadPortByte(0x1F7, byte) || hostscope::ReadPortWord(0x1F0, word) ||
        hostscope::WritePortByte(0x80, 0)) {
      return 1;
    }
  }
  return byte == 0x12 && word == 0x1234 ? 42 : 2;
}
