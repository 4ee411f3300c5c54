# SPDX-License-Identifier: GPL-3.0-or-later
find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
find_package(benchmark REQUIRED)

# The rooms whose tests run more than one thread: what the tsan preset builds and runs.
set(TALLYVANE_THREADED_ROOMS base network profiles storage system stats ui)

# tallyvane_tests(ROOM [PART part] [ONE_THREAD] CLASSES test classes... LIBRARIES further libraries...
#                 SOURCES helper files...)
#
# Makes one executable, ROOM_tests or ROOM_PART_tests, of the files CLASS.cpp beside the caller, and
# one ctest entry per class, named "ROOM.CLASS". ONE_THREAD: these start none, whatever their room
# does, and the thread sanitizer has nothing to find.
function(tallyvane_tests room)
  cmake_parse_arguments(arg "ONE_THREAD" "PART" "CLASSES;LIBRARIES;SOURCES" ${ARGN})
  list(TRANSFORM arg_CLASSES APPEND .cpp OUTPUT_VARIABLE files)
  set(target ${room}_tests)
  if(arg_PART)
    set(target ${room}_${arg_PART}_tests)
  endif()
  add_executable(${target} "${CMAKE_SOURCE_DIR}/tests/support/TestMain.cpp" ${files} ${arg_SOURCES})
  if(TALLYVANE_SANITIZE STREQUAL "thread")
    target_sources(${target} PRIVATE "${CMAKE_SOURCE_DIR}/tests/support/TsanQt.cpp")
  endif()
  target_include_directories(${target} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_link_libraries(${target} PRIVATE ${room} ${arg_LIBRARIES} Qt6::Test Qt6::Widgets tallyvane_flags)
  target_precompile_headers(${target} PRIVATE "${CMAKE_SOURCE_DIR}/cmake/Precompiled.h")
  target_compile_definitions(${target} PRIVATE
    "TALLYVANE_SOURCE_DIR=\"${CMAKE_SOURCE_DIR}\"" "TALLYVANE_BUILD_DIR=\"${CMAKE_BINARY_DIR}\"")
  set(labels unit ${room})
  if(room IN_LIST TALLYVANE_THREADED_ROOMS AND NOT arg_ONE_THREAD)
    list(APPEND labels threads)
    set_property(GLOBAL APPEND PROPERTY TALLYVANE_THREADED_TESTS ${target})
  endif()
  foreach(class IN LISTS arg_CLASSES)
    add_test(NAME ${room}.${class} COMMAND ${target} ${class})
    set_tests_properties(${room}.${class} PROPERTIES
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;TZ=Europe/Berlin"
      LABELS "${labels}" TIMEOUT 300)
  endforeach()
endfunction()

# tallyvane_benchmark(NAME SOURCES ... LIBRARIES ...): a Google Benchmark program in bin/, run by
# ./test --bench and never by ctest.
function(tallyvane_benchmark name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} benchmark::benchmark tallyvane_flags)
  set_property(GLOBAL APPEND PROPERTY TALLYVANE_BENCHMARKS ${name})
endfunction()

# tallyvane_fuzz(NAME CORPUS dir SOURCES ... LIBRARIES ...): a fuzz target with the usual entry point,
# LLVMFuzzerTestOneInput. With TALLYVANE_FUZZ (clang) it becomes a libFuzzer program; otherwise it is
# linked to a driver that replays its corpus, as a ctest entry "fuzz.NAME".
function(tallyvane_fuzz name)
  cmake_parse_arguments(arg "" "CORPUS" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} tallyvane_flags)
  set_property(GLOBAL APPEND PROPERTY TALLYVANE_FUZZ_TARGETS ${name})
  if(TALLYVANE_FUZZ)
    file(WRITE "${CMAKE_BINARY_DIR}/fuzz/${name}" "${arg_CORPUS}\n")
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    return()
  endif()
  target_sources(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests/support/ReplayCorpus.cpp")
  add_test(NAME fuzz.${name} COMMAND ${name} "${arg_CORPUS}")
  set_tests_properties(fuzz.${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8" LABELS "unit;fuzz" TIMEOUT 300)
endfunction()

# Targets that build a group of programs, known once every directory has been read:
#   benchmarks      with their names in benchmarks.txt
#   fuzz_targets    with the corpus of each in the file fuzz/NAME
#   threaded_tests  those that run under the thread sanitizer
#   check_rooms     those that link each room with only the rooms below it
function(tallyvane_group_targets)
  get_property(benchmarks GLOBAL PROPERTY TALLYVANE_BENCHMARKS)
  get_property(fuzz_targets GLOBAL PROPERTY TALLYVANE_FUZZ_TARGETS)
  get_property(threaded_tests GLOBAL PROPERTY TALLYVANE_THREADED_TESTS)
  get_property(check_rooms GLOBAL PROPERTY TALLYVANE_ROOM_PROBES)
  foreach(group benchmarks fuzz_targets threaded_tests check_rooms)
    add_custom_target(${group} DEPENDS ${${group}})
  endforeach()
  list(JOIN benchmarks "\n" names)
  file(WRITE "${CMAKE_BINARY_DIR}/benchmarks.txt" "${names}\n")
endfunction()
cmake_language(DEFER DIRECTORY "${CMAKE_SOURCE_DIR}" CALL tallyvane_group_targets)
