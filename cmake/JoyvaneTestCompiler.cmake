# Include this where all that is declared below is tests: what ships is compiled by g++, its tests by clang, which takes half
# the time for them. Both speak the same binary interface and the same standard library. Without clang, or where another
# compiler than g++ was chosen, nothing changes.
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU" OR JOYVANE_COVERAGE)
  return()
endif()
find_program(JOYVANE_TEST_COMPILER clang++-19)
mark_as_advanced(JOYVANE_TEST_COMPILER)
if(NOT JOYVANE_TEST_COMPILER)
  return()
endif()

# CMake knows one compiler a language, but reads how it compiles a file, and what with a precompiled header, once a folder. The
# header's file keeps its ending, by which it is told from the objects of the targets above.
string(REPLACE "<CMAKE_CXX_COMPILER>" "${JOYVANE_TEST_COMPILER}" CMAKE_CXX_COMPILE_OBJECT "${CMAKE_CXX_COMPILE_OBJECT}")
set(CMAKE_PCH_PROLOGUE "#pragma clang system_header")
set(CMAKE_CXX_COMPILE_OPTIONS_INVALID_PCH "")
set(CMAKE_CXX_COMPILE_OPTIONS_INSTANTIATE_TEMPLATES_PCH -fpch-instantiate-templates)
set(CMAKE_CXX_COMPILE_OPTIONS_USE_PCH -Xclang -include-pch -Xclang <PCH_FILE> -Xclang -include -Xclang <PCH_HEADER>)
set(CMAKE_CXX_COMPILE_OPTIONS_CREATE_PCH -Xclang -emit-pch -Xclang -include -Xclang <PCH_HEADER> -x c++-header)
# The flags are g++'s; clang need not know each of its warnings. What else it wants is said in JoyvaneTargets.cmake.
add_compile_options(-Wno-unknown-warning-option -fno-assume-unique-vtables "SHELL:-Xclang -fno-pch-timestamp")
# A test is linked again after each change of a static library; this linker takes a quarter of the time.
find_program(JOYVANE_TEST_LINKER ld.lld HINTS /usr/lib/llvm-19/bin)
mark_as_advanced(JOYVANE_TEST_LINKER)
if(JOYVANE_TEST_LINKER)
  cmake_path(GET JOYVANE_TEST_LINKER PARENT_PATH linker_folder)
  add_link_options(-fuse-ld=lld -B${linker_folder})
endif()
