# SPDX-License-Identifier: GPL-3.0-or-later
# cmake -DFROM=file -DTO=file -P CopyWhereThere.cmake: copies a file that need not exist, unless its
# copy is the same already.
if(EXISTS "${FROM}")
  get_filename_component(directory "${TO}" DIRECTORY)
  file(MAKE_DIRECTORY "${directory}")
  file(COPY_FILE "${FROM}" "${TO}" ONLY_IF_DIFFERENT)
endif()
