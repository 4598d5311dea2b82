# hscope.exe, and the programs that test it, for Windows.

include(cmake/hscope_exe.cmake)
add_freestanding_exe(hscope ${PROGRAM_SOURCES})

# Plug-ins, each by the one command that the kit's own users give.
function(add_plugin name source)
  set(kit ${PROJECT_SOURCE_DIR}/sdk)
  add_custom_command(OUTPUT ${name}.dll
    COMMAND ${CMAKE_COMMAND} -E env CC=${CMAKE_C_COMPILER} ${kit}/build.sh ${source} ${name}.dll
    DEPENDS ${source} ${kit}/build.sh ${kit}/hscope_plugin.h VERBATIM)
  add_custom_target(${name} ALL DEPENDS ${name}.dll)
endfunction()

add_plugin(sample_plugin ${PROJECT_SOURCE_DIR}/sdk/sample_plugin.c)
add_plugin(test_plugin ${PROJECT_SOURCE_DIR}/tests/windows/test_plugin.c)

# What runs beside the exe is ordinary C++ with the runtime linked in.
function(add_ordinary_exe name)
  add_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_options(${name} PRIVATE -Wall -Wextra -Wno-missing-field-initializers -Werror -O1)
  target_link_options(${name} PRIVATE -static)
endfunction()

add_ordinary_exe(dialog_watch tools/dialog_watch.cpp)

# GoogleTest comes as sources with the distribution's package.
set(GOOGLETEST_FOLDER /usr/src/googletest)
if(EXISTS ${GOOGLETEST_FOLDER}/CMakeLists.txt)
  set(INSTALL_GTEST OFF)
  set(BUILD_GMOCK OFF)
  add_subdirectory(${GOOGLETEST_FOLDER} googletest EXCLUDE_FROM_ALL)

  file(GLOB EXE_TEST_SOURCES CONFIGURE_DEPENDS tests/windows/*.cpp)
  if(EXE_TEST_SOURCES)
    add_ordinary_exe(exe_tests ${EXE_TEST_SOURCES})
    target_link_libraries(exe_tests PRIVATE GTest::gtest_main)
  endif()

  file(GLOB CONTRACT_SOURCES CONFIGURE_DEPENDS tests/contract/*.cpp)
  if(CONTRACT_SOURCES)
    add_ordinary_exe(contract_tests ${CONTRACT_SOURCES})
    target_link_libraries(contract_tests PRIVATE GTest::gtest_main)
  endif()
endif()
