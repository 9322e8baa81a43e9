# Compile options that every target of ours shares, and how tests, benchmarks and fuzzers are declared.

add_library(joyvane_flags INTERFACE)
target_compile_options(joyvane_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Werror -ffp-contract=off -fno-math-errno)
# Several sources are compiled as one where CMAKE_UNITY_BUILD is on: four times as quick. A local name may then well be that
# of another source's function, and only g++ can tell this from a local name that hides a local name.
if(NOT CMAKE_UNITY_BUILD)
  target_compile_options(joyvane_flags INTERFACE -Wshadow)
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(joyvane_flags INTERFACE -Wshadow=local -Wno-subobject-linkage)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 sees both, wrongly, in copies of std::variant and in sums of strings; clang looks for the real ones.
  target_compile_options(joyvane_flags INTERFACE -Wno-maybe-uninitialized -Wno-restrict)
endif()
# Exported functions keep their plain names and still give back our value types; only clang has words for it, and g++ does
# not mind that it is told to keep quiet.
target_compile_options(joyvane_flags INTERFACE -Wno-return-type-c-linkage)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # A final class whose functions are all inline has a table in each library; casts to it must not compare the tables.
  target_compile_options(joyvane_flags INTERFACE -fno-assume-unique-vtables)
  # A precompiled header that holds no times can come out of the compiler cache.
  add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
  find_program(JOYVANE_LLD NAMES ld.lld-19 ld.lld)
  if(JOYVANE_LLD)
    add_link_options(--ld-path=${JOYVANE_LLD})
  endif()
endif()
# Programs are compiled as libraries are, so that both can share a precompiled header.
set(CMAKE_CXX_COMPILE_OPTIONS_PIE ${CMAKE_CXX_COMPILE_OPTIONS_PIC})
# What ships is hardened; the sanitizers look harder still, and not through the checks of others.
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  add_compile_options(-fstack-protector-strong -fstack-clash-protection)
  add_compile_definitions(_FORTIFY_SOURCE=2 _GLIBCXX_ASSERTIONS)
  add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack -Wl,-z,defs)
