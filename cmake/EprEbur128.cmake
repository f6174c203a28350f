# SPDX-FileCopyrightText: 2026 The Echoprune developers
# SPDX-License-Identifier: GPL-3.0-or-later

# Loudness by EBU R 128. The library of the system, or, where there is none, its sources in a folder of the builder's.
set(EPR_EBUR128_SOURCE "" CACHE PATH "Folder of libebur128's ebur128.c, for systems without the library")
if(EPR_EBUR128_SOURCE)
  enable_language(C)
  add_library(epr_ebur128 STATIC "${EPR_EBUR128_SOURCE}/ebur128.c")
  set_target_properties(epr_ebur128 PROPERTIES AUTOMOC OFF)
  target_include_directories(epr_ebur128 SYSTEM PUBLIC "${EPR_EBUR128_SOURCE}")
  target_include_directories(epr_ebur128 SYSTEM PRIVATE "${EPR_EBUR128_SOURCE}/queue")
  target_compile_definitions(epr_ebur128 PRIVATE _USE_MATH_DEFINES)
else()
  find_path(EPR_EBUR128_INCLUDE ebur128.h REQUIRED)
  find_library(EPR_EBUR128_LIBRARY ebur128 REQUIRED)
  add_library(epr_ebur128 INTERFACE)
  target_include_directories(epr_ebur128 SYSTEM INTERFACE "${EPR_EBUR128_INCLUDE}")
  target_link_libraries(epr_ebur128 INTERFACE "${EPR_EBUR128_LIBRARY}")
endif()
