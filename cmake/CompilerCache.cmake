# SPDX-License-Identifier: GPL-3.0-or-later
# Compiles through ccache where it is installed. The base directory makes a clean clone elsewhere
# hit the same cache; the sloppiness is what ccache needs to accept precompiled headers.
find_program(CCACHE ccache)
if(CCACHE)
  set(launcher "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1
      "CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime" "${CCACHE}")
  set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
endif()