endif()
if(JOYVANE_SANITIZE)
  add_compile_options(-fsanitize=${JOYVANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${JOYVANE_SANITIZE})
endif()
if(JOYVANE_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(JOYVANE_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()

# What every test runs with. The toolkit and the system's libraries are not instrumented, hence the two lists.
set(JOYVANE_TEST_ENVIRONMENT QT_QPA_PLATFORM=offscreen)
if(JOYVANE_SANITIZE)
  find_program(JOYVANE_SYMBOLIZER NAMES llvm-symbolizer-19 llvm-symbolizer)
  set(symbolizer "")
  if(JOYVANE_SYMBOLIZER)
    set(symbolizer ":external_symbolizer_path=${JOYVANE_SYMBOLIZER}")
  endif()
  list(APPEND JOYVANE_TEST_ENVIRONMENT
    "ASAN_OPTIONS=detect_stack_use_after_return=1:check_initialization_order=1:strict_string_checks=1${symbolizer}"
    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/leaks-of-others.txt:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1${symbolizer}"
    "TSAN_OPTIONS=ignore_noninstrumented_modules=1:second_deadlock_stack=1${symbolizer}")
endif()

# True when this build runs tests with these labels: JOYVANE_TEST_ONLY, when given, names the labels of which a test
# needs one; JOYVANE_TEST_EXCEPT names those of which it may have none.
function(joyvane_test_wanted result)
  set(wanted ON)
  if(JOYVANE_TEST_ONLY)
    set(wanted OFF)
    foreach(label IN LISTS JOYVANE_TEST_ONLY)
      if(label IN_LIST ARGN)
        set(wanted ON)
      endif()
    endforeach()
  endif()
  foreach(label IN LISTS JOYVANE_TEST_EXCEPT)
    if(label IN_LIST ARGN)
      set(wanted OFF)
    endif()
  endforeach()
  set(${result} ${wanted} PARENT_SCOPE)
endfunction()

# joyvane_command_test(<name> COMMAND <command...> [LABELS <labels...>] [TIMEOUT <seconds>] [PROCESSORS <n>] [SERIAL]
#                      [LOCK <name>] [ENVIRONMENT <NAME=value...>])
# Any program as one CTest test, its name behind JOYVANE_TEST_PREFIX: passes when it ends with 0, is skipped when it ends
# with 77. Beside a SERIAL one runs no other, beside one with a LOCK none with the same. What may take long
# is started early, so that nothing long is left for the end.
function(joyvane_command_test name)
  cmake_parse_arguments(ARG "SERIAL" "TIMEOUT;PROCESSORS;LOCK" "COMMAND;LABELS;ENVIRONMENT" ${ARGN})
  joyvane_test_wanted(wanted ${ARG_LABELS})
  if(NOT wanted)
    return()
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  # ./test gives out twice as many as there are, since most tests wait more than they compute; not so under a sanitizer.
  if(NOT ARG_PROCESSORS)
    set(ARG_PROCESSORS 1)
    if(JOYVANE_SANITIZE)
      set(ARG_PROCESSORS 2)
    endif()
  endif()
  # A test that hangs is ended; on a machine that others use, too, one that does not may take much longer than here.
  math(EXPR limit "5 * ${ARG_TIMEOUT}")
  # CTest knows a test by its name alone, and ./test runs those of several builds in one go, some of them while their build
  # is made: "<prefix>build" is that, where it is a test.
  set(test ${JOYVANE_TEST_PREFIX}${name})
  add_test(NAME ${test} COMMAND ${ARG_COMMAND})
  set_tests_properties(${test} PROPERTIES
    TIMEOUT ${limit} PROCESSORS ${ARG_PROCESSORS} RUN_SERIAL ${ARG_SERIAL} SKIP_RETURN_CODE 77
    COST ${ARG_TIMEOUT} LABELS "${ARG_LABELS}" RESOURCE_LOCK "${ARG_LOCK}" ENVIRONMENT "${JOYVANE_TEST_ENVIRONMENT};${ARG_ENVIRONMENT}")
  if(JOYVANE_TEST_PREFIX)
    set_tests_properties(${test} PROPERTIES FIXTURES_REQUIRED ${JOYVANE_TEST_PREFIX}build)
  endif()
  if(NOT machine IN_LIST ARG_LABELS)
    set_property(GLOBAL APPEND PROPERTY JOYVANE_TESTS_BEFORE_MACHINES ${test})
  endif()
endfunction()

# What every compilation of a test has. An expectation is an if with an else inside, and so may well follow an if without
# braces. What a test tries is compiled as it is shipped; the test itself need not be fast, and takes the compiler half
# the time this way. A fuzzer need not find new ways through a test; what is undefined in one, or on which line it stands,
# is not worth a third of the time either: under the sanitizers its functions have their names.
function(joyvane_test_options name)
  target_compile_options(${name} PRIVATE -O0 -U_FORTIFY_SOURCE $<$<CXX_COMPILER_ID:GNU>:-Wno-dangling-else>
    $<$<BOOL:${JOYVANE_FUZZ}>:-fno-sanitize=fuzzer-no-link>)
  if(JOYVANE_SANITIZE)
    target_compile_options(${name} PRIVATE -fno-sanitize=undefined -g0)
  endif()
endfunction()

# joyvane_test(<name> [SOURCES <files...>] [ANY_SEAT <files...>] [LIBRARIES <targets...>]
#              [ANY_SEAT_LIBRARIES <targets...>] [LABELS <labels...>] [TIMEOUT <seconds>] [SERIAL]
#              [ENVIRONMENT <NAME=value...>])
# A GoogleTest program with the shared main (off-screen toolkit, temporary root), run by CTest as one test a program.
# Files under ANY_SEAT know nothing of the seat but tests/support/: they are linked once more, with ANY_SEAT_LIBRARIES,
# into "memory_<name>", which runs them on the seat in memory.
# Labels that decide where it runs: threads (under the thread sanitizer too), benchmark and pixels-slow (not under the
# address sanitizer), check (only in the release build).
function(joyvane_test name)
  cmake_parse_arguments(ARG "SERIAL" "TIMEOUT" "SOURCES;ANY_SEAT;LIBRARIES;ANY_SEAT_LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
  # A program that this build does not run is a target all the same, so that what is said of it needs no condition.
  joyvane_test_wanted(wanted ${ARG_LABELS})
  set(exclude "")
  if(NOT wanted)
    set(exclude EXCLUDE_FROM_ALL)
  endif()
  set(serial "")
  if(ARG_SERIAL)
    set(serial SERIAL)
  endif()
  set(objects "")
  if(ARG_ANY_SEAT)
    add_library(${name}_any_seat OBJECT ${exclude} ${ARG_ANY_SEAT})
    target_link_libraries(${name}_any_seat PRIVATE joyvane_flags joyvane_test_interface)
    target_precompile_headers(${name}_any_seat REUSE_FROM joyvane_test_headers)
    joyvane_test_options(${name}_any_seat)
    set(objects $<TARGET_OBJECTS:${name}_any_seat>)
    if(NOT JOYVANE_SANITIZE)
      add_executable(memory_${name} ${exclude} ${objects})
      target_link_libraries(memory_${name} PRIVATE
        joyvane_flags joyvane_memory_test_main ${ARG_ANY_SEAT_LIBRARIES} joyvane_memory_test_main)
      joyvane_command_test(memory_${name} COMMAND memory_${name} ${serial}
        LABELS memory ${ARG_LABELS} TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT ${ARG_ENVIRONMENT})
    endif()
  endif()
  if(NOT JOYVANE_SEAT STREQUAL "desktop")
    return()
  endif()
  add_executable(${name} ${exclude} ${ARG_SOURCES} ${objects})
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_link_libraries(${name} PRIVATE
    joyvane_flags joyvane_test_main ${ARG_LIBRARIES} ${ARG_ANY_SEAT_LIBRARIES} joyvane_test_main joyvane_platform)
  # The logic's own crc32 must not stand in for the compression library's function of that name.
  target_link_options(${name} PRIVATE -Wl,--exclude-libs,libjoyvane_logic.a)
  target_precompile_headers(${name} REUSE_FROM joyvane_test_headers)
  joyvane_test_options(${name})
  joyvane_command_test(${name} COMMAND ${name} ${serial}
    LABELS ${ARG_LABELS} TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT ${ARG_ENVIRONMENT})
endfunction()

# joyvane_service_test(<name> SOURCES <files...> [LIBRARIES <targets...>] [LABELS <labels...>] [TIMEOUT <seconds>]
#                      [ENVIRONMENT <NAME=value...>])
# As joyvane_test, but without the toolkit in the process, as the services are.
function(joyvane_service_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
  joyvane_test_wanted(wanted ${ARG_LABELS})
  set(exclude "")
  if(NOT wanted)
    set(exclude EXCLUDE_FROM_ALL)
  endif()
  add_executable(${name} ${exclude} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE joyvane_flags joyvane_service GTest::gmock GTest::gtest_main ${ARG_LIBRARIES})
  target_precompile_headers(${name} REUSE_FROM joyvane_test_headers)
  joyvane_test_options(${name})
  joyvane_command_test(${name} COMMAND ${name}
    LABELS ${ARG_LABELS} TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT ${ARG_ENVIRONMENT})
endfunction()

# joyvane_benchmark(<name> SOURCES <files...> [LIBRARIES <targets...>])
# A Google Benchmark program with a main of its own or benchmark::benchmark_main among its libraries. As a test every
# benchmark in it runs once, briefly: it must still work; what it measures is read by people and by ./bench.
function(joyvane_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  joyvane_test_wanted(wanted benchmark)
  if(NOT JOYVANE_BENCHMARKS OR NOT wanted)
    return()
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE
    joyvane_flags benchmark::benchmark ${ARG_LIBRARIES} joyvane_test_seat joyvane_platform)
  target_link_options(${name} PRIVATE -Wl,--exclude-libs,libjoyvane_logic.a)
  joyvane_command_test(${name} COMMAND ${name} --benchmark_min_time=0.001 LABELS benchmark SERIAL)
endfunction()

# joyvane_fuzzer(<name> SOURCES <files...> [LIBRARIES <targets...>] CORPUS <folder> [RUNS <n>])
# A program around LLVMFuzzerTestOneInput. With JOYVANE_FUZZ the corpus is replayed, then <n> (10,000) inputs are made
# from it; otherwise the corpus alone is replayed, so that what once crashed is tried in each build that wants them.
function(joyvane_fuzzer name)
  cmake_parse_arguments(ARG "" "CORPUS;RUNS" "SOURCES;LIBRARIES" ${ARGN})
  joyvane_test_wanted(wanted fuzz)
  if(NOT wanted)
    return()
  endif()
  if(NOT ARG_RUNS)
    set(ARG_RUNS 10000)
  endif()
  cmake_path(ABSOLUTE_PATH ARG_CORPUS)
  add_executable(${name} ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES UNITY_BUILD OFF) # what is defined weakly must be seen by itself
  target_link_libraries(${name} PRIVATE joyvane_flags ${ARG_LIBRARIES} joyvane_platform)
  target_link_options(${name} PRIVATE -Wl,--exclude-libs,libjoyvane_logic.a)
  if(JOYVANE_FUZZ)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    # What the fuzzer finds by itself goes to the build folder; the corpus is only read.
    set(found ${CMAKE_CURRENT_BINARY_DIR}/${name}-found)
    file(MAKE_DIRECTORY ${found})
    joyvane_command_test(${name} LABELS fuzz TIMEOUT 300
      COMMAND ${name} -runs=${ARG_RUNS} -seed=1 -max_len=4096 -timeout=10 -rss_limit_mb=4096 -verbosity=0
              -artifact_prefix=${found}/ ${found} ${ARG_CORPUS})
  else()
    target_sources(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/replay.cpp)
    joyvane_command_test(${name} COMMAND ${name} ${ARG_CORPUS} LABELS fuzz)
  endif()
endfunction()

# joyvane_memory_fuzzer(<name> SOURCES <files...> CORPUS <folder>)
# A fuzzer under the memory sanitizer, of sources that need no other library: what it did not compile looks to it as if
# it left memory as it was. So the standard library's templates are compiled along with the sources, and inputs come from
# tests/support/mutations.cpp instead of libFuzzer. Only with JOYVANE_FUZZ.
function(joyvane_memory_fuzzer name)
  cmake_parse_arguments(ARG "" "CORPUS" "SOURCES" ${ARGN})
  joyvane_test_wanted(wanted fuzz)
  if(NOT JOYVANE_FUZZ OR NOT wanted)
    return()
  endif()
  cmake_path(ABSOLUTE_PATH ARG_CORPUS)
  add_executable(${name} ${ARG_SOURCES} ${CMAKE_SOURCE_DIR}/tests/support/mutations.cpp)
  set_target_properties(${name} PROPERTIES UNITY_BUILD OFF)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE _GLIBCXX_EXTERN_TEMPLATE=0)
  target_compile_options(${name} PRIVATE -fno-sanitize=all -fsanitize=memory -fno-sanitize-recover=all)
  target_link_options(${name} PRIVATE -fno-sanitize=all -fsanitize=memory)
  target_link_libraries(${name} PRIVATE joyvane_flags)
  joyvane_command_test(${name} COMMAND ${name} 10000 ${ARG_CORPUS} LABELS fuzz)
endfunction()
