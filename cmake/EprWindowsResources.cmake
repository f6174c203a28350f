# SPDX-FileCopyrightText: 2026 The Echoprune developers
# SPDX-License-Identifier: GPL-3.0-or-later

# epr_add_windows_resources(TARGET DESCRIPTION): icon, version and manifest for an executable; nothing elsewhere.
function(epr_add_windows_resources target EPR_RC_DESCRIPTION)
  if(NOT WIN32)
    return()
  endif()
  set(EPR_RC_NAME ${target})
  set(manifest "${PROJECT_SOURCE_DIR}/packaging/windows/echoprune.manifest")
  if(MSVC) # whose linker makes a manifest of its own and merges this one into it
    target_sources(${target} PRIVATE "${manifest}")
    set(EPR_RC_MANIFEST "")
  else()
    set(EPR_RC_MANIFEST "CREATEPROCESS_MANIFEST_RESOURCE_ID RT_MANIFEST \"${manifest}\"")
  endif()
  set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
  configure_file("${PROJECT_SOURCE_DIR}/packaging/windows/echoprune.rc.in" "${script}" @ONLY)
  set_source_files_properties("${script}" PROPERTIES
    OBJECT_DEPENDS "${manifest};${PROJECT_SOURCE_DIR}/packaging/windows/echoprune.ico")
  target_sources(${target} PRIVATE "${script}")
endfunction()
