# SPDX-FileCopyrightText: 2026 The Echoprune developers
# SPDX-License-Identifier: GPL-3.0-or-later

# Qt's tools are looked for rather than Qt's CMake package for them, which on Debian brings a whole designer along and
# does not exist for the target of a cross-build. They are the build machine's own.
get_target_property(epr_moc Qt6::moc IMPORTED_LOCATION)
get_filename_component(epr_qt_tools "${epr_moc}" DIRECTORY) # "libexec" on Linux, "bin" on Windows
set(epr_qt_tools "${epr_qt_tools}" "${epr_qt_tools}/../bin")
find_program(EPR_LRELEASE NAMES lrelease lrelease-qt6 HINTS ${epr_qt_tools} NO_CMAKE_FIND_ROOT_PATH)
find_program(EPR_LUPDATE NAMES lupdate lupdate-qt6 HINTS ${epr_qt_tools} NO_CMAKE_FIND_ROOT_PATH)
if(NOT EPR_LRELEASE)
  message(FATAL_ERROR "Qt's lrelease not found; on Debian it comes with qt6-l10n-tools")
endif()

# epr_compile_translations(VARIABLE): compiles every translations/echoprune_<language>.ts and hands back the source file
# that holds them all as the resource ":/translations".
function(epr_compile_translations variable)
  file(GLOB catalogues CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/translations/echoprune_*.ts")
  set(items "")
  foreach(catalogue IN LISTS catalogues)
    get_filename_component(name "${catalogue}" NAME_WE)
    set(compiled "${CMAKE_CURRENT_BINARY_DIR}/${name}.qm")
    add_custom_command(OUTPUT "${compiled}"
      COMMAND "${EPR_LRELEASE}" -silent "${catalogue}" -qm "${compiled}"
      DEPENDS "${catalogue}" VERBATIM)
    string(APPEND items "    <file>${name}.qm</file>\n")
  endforeach()
  set(list "${CMAKE_CURRENT_BINARY_DIR}/translations.qrc")
  file(CONFIGURE OUTPUT "${list}"
    CONTENT "<RCC version=\"1.0\">\n  <qresource prefix=\"/translations\">\n${items}  </qresource>\n</RCC>\n")
  qt_add_resources(sources "${list}")
  set(${variable} ${sources} PARENT_SCOPE)
endfunction()

# "update-translations" brings the catalogues in step with the sources. The English one holds the plurals only: all else
# is English already. "translation-template" writes every text into the build folder, to begin a language from.
if(EPR_LUPDATE)
  set(epr_lupdate "${EPR_LUPDATE}" -silent -no-obsolete -locations none "${PROJECT_SOURCE_DIR}/src" -recursive)
  set(epr_catalogues "${PROJECT_SOURCE_DIR}/translations")
  file(GLOB epr_languages CONFIGURE_DEPENDS "${epr_catalogues}/echoprune_*.ts")
  list(REMOVE_ITEM epr_languages "${epr_catalogues}/echoprune_en.ts")
  set(epr_update_languages)
  if(epr_languages)
    set(epr_update_languages COMMAND ${epr_lupdate} -ts ${epr_languages})
  endif()
  add_custom_target(update-translations
    COMMAND ${epr_lupdate} -pluralonly -source-language en -target-language en -ts "${epr_catalogues}/echoprune_en.ts"
    ${epr_update_languages} VERBATIM)
  add_custom_target(translation-template
    COMMAND ${epr_lupdate} -source-language en -ts "${PROJECT_BINARY_DIR}/echoprune.ts" VERBATIM)
endif()
