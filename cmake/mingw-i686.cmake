# Toolchain for hscope.exe and the Windows tests: i686, mingw-w64. The posix variant of the compiler
# is preferred, since the tests need std::mutex; the exe itself uses no thread library of either.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

find_program(HOSTSCOPE_MINGW_C NAMES i686-w64-mingw32-gcc-posix i686-w64-mingw32-gcc REQUIRED)
find_program(HOSTSCOPE_MINGW_CXX NAMES i686-w64-mingw32-g++-posix i686-w64-mingw32-g++ REQUIRED)
set(CMAKE_C_COMPILER "${HOSTSCOPE_MINGW_C}")
set(CMAKE_CXX_COMPILER "${HOSTSCOPE_MINGW_CXX}")
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
