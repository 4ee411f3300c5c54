# SPDX-License-Identifier: GPL-3.0-or-later
find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
find_package(benchmark REQUIRED)

# tallyvane_tests(ROOM CLASSES test classes... LIBRARIES further libraries... SOURCES helper files...)
#
# Makes one executable, ROOM_tests, of the files CLASS.cpp beside the caller, and one ctest entry per
# class, named "ROOM.CLASS".
function(tallyvane_tests room)
  cmake_parse_arguments(arg "" "" "CLASSES;LIBRARIES;SOURCES" ${ARGN})
  list(TRANSFORM arg_CLASSES APPEND .cpp OUTPUT_VARIABLE files)
  set(target ${room}_tests)
  add_executable(${target} "${CMAKE_SOURCE_DIR}/tests/support/TestMain.cpp" ${files} ${arg_SOURCES})
  target_include_directories(${target} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_link_libraries(${target} PRIVATE ${room} ${arg_LIBRARIES} Qt6::Test Qt6::Widgets tallyvane_flags)
  target_precompile_headers(${target} PRIVATE "${CMAKE_SOURCE_DIR}/cmake/Precompiled.h")
  target_compile_definitions(${target} PRIVATE
    "TALLYVANE_SOURCE_DIR=\"${CMAKE_SOURCE_DIR}\"" "TALLYVANE_BUILD_DIR=\"${CMAKE_BINARY_DIR}\"")
  foreach(class IN LISTS arg_CLASSES)
    add_test(NAME ${room}.${class} COMMAND ${target} ${class})
    set_tests_properties(${room}.${class} PROPERTIES
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;TZ=Europe/Berlin"
      LABELS "unit;${room}" TIMEOUT 300)
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
  if(TALLYVANE_FUZZ)
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    return()
  endif()
  target_sources(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests/support/ReplayCorpus.cpp")
  add_test(NAME fuzz.${name} COMMAND ${name} "${arg_CORPUS}")
  set_tests_properties(fuzz.${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8" LABELS "unit;fuzz" TIMEOUT 300)
endfunction()
