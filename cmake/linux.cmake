# hscope for Linux over the host layer, and all tests.

option(HOSTSCOPE_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
option(HOSTSCOPE_COVERAGE "Count the lines of the program that are run; see tools/coverage.sh" OFF)

# Designated initialisers leave out on purpose what keeps its default, and GCC 12 finds uninitialised
# characters in the short texts of its own library where there are none.
add_compile_options(-Wall -Wextra -Wno-missing-field-initializers -Wno-maybe-uninitialized -Wshadow
                    -Wundef -Wvla -Werror)
if(HOSTSCOPE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

find_package(Threads REQUIRED)

# The program calls the layer, and the layer's entry point calls the program.
add_library(hostscope OBJECT ${PROGRAM_SOURCES} ${HOST_SOURCES})
target_include_directories(hostscope PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(hostscope PUBLIC Threads::Threads)
# A plain count that two threads raise can come out negative.
if(HOSTSCOPE_COVERAGE)
  target_compile_options(hostscope PRIVATE --coverage -fprofile-update=atomic)
  target_link_options(hostscope INTERFACE --coverage)
endif()
if(HOSTSCOPE_SANITIZE)
  # The plain build goes without, and so finds what a source forgets to include.
  target_precompile_headers(hostscope PRIVATE <algorithm> <chrono> <filesystem> <functional> <map>
                            <memory> <mutex> <string> <vector> platform/win32.h)
endif()

add_executable(hscope linux/main.cpp)
target_link_libraries(hscope PRIVATE hostscope)
if(HOSTSCOPE_COVERAGE)
  target_compile_options(hscope PRIVATE --coverage -fprofile-update=atomic)
endif()

if(HOSTSCOPE_SANITIZE OR HOSTSCOPE_COVERAGE)
  include(cmake/tests.cmake)
endif()
