# SPDX-License-Identifier: GPL-3.0-or-later
# The Python of the build and of the tests. The distribution's own goes first: its packages bring the
# modules, which another one that stands before it in PATH does not see.
if(NOT Python3_EXECUTABLE AND EXISTS /usr/bin/python3)
  set(Python3_EXECUTABLE /usr/bin/python3)
endif()
find_package(Python3 REQUIRED COMPONENTS Interpreter)
