# Every test of the project, under the sanitizers where they can be; what is built for Windows comes from
# its own build folder.

find_package(GTest REQUIRED)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
include(GoogleTest)

function(add_native_tests name)
  add_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  # Twice as fast to build, and the time of a test goes by in the program and the layer.
  target_compile_options(${name} PRIVATE -O0)
  target_precompile_headers(${name} PRIVATE <gtest/gtest.h> <map> <memory> <string> <vector>)
  target_compile_definitions(${name} PRIVATE HOSTSCOPE_SOURCE_FOLDER="${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE hostscope GTest::gtest GTest::gtest_main)
  gtest_discover_tests(${name} TEST_PREFIX ${name}. DISCOVERY_MODE PRE_TEST
                       PROPERTIES TIMEOUT 120)
endfunction()

file(GLOB PROGRAM_TESTS CONFIGURE_DEPENDS tests/util/*.cpp tests/profile/*.cpp tests/report/*.cpp
     tests/probes/*/*.cpp tests/scans/*.cpp tests/delivery/*.cpp tests/app/*.cpp tests/linux/*.cpp
     tests/support/*.cpp tests/reports/*.cpp)
file(GLOB LAYER_TESTS CONFIGURE_DEPENDS tests/platform/host/*.cpp)
file(GLOB CONTRACT_TESTS CONFIGURE_DEPENDS tests/contract/*.cpp)
if(PROGRAM_TESTS)
  add_native_tests(program_tests ${PROGRAM_TESTS})
endif()
if(LAYER_TESTS)
  add_native_tests(layer_tests ${LAYER_TESTS} tests/support/test_folder.cpp)
endif()
if(CONTRACT_TESTS)
  add_native_tests(contract_tests ${CONTRACT_TESTS})
endif()

# The rooms and who may include whom.
add_test(NAME rooms COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/tests/rooms_check.py
         ${PROJECT_SOURCE_DIR})
add_test(NAME rooms_check_finds_faults
         COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/tests/rooms_check_test.py)

# The static checks, each skipped by name where its tool is missing. The one with clang-tidy takes a
# minute and a half of one core when nothing is known yet, so it begins early.
foreach(part IN ITEMS tidy cppcheck shellcheck layout)
  add_test(NAME lint.${part} COMMAND ${PROJECT_SOURCE_DIR}/tools/lint.sh ${part})
  set_tests_properties(lint.${part} PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 600
                       ENVIRONMENT HOSTSCOPE_LINT_JOBS=1)
endforeach()
set_tests_properties(lint.tidy PROPERTIES COST 90)
add_test(NAME lint.finds_faults COMMAND Python3::Interpreter
         ${PROJECT_SOURCE_DIR}/tests/lint_test.py ${PROJECT_SOURCE_DIR}/tools/lint.sh)
set_tests_properties(lint.finds_faults PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)

# The links of the pages, and the shape of the sample profiles.
add_test(NAME pages COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/tests/docs/pages_test.py
         ${PROJECT_SOURCE_DIR})

# The Linux program as a user starts it.
add_test(NAME linux_program
         COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/tests/program/linux_program_test.py
         $<TARGET_FILE:hscope> ${PROJECT_SOURCE_DIR})
set_tests_properties(linux_program PROPERTIES TIMEOUT 120)

# Some seconds with each fuzz target, beginning with its kept inputs.
file(GLOB FUZZ_TARGETS CONFIGURE_DEPENDS tests/fuzz/*_fuzz.cpp)
foreach(source IN LISTS FUZZ_TARGETS)
  get_filename_component(name ${source} NAME_WE)
  string(REGEX REPLACE "(.+)_fuzz" "\\1" name ${name})
  add_test(NAME fuzz.${name} COMMAND ${PROJECT_SOURCE_DIR}/tests/fuzz/run.sh ${name} 5)
  set_tests_properties(fuzz.${name} PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)
endforeach()

# What needs the cross compiler or Wine says so and is skipped, by name, where there is none.
set(WINDOWS_FOLDER ${PROJECT_SOURCE_DIR}/build/windows)
function(add_windows_test name)
  add_test(NAME ${name} COMMAND ${ARGN})
  set_tests_properties(${name} PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 600)
endfunction()

add_windows_test(windows.gate Python3::Interpreter
                 ${PROJECT_SOURCE_DIR}/tests/windows/gate_test.py ${WINDOWS_FOLDER})
add_windows_test(windows.ports Python3::Interpreter
                 ${PROJECT_SOURCE_DIR}/tests/emulated/ports_test.py ${WINDOWS_FOLDER})
add_windows_test(windows.contract ${PROJECT_SOURCE_DIR}/tools/under_wine.sh
                 ${WINDOWS_FOLDER}/contract_tests.exe)
add_windows_test(windows.exe ${PROJECT_SOURCE_DIR}/tools/under_wine.sh
                 ${WINDOWS_FOLDER}/exe_tests.exe)
set(PACKAGE_TEST Python3::Interpreter ${PROJECT_SOURCE_DIR}/tests/package/package_test.py)
add_windows_test(windows.package ${PACKAGE_TEST} Package Pages)
add_windows_test(windows.packaged_profiles ${PACKAGE_TEST} UnderWine)
# Each makes the package, and so enters the build for Windows.
set_tests_properties(windows.package windows.packaged_profiles PROPERTIES
                     RESOURCE_LOCK windows_build)
# In a first run nothing else tells that these take longest, and so have to begin early.
set_tests_properties(windows.exe PROPERTIES COST 130)
set_tests_properties(windows.gate PROPERTIES COST 50)
# The real exe is started some hundred times, beside whatever else runs.
set_tests_properties(windows.exe PROPERTIES TIMEOUT 960 ENVIRONMENT
                     "HSCOPE_EXE=${WINDOWS_FOLDER}/hscope.exe;HOSTSCOPE_TIME_LIMIT=900")
