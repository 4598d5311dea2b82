#include "platform/win32.h"

extern "C" __declspec(dllimport) void WINAPI OnlyANumber();

extern "C" void Fault();
void Fault() {
  OnlyANumber();
}
