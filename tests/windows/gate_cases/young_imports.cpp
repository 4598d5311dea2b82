#include "platform/win32.h"

extern "C" void Fault();
void Fault() {
  ULARGE_INTEGER free_for_caller;
  GetDiskFreeSpaceExA(nullptr, &free_for_caller, nullptr, nullptr);
  RegisterClassExA(nullptr);
  GetClassInfoExA(nullptr, nullptr, nullptr);
  LoadImageA(nullptr, nullptr, 0, 0, 0, 0);
}
