# SPDX-FileCopyrightText: 2026 The Echoprune developers
# SPDX-License-Identifier: GPL-3.0-or-later

# epr_add_floor(ROOMS...): the rooms of one floor, from the ground up. A room may use only floors below its own.
function(epr_add_floor)
  foreach(room IN LISTS ARGN)
    add_subdirectory(${room})
  endforeach()
endfunction()

# epr_add_room(NAME SOURCES ... [PUBLIC ...] [PRIVATE ...]): one static library for one folder under src/, which is the
# only include directory that it offers. PUBLIC is what its headers include, PRIVATE what only its other files do.
# scripts/check-includes sees to it that a room includes what it names here, and nothing else.
function(epr_add_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(epr_${name} STATIC ${ROOM_SOURCES})
  add_library(epr::${name} ALIAS epr_${name})
  target_include_directories(epr_${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(epr_${name} PUBLIC epr::flags ${ROOM_PUBLIC} PRIVATE ${ROOM_PRIVATE})
endfunction()
