# SPDX-License-Identifier: GPL-3.0-or-later
# One interface target carries what every part of the program is compiled with.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_library(tallyvane_flags INTERFACE)
target_compile_options(tallyvane_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  $<$<BOOL:${TALLYVANE_WERROR}>:-Werror>)
target_compile_definitions(tallyvane_flags INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
  QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_STRICT_ITERATORS
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Keeps a precompiled header usable for a compiler cache.
  target_compile_options(tallyvane_flags INTERFACE -fpch-preprocess)
endif()

if(CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 15)
  # Its consteval cannot call the constructor that checks fmt's format strings.
  add_compile_definitions(FMT_CONSTEVAL=)
endif()

if(TALLYVANE_FUZZ)
  # What the fuzz targets call must report which of its branches were taken.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(TALLYVANE_SANITIZE)
  add_compile_options(-fsanitize=${TALLYVANE_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TALLYVANE_SANITIZE})
endif()
