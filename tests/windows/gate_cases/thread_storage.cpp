// The linker names this record in the headers, as it does for a program with thread-local
// variables.
#include "platform/win32.h"

extern "C" {
extern const IMAGE_TLS_DIRECTORY32 _tls_used;
const IMAGE_TLS_DIRECTORY32 _tls_used = {};
void Fault();
}

void Fault() {
  SetLastError(_tls_used.SizeOfZeroFill);
}
