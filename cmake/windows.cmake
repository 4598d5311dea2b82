# hscope.exe, and the programs that test it, for Windows.

include(cmake/hscope_exe.cmake)
add_freestanding_exe(hscope ${PROGRAM_SOURCES})

# Plug-ins, each by the one command that the kit's own users give.
function(add_plugin name source)
  set(kit ${PROJECT_SOURCE_DIR}/sdk)
  add_custom_command(OUTPUT ${name}.dll
    COMMAND ${CMAKE_COMMAND} -E env CC=${CMAKE_C_COMPILER} ${kit}/build.sh ${source} ${name}.dll
    DEPENDS ${source} ${kit}/build.sh ${kit}/hsplugin.h VERBATIM)
  add_custom_target(${name} ALL DEPENDS ${name}.dll)
endfunction()

add_plugin(sample ${PROJECT_SOURCE_DIR}/sdk/sample.c)
add_plugin(test_plugin ${PROJECT_SOURCE_DIR}/tests/windows/test_plugin.c)

# What runs beside the exe is ordinary C++ with the runtime linked in.
function(add_ordinary_exe name)
  add_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_options(${name} PRIVATE -Wall -Wextra -Wno-missing-field-initializers -Werror -O1)
  target_link_options(${name} PRIVATE -static)
endfunction()

# Twice as fast to build; nearly all time of a test goes by in what it tests.
function(add_tests_exe name)
  add_ordinary_exe(${name} ${ARGN})
  target_compile_options(${name} PRIVATE -O0)
  target_link_libraries(${name} PRIVATE GTest::gtest_main)
  target_precompile_headers(${name} PRIVATE <gtest/gtest.h> <filesystem> <functional> <map>
                            <memory> <string> <vector> ${PROJECT_SOURCE_DIR}/platform/win32.h)
endfunction()

add_ordinary_exe(dialog_watch tools/dialog_watch.cpp)
add_ordinary_exe(scan_times bench/scan_times.cpp tests/windows/driver.cpp
                 tests/windows/surroundings.cpp tests/windows/interception.cpp)
target_link_libraries(scan_times PRIVATE version setupapi)
# The program with a counter at its heap, for bench/memory.py alone.
add_freestanding_objects(counted_heap bench/counted_heap.cpp)
link_freestanding_exe(hscope_counted hscope_objects counted_heap)
set_target_properties(hscope_counted hscope_counted_symbols PROPERTIES EXCLUDE_FROM_ALL ON)

# The mail client of the tests.
function(add_mail_library)
  set(folder tests/windows/mail_library)
  add_library(mail_library SHARED ${folder}/mail_library.cpp ${folder}/mail_library.def)
  set_target_properties(mail_library PROPERTIES PREFIX "")
  target_compile_options(mail_library PRIVATE -Wall -Wextra -Werror -O1)
  target_link_options(mail_library PRIVATE -static)
endfunction()

# GoogleTest comes as sources with the distribution's package.
set(GOOGLETEST_FOLDER /usr/src/googletest)
if(EXISTS ${GOOGLETEST_FOLDER}/CMakeLists.txt)
  set(INSTALL_GTEST OFF)
  set(BUILD_GMOCK OFF)
  add_subdirectory(${GOOGLETEST_FOLDER} googletest EXCLUDE_FROM_ALL)

  file(GLOB EXE_TEST_SOURCES CONFIGURE_DEPENDS tests/windows/*.cpp)
  if(EXE_TEST_SOURCES)
    add_tests_exe(exe_tests ${EXE_TEST_SOURCES})
    target_link_libraries(exe_tests PRIVATE setupapi version winmm winspool wsock32)
    target_compile_definitions(exe_tests PRIVATE
                               HOSTSCOPE_FULL_PROFILE="Z:${PROJECT_SOURCE_DIR}/profiles/full.ini"
                               HOSTSCOPE_REPORTS_FOLDER="Z:${PROJECT_SOURCE_DIR}/tests/reports")
    add_mail_library()
    add_dependencies(exe_tests mail_library)

    # Libraries that the tests put beside the exe. DEFINITION is empty for one without a
    # DllGetVersion; the resource file may be left out.
    function(add_version_dll name definition)
      add_library(${name} SHARED tests/windows/dlls/version_dll.cpp ${ARGN})
      target_compile_definitions(${name} PRIVATE ${definition})
      target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-ffreestanding -fno-ident>)
      target_link_options(${name} PRIVATE -nostdlib -s -Wl,--kill-at -Wl,--entry=_DllMain@12)
      set_target_properties(${name} PROPERTIES PREFIX "")
      add_dependencies(exe_tests ${name})
    endfunction()
    set(VERSION_RESOURCE tests/windows/dlls/version_dll.rc)
    add_version_dll(v_both VERSION_SIZES=20,32 ${VERSION_RESOURCE})
    add_version_dll(v_older VERSION_SIZES=20 ${VERSION_RESOURCE})
    add_version_dll(v_refuses VERSION_SIZES=0 ${VERSION_RESOURCE})
    add_version_dll(v_silent "" ${VERSION_RESOURCE})
    add_version_dll(v_bare VERSION_SIZES=0)

    # The way to controller ports by itself.
    add_ordinary_exe(ports_attempt tests/windows/ports_attempt/ports_attempt.cpp
      $<FILTER:$<TARGET_OBJECTS:hscope_objects>,INCLUDE,platform/windows/ports[.]cpp>)
    target_link_options(ports_attempt PRIVATE -mwindows)
    add_dependencies(exe_tests ports_attempt)

    # Stands in for a library that the program looks for on Windows 95/98/Me.
    add_library(rsrc32 SHARED tests/windows/libraries/rsrc32.cpp)
    set_target_properties(rsrc32 PROPERTIES PREFIX "")
    target_link_options(rsrc32 PRIVATE -static)
    add_dependencies(exe_tests rsrc32)
  endif()

  file(GLOB CONTRACT_SOURCES CONFIGURE_DEPENDS tests/contract/*.cpp)
  if(CONTRACT_SOURCES)
    add_tests_exe(contract_tests ${CONTRACT_SOURCES})
    target_link_libraries(contract_tests PRIVATE version winmm)
  endif()
endif()

# A kernel for the emulator, with the exe's own object code for controller ports in it. The emulator
# takes the file as the memory it is.
function(add_ports_kernel)
  file(GLOB sources CONFIGURE_DEPENDS tests/emulated/*.cpp)
  add_freestanding_objects(ports_kernel_objects ${sources})
  set(shipped "platform/windows/(ports|memory)[.]cpp|ata_identify[.]cpp")
  add_executable(ports_kernel $<TARGET_OBJECTS:ports_kernel_objects>
                 $<FILTER:$<TARGET_OBJECTS:hscope_objects>,INCLUDE,${shipped}>)
  set_target_properties(ports_kernel PROPERTIES LINKER_LANGUAGE CXX)
  target_link_options(ports_kernel PRIVATE -nostdlib -nostartfiles -static -Wl,--entry=boot
                      -Wl,--image-base=0x100000 -Wl,--gc-sections -Wl,--disable-reloc-section)
  add_custom_command(TARGET ports_kernel POST_BUILD BYPRODUCTS ports_kernel.bin VERBATIM
    COMMAND ${CMAKE_OBJCOPY} -O binary --set-section-flags .bss=alloc,load,contents
            $<TARGET_FILE:ports_kernel> ports_kernel.bin)
endfunction()
add_ports_kernel()
