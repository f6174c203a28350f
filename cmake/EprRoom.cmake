# SPDX-FileCopyrightText: 2026 The Echoprune developers
# SPDX-License-Identifier: GPL-3.0-or-later

# epr_add_room(NAME SOURCES... LINKS ...): one static library for one folder under src/. Its own folder is the only
# include directory it offers, so a header can be included only where its room is linked.
function(epr_add_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINKS" ${ARGN})
  add_library(epr_${name} STATIC ${ROOM_SOURCES})
  add_library(epr::${name} ALIAS epr_${name})
  target_include_directories(epr_${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(epr_${name} PUBLIC epr::flags ${ROOM_LINKS})
endfunction()
