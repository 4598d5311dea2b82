#include "platform/win32.h"

namespace {

const DWORD started = GetTickCount();

}  // namespace

extern "C" void Fault();
void Fault() {
  Sleep(started);
}
