// The smallest program that the gate lets pass; each bad one adds its fault to it.
#include "platform/program.h"
#include "platform/resources.h"
#include "platform/win32.h"

extern "C" void Fault();

namespace hostscope {
namespace {

INT_PTR CALLBACK CloseOnCommand(HWND dialog, UINT message, WPARAM, LPARAM) {
  if (message == WM_COMMAND) EndDialog(dialog, 0);
  return 0;
}

}  // namespace

void RunProgram() {
  Fault();
  DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(kProgressDialogId), nullptr,
                  CloseOnCommand, 0);
  ExitProcess(0);
}

}  // namespace hostscope
