#!/bin/sh
# Builds a plug-in from one C file that brings its own DllMain:
#
#   sdk/build.sh SOURCE.c OUTPUT.dll [further options of the compiler]
#
# The library needs no C runtime, runs on an 80386 and loads on Windows 95 and NT 3.51. CC names another
# compiler than the usual cross compiler.
set -eu
if [ $# -lt 2 ]; then
  echo "usage: sdk/build.sh SOURCE.c OUTPUT.dll [options]" >&2
  exit 2
fi
source=$1
output=$2
shift 2
exec "${CC:-i686-w64-mingw32-gcc}" -std=c99 -Wall -Wextra -Werror -Os \
  -DWINVER=0x0400 -D_WIN32_WINNT=0x0400 -I"$(dirname "$0")" \
  -march=i386 -mtune=i486 -mno-mmx -mno-sse -mpreferred-stack-boundary=2 \
  -ffreestanding -fno-ident -fno-stack-protector -fno-asynchronous-unwind-tables \
  -fno-tree-loop-distribute-patterns -fno-isolate-erroneous-paths-dereference \
  -shared -nostdlib -nostartfiles -s -Wl,--entry=_DllMain@12 \
  -Wl,--subsystem,windows:4.0,--major-os-version=4,--minor-os-version=0 \
  -Wl,--image-base=0x10000000,--disable-dynamicbase,--disable-nxcompat,--no-insert-timestamp \
  "$source" -o "$output" "$@" -lkernel32
