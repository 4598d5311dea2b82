#!/bin/sh
# Builds a plug-in from one C file that brings its own DllMain:
#
#   sh build.sh SOURCE.c OUTPUT.dll [further options of the compiler]
#
# The library needs no C runtime, runs on an 80386 and loads on Windows 95 and NT 3.51. CC names another
# compiler than the usual cross compiler.
set -eu
if [ $# -lt 2 ]; then
  echo "usage: sh build.sh SOURCE.c OUTPUT.dll [options]" >&2
  exit 2
fi
source=$1
output=$2
shift 2

# Declarations of Windows 95 alone, so that what is younger is found when the plug-in is built.
set -- -DWINVER=0x0400 -D_WIN32_WINNT=0x0400 "$@"

# No instruction that is younger than the 80386, and the stack as these systems align it.
set -- -march=i386 -mtune=i486 -mno-mmx -mno-sse -mpreferred-stack-boundary=2 \
  -fno-isolate-erroneous-paths-dereference "$@"

# No runtime: no start-up code, nothing that needs some, and the system calls DllMain directly. The
# compiler may still call memcpy, memmove, memset and memcmp: a plug-in that copies records brings them.
set -- -ffreestanding -fno-stack-protector -fno-asynchronous-unwind-tables \
  -fno-tree-loop-distribute-patterns -nostdlib -nostartfiles -Wl,--entry=_DllMain@12 "$@"

# A header that old loaders take, and the same bytes on every build. The relocations stay.
set -- -Wl,--subsystem,windows:4.0,--major-os-version=4,--minor-os-version=0 \
  -Wl,--image-base=0x10000000,--disable-dynamicbase,--disable-nxcompat,--no-insert-timestamp \
  -fno-ident -s "$@"

# The name may be in capitals, which would make it C++.
exec "${CC:-i686-w64-mingw32-gcc}" -std=c99 -Wall -Wextra -Werror -Os -I"$(dirname "$0")" -shared \
  -x c "$source" -x none -o "$output" "$@" -lkernel32
