# The fuzz targets: tests/fuzz/NAME_fuzz.cpp becomes fuzz_NAME, the program and the layer under
# libFuzzer and the sanitizers. Needs clang. tests/fuzz/run.sh starts one.

if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  message(FATAL_ERROR "The fuzz targets need clang: configure with the preset fuzz.")
endif()

set(FUZZ_SANITIZERS address,undefined)
add_compile_options(-O1 -g1 -fno-omit-frame-pointer -fno-sanitize-recover=all
                    -fsanitize=fuzzer-no-link,${FUZZ_SANITIZERS})

find_package(Threads REQUIRED)
add_library(fuzzed OBJECT ${PROGRAM_SOURCES} ${HOST_SOURCES} tests/support/test_folder.cpp)
target_include_directories(fuzzed PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(fuzzed PUBLIC Threads::Threads)
target_precompile_headers(fuzzed PRIVATE <algorithm> <chrono> <filesystem> <functional> <map> <memory>
                           <mutex> <string> <vector> platform/win32.h)

file(GLOB FUZZ_TARGETS CONFIGURE_DEPENDS tests/fuzz/*_fuzz.cpp)
foreach(source IN LISTS FUZZ_TARGETS)
  get_filename_component(name ${source} NAME_WE)
  string(REGEX REPLACE "(.+)_fuzz" "fuzz_\\1" name ${name})
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE fuzzed)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer,${FUZZ_SANITIZERS})
endforeach()
