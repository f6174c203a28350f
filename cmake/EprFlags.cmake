# SPDX-FileCopyrightText: 2026 The Echoprune developers
# SPDX-License-Identifier: GPL-3.0-or-later

# One INTERFACE target carries the language standard, the warnings and the strict Qt definitions.
# Everything links it; nothing sets flags for a whole directory.
add_library(epr_flags INTERFACE)
add_library(epr::flags ALIAS epr_flags)

target_compile_features(epr_flags INTERFACE cxx_std_20)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD_REQUIRED ON)

target_compile_definitions(epr_flags INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_URL_CAST_FROM_STRING
  QT_NO_KEYWORDS
  QT_DISABLE_DEPRECATED_BEFORE=0x060400
  $<$<CXX_COMPILER_ID:MSVC>:NOMINMAX>
)

# std::expected as C++23 has it, for the compilers that do not. One header that is the same everywhere; it is copied, so
# that a cross-build sees it and nothing else of the machine that it runs on.
find_path(EPR_TL_INCLUDE tl/expected.hpp REQUIRED NO_CMAKE_FIND_ROOT_PATH PATHS /usr/include)
file(COPY "${EPR_TL_INCLUDE}/tl" DESTINATION "${PROJECT_BINARY_DIR}/include")
# JSON as a stream, which Qt reads only as a whole. Headers alone, too.
find_path(EPR_JSON_INCLUDE nlohmann/json.hpp REQUIRED NO_CMAKE_FIND_ROOT_PATH PATHS /usr/include)
file(COPY "${EPR_JSON_INCLUDE}/nlohmann" DESTINATION "${PROJECT_BINARY_DIR}/include")
target_include_directories(epr_flags SYSTEM INTERFACE "${PROJECT_BINARY_DIR}/include")

if(MSVC)
  set(epr_warnings /W4 /permissive- /utf-8 $<$<BOOL:${EPR_WERROR}>:/WX>)
else()
  set(epr_warnings
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wold-style-cast
    $<$<BOOL:${EPR_WERROR}>:-Werror>)
endif()
# The compilers of Windows resources know none of them.
target_compile_options(epr_flags INTERFACE "$<$<COMPILE_LANGUAGE:CXX>:${epr_warnings}>")

if(EPR_SANITIZE)
  target_compile_options(epr_flags INTERFACE -fsanitize=${EPR_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(epr_flags INTERFACE -fsanitize=${EPR_SANITIZE})
  # The instrumentation hides from GCC what it has initialised.
  target_compile_options(epr_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()
