# SPDX-License-Identifier: GPL-3.0-or-later

# tallyvane_room(NAME ROOMS lower rooms... LIBRARIES other libraries... SOURCES ... HEADERS ...)
#
# Makes the static library of one room, with its headers as a file set, so that each is checked to
# compile alone. A small program then links the *whole* archive with only the rooms it declared: a
# static library that calls upward would otherwise link without a word, since the final binary
# holds both.
function(tallyvane_room name)
  cmake_parse_arguments(room "" "" "ROOMS;LIBRARIES;SOURCES;HEADERS" ${ARGN})
  add_library(${name} STATIC ${room_SOURCES})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS "${CMAKE_SOURCE_DIR}/src"
                 FILES ${room_HEADERS})
  target_link_libraries(${name} PUBLIC ${room_ROOMS} ${room_LIBRARIES} PRIVATE tallyvane_flags)
  target_precompile_headers(${name} PRIVATE "${CMAKE_SOURCE_DIR}/cmake/Precompiled.h")
  set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)

  set(probe "${CMAKE_CURRENT_BINARY_DIR}/${name}_links_alone.cpp")
  file(CONFIGURE OUTPUT "${probe}" CONTENT "int main() {}\n")
  add_executable(${name}_links_alone EXCLUDE_FROM_ALL "${probe}")
  set_target_properties(${name}_links_alone PROPERTIES AUTOMOC OFF)
  target_link_libraries(${name}_links_alone PRIVATE "$<LINK_LIBRARY:WHOLE_ARCHIVE,${name}>")
  set_property(GLOBAL APPEND PROPERTY TALLYVANE_ROOM_PROBES ${name}_links_alone)
endfunction()

# tallyvane_room_part(ROOM CLASSES ... HEADERS ...): adds the classes of a subdirectory, each a pair of
# files beside the caller, and headers without a source file to a room.
function(tallyvane_room_part room)
  cmake_parse_arguments(part "" "" "CLASSES;HEADERS" ${ARGN})
  foreach(class IN LISTS part_CLASSES)
    target_sources(${room} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/${class}.cpp")
    list(APPEND part_HEADERS ${class}.h)
  endforeach()
  list(TRANSFORM part_HEADERS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  target_sources(${room} PUBLIC FILE_SET HEADERS FILES ${part_HEADERS})
endfunction()
