# Compile options that every target of ours shares, and how the tests are declared.

add_library(joyvane_flags INTERFACE)
target_compile_options(joyvane_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Werror -ffp-contract=off -fno-math-errno)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # Exported functions keep their plain names and still give back our value types.
  target_compile_options(joyvane_flags INTERFACE -Wno-return-type-c-linkage)
endif()
if(JOYVANE_SANITIZE)
  add_compile_options(-fsanitize=${JOYVANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${JOYVANE_SANITIZE})
endif()

# joyvane_test(<name> SOURCES <files...> [LIBRARIES <targets...>] [LABELS <labels...>])
# A GoogleTest program with the shared main (off-screen toolkit, temporary root), run by CTest as one test a program.
function(joyvane_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE joyvane_flags joyvane_test_main joyvane_platform ${ARG_LIBRARIES})
  # The logic's own crc32 must not stand in for the compression library's function of that name.
  target_link_options(${name} PRIVATE -Wl,--exclude-libs,libjoyvane_logic.a)
  target_precompile_headers(${name} REUSE_FROM joyvane_test_main)
  add_test(NAME ${name} COMMAND ${name})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
endfunction()
