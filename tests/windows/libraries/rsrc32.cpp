// Stands in for the library of the resource meter: kind 0 has 50 percent free, the next ones more.
#include <windows.h>

// The platform's compiler adds "@4", and the linker takes one underscore away.
extern "C" __declspec(dllexport) unsigned WINAPI _MyGetFreeSystemResources32(unsigned kind) {
  return 50 + kind;
}
