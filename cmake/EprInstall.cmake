# SPDX-FileCopyrightText: 2026 The Echoprune developers
# SPDX-License-Identifier: GPL-3.0-or-later

# What "cmake --install" puts where. On Windows everything lies in one folder, because a program finds its libraries
# and plugins, and ours its ffmpeg folder, beside itself.
include(GNUInstallDirs)

set(epr_texts README.md CHANGELOG.md LICENSE)
list(TRANSFORM epr_texts PREPEND "${PROJECT_SOURCE_DIR}/")

if(WIN32)
  install(TARGETS echoprune echoprune-scan RUNTIME DESTINATION .)
  install(FILES ${epr_texts} DESTINATION .)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION .)
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/windows/THIRD-PARTY.txt" DESTINATION .)
  # The texts of their licences, as the packages bring them that the libraries are from: in a cross-build.
  set(licences
    common-licenses/LGPL-3 Qt.txt
    doc/gcc-mingw-w64-base/copyright GCC.txt
    doc/mingw-w64-x86-64-dev/copyright MinGW-w64.txt
    doc/libexpected-dev/copyright expected.txt
    doc/nlohmann-json3-dev/copyright JSON.txt
    doc/libebur128-dev/copyright libebur128.txt)
  while(licences)
    list(POP_FRONT licences text name)
    if(EXISTS "/usr/share/${text}")
      install(FILES "/usr/share/${text}" DESTINATION licences RENAME ${name})
    endif()
  endwhile()
  include(EprDeployQt)
  return()
endif()

install(TARGETS echoprune echoprune-scan RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")

set(linux "${PROJECT_SOURCE_DIR}/packaging/linux")
set(id example.quorvane.echoprune)
install(FILES "${linux}/${id}.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${linux}/${id}.metainfo.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")

# Manual pages and the package's list of changes are kept compressed, without a time in them so that a build can be
# repeated.
find_program(EPR_GZIP gzip REQUIRED)
function(epr_install_compressed source name destination)
  set(compressed "${CMAKE_CURRENT_BINARY_DIR}/${name}.gz")
  add_custom_command(OUTPUT "${compressed}" DEPENDS "${source}" VERBATIM
    COMMAND sh -c "exec \"$1\" -9 -n -c \"$2\" > \"$3\"" gzip "${EPR_GZIP}" "${source}" "${compressed}")
  add_custom_target(compress_${name} ALL DEPENDS "${compressed}")
  install(FILES "${compressed}" DESTINATION "${destination}")
endfunction()
epr_install_compressed("${linux}/echoprune.1" echoprune.1 "${CMAKE_INSTALL_MANDIR}/man1")
epr_install_compressed("${linux}/echoprune-scan.1" echoprune-scan.1 "${CMAKE_INSTALL_MANDIR}/man1")
configure_file("${linux}/changelog.in" changelog @ONLY)
epr_install_compressed("${CMAKE_CURRENT_BINARY_DIR}/changelog" changelog "${CMAKE_INSTALL_DOCDIR}")

set(resources "${PROJECT_SOURCE_DIR}/resources")
set(hicolor "${CMAKE_INSTALL_DATADIR}/icons/hicolor")
foreach(size IN ITEMS 16 24 32 48 64 128) # the sizes that the icon theme has folders for
  install(FILES "${resources}/icons/appicon-${size}.png" DESTINATION "${hicolor}/${size}x${size}/apps" RENAME echoprune.png)
endforeach()
install(FILES "${resources}/appicon.png" DESTINATION "${hicolor}/256x256/apps" RENAME echoprune.png)
install(FILES "${resources}/appicon.svg" DESTINATION "${hicolor}/scalable/apps" RENAME echoprune.svg)

install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${linux}/copyright"
  DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
