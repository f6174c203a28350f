# SPDX-FileCopyrightText: 2026 The Echoprune developers
# SPDX-License-Identifier: GPL-3.0-or-later

cmake_policy(VERSION 3.21)

# epr_copy_libraries(DESTINATION BINARIES... OBJDUMP tool STRIP tool FOLDERS...): copies the libraries that the programs
# and plugins import, directly or through each other, as far as the folders hold them; what else they import is the
# system's. The copies are stripped, since some compilers bring a runtime full of debug information. For install scripts.
# CMake's own search asks for the names in lower case, which a case-sensitive file system does not have.
function(epr_copy_libraries destination)
  cmake_parse_arguments(COPY "" "OBJDUMP;STRIP" "BINARIES;FOLDERS" ${ARGN})
  set(waiting ${COPY_BINARIES})
  set(seen)
  while(waiting)
    list(POP_FRONT waiting binary)
    execute_process(COMMAND "${COPY_OBJDUMP}" -p "${binary}" OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "DLL Name: [^\r\n]+" imports "${headers}")
    foreach(import IN LISTS imports)
      string(REPLACE "DLL Name: " "" name "${import}")
      if(name IN_LIST seen)
        continue()
      endif()
      list(APPEND seen "${name}")
      find_file(library NAMES "${name}" PATHS ${COPY_FOLDERS} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH NO_CACHE)
      if(library)
        file(INSTALL "${library}" DESTINATION "${destination}")
        execute_process(COMMAND "${COPY_STRIP}" --strip-unneeded "${destination}/${name}" COMMAND_ERROR_IS_FATAL ANY)
        list(APPEND waiting "${library}")
      elseif(name MATCHES "^(Qt|lib)")
        message(FATAL_ERROR "${binary} needs ${name}, which is not in ${COPY_FOLDERS}")
      endif()
      unset(library)
    endforeach()
  endwhile()
endfunction()
