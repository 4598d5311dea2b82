# add_freestanding_exe(NAME SOURCES...): a program file for Windows 95 to XP without a C runtime,
# and without anything that an old loader refuses.
#
# NAME.exe is the stripped program that ships; NAME_symbols.exe beside it is the same with its
# symbols, for the gate (tests/windows/gate.py) and for reading crash addresses. The entry symbol,
# the memory routines and the resources come along. The same sources give
# the same bytes, wherever the folders lie.
# The targets: NAME, NAME_symbols, and NAME_objects, which both are linked from.

enable_language(RC)
get_filename_component(HOSTSCOPE_ROOT "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)
set(HOSTSCOPE_EXE_GROUND ${HOSTSCOPE_ROOT}/platform/windows)
set(HOSTSCOPE_EXE_GROUND_SOURCES
    ${HOSTSCOPE_EXE_GROUND}/entry.cpp ${HOSTSCOPE_EXE_GROUND}/memory.cpp
    ${HOSTSCOPE_EXE_GROUND}/cpu.cpp ${HOSTSCOPE_EXE_GROUND}/ports.cpp
    ${HOSTSCOPE_EXE_GROUND}/hscope.rc)
file(GLOB HOSTSCOPE_EXE_PICTURES CONFIGURE_DEPENDS ${HOSTSCOPE_EXE_GROUND}/pictures/*)

set(HOSTSCOPE_EXE_COMPILE_OPTIONS
    # The 80386 is the oldest processor of these systems, and the compiler's default is younger.
    # Nothing needs the stack aligned to more than four bytes, which is all that the system gives.
    -march=i386 -mtune=i486 -mno-mmx -mno-sse -mpreferred-stack-boundary=2 -Os
    # No start-up code, so nothing may need it.
    -ffreestanding -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-stack-protector
    -fno-asynchronous-unwind-tables -fno-unwind-tables
    # Else the loop in memcpy becomes a call of memcpy.
    -fno-tree-loop-distribute-patterns
    # Else a path that can't be taken ends in an instruction that the 80386 does not know.
    -fno-isolate-erroneous-paths-dereference
    -ffunction-sections -fdata-sections -fno-ident
    "-ffile-prefix-map=${HOSTSCOPE_ROOT}=." "-ffile-prefix-map=${CMAKE_BINARY_DIR}=."
    -Wall -Wextra -Wshadow -Wcast-qual -Wundef -Wvla -Wmissing-declarations -Werror
    # A worker thread may get a tiny stack, and larger frames call for a probe of it.
    -Wframe-larger-than=4000)

# The libraries that every target system has. The import library of kernel32 also offers
# functions that were advapi32's alone (OpenThreadToken), so that one comes first.
set(HOSTSCOPE_EXE_LIBRARIES advapi32 kernel32 user32 gdi32 shell32 comctl32 version gcc)

set(HOSTSCOPE_EXE_LINK_OPTIONS
    -nostdlib -nostartfiles -static
    -Wl,--entry=_HscopeEntry
    -Wl,--subsystem,windows:4.0 -Wl,--major-os-version=4,--minor-os-version=0
    -Wl,--image-base=0x400000
    -Wl,--disable-dynamicbase,--disable-nxcompat,--disable-reloc-section,--no-insert-timestamp
    -Wl,--gc-sections
    # NT 3.51 answers a large wish with a tiny stack.
    -Wl,--stack=0x20000)

function(add_freestanding_objects name)
  add_library(${name} OBJECT ${ARGN})
  set_target_properties(${name} PROPERTIES
    CXX_STANDARD 20 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF)
  # What is younger than the systems of 1996 is bound at run time, so it need not be declared.
  target_compile_definitions(${name} PRIVATE WINVER=0x0400 _WIN32_WINNT=0x0400)
  target_compile_options(${name} PRIVATE
    "$<$<COMPILE_LANGUAGE:CXX>:${HOSTSCOPE_EXE_COMPILE_OPTIONS}>")
  # The resource compiler finds the pictures from the second folder, and follows no dependencies.
  target_include_directories(${name} PRIVATE ${HOSTSCOPE_ROOT}
    "$<$<COMPILE_LANGUAGE:RC>:${HOSTSCOPE_EXE_GROUND}>")
  set_source_files_properties(${HOSTSCOPE_EXE_GROUND}/hscope.rc PROPERTIES
    OBJECT_DEPENDS "${HOSTSCOPE_ROOT}/platform/resources.h;${HOSTSCOPE_EXE_PICTURES}")
endfunction()

# The program files NAME and NAME_symbols from the objects of the libraries named. They are linked
# one by one, since the strip tool would put the time of day into what it writes.
function(link_freestanding_exe name)
  list(TRANSFORM ARGN REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
  foreach(program IN ITEMS ${name} ${name}_symbols)
    add_executable(${program} ${objects})
    set_target_properties(${program} PROPERTIES LINKER_LANGUAGE CXX)
    target_link_options(${program} PRIVATE ${HOSTSCOPE_EXE_LINK_OPTIONS})
    target_link_libraries(${program} PRIVATE ${HOSTSCOPE_EXE_LIBRARIES})
  endforeach()
  target_link_options(${name} PRIVATE -s)
  add_dependencies(${name} ${name}_symbols)
endfunction()

function(add_freestanding_exe name)
  add_freestanding_objects(${name}_objects ${ARGN} ${HOSTSCOPE_EXE_GROUND_SOURCES})
  # Reading the system's headers takes most of the time of a source. The plain Linux build goes
  # without, and so finds what a source forgets to include.
  target_precompile_headers(${name}_objects PRIVATE ${HOSTSCOPE_ROOT}/platform/win32.h)
  link_freestanding_exe(${name} ${name}_objects)
endfunction()
