# SPDX-FileCopyrightText: 2026 The Echoprune developers
# SPDX-License-Identifier: GPL-3.0-or-later

# What "cpack" makes of the installed files: an archive and an installer for Windows, a Debian package elsewhere.
set(CPACK_PACKAGE_NAME echoprune)
set(CPACK_PACKAGE_VENDOR "Quorvane")
set(CPACK_PACKAGE_CONTACT "The Echoprune developers <echoprune@quorvane.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://www.quorvane.example/echoprune")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "find duplicate music in a radio station's library")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
  set(CPACK_GENERATOR ZIP NSIS)
  set(CPACK_PACKAGE_FILE_NAME "echoprune-${PROJECT_VERSION}-win64")
  set(CPACK_PACKAGE_INSTALL_DIRECTORY Echoprune)
  set(CPACK_PACKAGE_EXECUTABLES echoprune Echoprune)
  set(CPACK_NSIS_DISPLAY_NAME Echoprune)
  set(CPACK_NSIS_PACKAGE_NAME Echoprune)
  set(CPACK_NSIS_INSTALL_ROOT "$PROGRAMFILES64")
  set(CPACK_NSIS_EXECUTABLES_DIRECTORY .)
  set(CPACK_NSIS_INSTALLED_ICON_NAME echoprune.exe)
  set(CPACK_NSIS_MUI_ICON "${PROJECT_SOURCE_DIR}/packaging/windows/echoprune.ico")
  set(CPACK_NSIS_MUI_UNIICON "${CPACK_NSIS_MUI_ICON}")
  set(CPACK_NSIS_ENABLE_UNINSTALL_BEFORE_INSTALL ON)
  set(CPACK_NSIS_MANIFEST_DPI_AWARE ON)
  # Not the name of the program: under that lie the operator's settings, and removal deletes the installer's key.
  set(CPACK_PACKAGE_INSTALL_REGISTRY_KEY "Echoprune Setup")
  set(CPACK_NSIS_URL_INFO_ABOUT "${CPACK_PACKAGE_HOMEPAGE_URL}")
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION sound)
  set(CPACK_PACKAGE_DESCRIPTION [[Echoprune looks through folders of music, finds the same recording in copies
with other tags and in other encodings, and proposes which copy to keep.
There is a window for reviewing and a tool for the terminal.]])
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  # The database driver is loaded at run time, so that no link tells of it.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS libqt6sql6-sqlite)
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "ffmpeg, libchromaprint-tools")
endif()

include(CPack)
