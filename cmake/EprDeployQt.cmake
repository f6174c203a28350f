# SPDX-FileCopyrightText: 2026 The Echoprune developers
# SPDX-License-Identifier: GPL-3.0-or-later

# Puts Qt's libraries and plugins and the compiler's runtime beside the installed programs: with Qt's own tool where it
# runs, which is on Windows, and by following the import tables in a cross-build.
get_target_property(epr_qt_core Qt6::Core LOCATION)
get_filename_component(epr_qt_bin "${epr_qt_core}" DIRECTORY)

if(NOT CMAKE_CROSSCOMPILING)
  find_program(EPR_WINDEPLOYQT windeployqt HINTS "${epr_qt_bin}")
  if(NOT EPR_WINDEPLOYQT)
    message(WARNING "windeployqt not found: what is installed will lack Qt's libraries")
    return()
  endif()
  install(CODE "
    set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
    execute_process(
      COMMAND \"${EPR_WINDEPLOYQT}\" --no-translations --compiler-runtime
        \"\${folder}/echoprune.exe\" \"\${folder}/echoprune-scan.exe\"
      COMMAND_ERROR_IS_FATAL ANY)")
  return()
endif()

set(epr_plugins)
foreach(plugin IN ITEMS
    platforms/qwindows styles/qwindowsvistastyle sqldrivers/qsqlite tls/qschannelbackend multimedia/windowsmediaplugin
    imageformats/qjpeg)
  set(file "${epr_qt_bin}/../plugins/${plugin}.dll")
  if(NOT EXISTS "${file}")
    message(WARNING "No Qt plugin ${plugin}: an installed program will lack it")
    continue()
  endif()
  get_filename_component(folder "${plugin}" DIRECTORY)
  install(FILES "${file}" DESTINATION "${folder}")
  list(APPEND epr_plugins "${file}")
endforeach()

# The runtime lies in the compiler's own folders, which it names when asked for one of its libraries.
set(epr_runtime_folders)
foreach(library IN ITEMS libstdc++-6.dll libwinpthread-1.dll)
  execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=${library} OUTPUT_VARIABLE file
    OUTPUT_STRIP_TRAILING_WHITESPACE)
  get_filename_component(folder "${file}" DIRECTORY)
  list(APPEND epr_runtime_folders "${folder}")
endforeach()

install(CODE "
  include(\"${CMAKE_CURRENT_LIST_DIR}/EprCopyLibraries.cmake\")
  epr_copy_libraries(\"\${CMAKE_INSTALL_PREFIX}\" OBJDUMP \"${CMAKE_OBJDUMP}\" STRIP \"${CMAKE_STRIP}\"
    BINARIES \"$<TARGET_FILE:echoprune>\" \"$<TARGET_FILE:echoprune-scan>\" ${epr_plugins}
    FOLDERS \"${epr_qt_bin}\" ${epr_runtime_folders})")
