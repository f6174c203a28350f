# SPDX-FileCopyrightText: 2026 The Echoprune developers
# SPDX-License-Identifier: GPL-3.0-or-later

# epr_add_test(tst_name [PLAYER] LINKS ...): one Qt Test executable from tst_name.cpp, run without a display and registered
# with CTest under its own name. The sanitizers are told what they report of other people's libraries; they ignore what is
# not meant for them.
# PLAYER is for what makes a media player or decoder: it takes the media back-end that the program chooses for itself,
# since Qt 6.4's own choice crashes where its plug-ins are not complete.
set(EPR_TEST_ENVIRONMENT
  "QT_QPA_PLATFORM=offscreen" "LC_ALL=C.UTF-8"
  "LSAN_OPTIONS=suppressions=${CMAKE_CURRENT_LIST_DIR}/lsan.supp:print_suppressions=0"
  "TSAN_OPTIONS=suppressions=${CMAKE_CURRENT_LIST_DIR}/tsan.supp:ignore_noninstrumented_modules=1:history_size=7")

function(epr_add_test name)
  cmake_parse_arguments(TEST "PLAYER" "TIMEOUT" "SOURCES;LINKS" ${ARGN})
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 300)
  endif()
  add_executable(${name} ${name}.cpp ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE epr::flags Qt6::Test ${TEST_LINKS})
  if(EPR_SANITIZE MATCHES "thread" AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/tsanclone.cpp)
  endif()
  set(environment ${EPR_TEST_ENVIRONMENT})
  if(TEST_PLAYER)
    list(APPEND environment "QT_MEDIA_BACKEND=ffmpeg")
  endif()
  if(MINGW) # see avoidCompiledExpressions(); Wine gives variables of Qt to programs under such names only
    list(APPEND environment "QT_ENABLE_REGEXP_JIT=0" "WINEQT_ENABLE_REGEXP_JIT=0")
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${TEST_TIMEOUT} ENVIRONMENT "${environment}")
  if(WIN32) # where no environment variable moves the folder that programs keep their data in
    set_tests_properties(${name} PROPERTIES RUN_SERIAL ON)
  endif()
endfunction()
