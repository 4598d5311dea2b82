# hscope.exe, and the programs that test it, for Windows.

include(cmake/hscope_exe.cmake)
add_freestanding_exe(hscope ${PROGRAM_SOURCES})

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

# Stands in for a library that the program looks for on Windows 95/98/Me.
if(TARGET exe_tests)
  add_library(rsrc32 SHARED tests/windows/libraries/rsrc32.cpp)
  set_target_properties(rsrc32 PROPERTIES PREFIX "")
  target_link_options(rsrc32 PRIVATE -static)
  add_dependencies(exe_tests rsrc32)
endif()
