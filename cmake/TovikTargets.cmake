# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT

# Flags that every target of ours gets.
add_library(tovik_flags INTERFACE)
target_include_directories(tovik_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(tovik_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                             -Woverloaded-virtual -Wconversion -Wno-sign-conversion)
# GCC 12 sees overlaps in std::string's own operator+ that are not there (GCC bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(tovik_flags INTERFACE -Wno-restrict)
endif()
if(TOVIK_WARNINGS_AS_ERRORS)
  target_compile_options(tovik_flags INTERFACE -Werror)
endif()
if(TOVIK_SANITIZE)
  add_compile_options(-fsanitize=${TOVIK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TOVIK_SANITIZE})
endif()

# tovik_library(<name> SOURCES ... [LINKS ...])
# A static library of the program. LINKS are public: they say which layers it stands on.
function(tovik_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC tovik_flags ${ARG_LINKS})
endfunction()

# tovik_test(<name> KIND unit|contract|ui|desktop [STAGED] SOURCES ... [LINKS ...])
# A GoogleTest program, run by ctest under the label of its kind. One that is STAGED finds an X server, a window
# manager, a session bus, a sound server and private folders (see tools/stage). Those that want a stage of another
# shape, or several, start them themselves.
function(tovik_test name)
  cmake_parse_arguments(ARG "STAGED" "KIND" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  if(TOVIK_SANITIZE MATCHES thread)
    target_sources(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/SanitizedThreads.cpp)
  endif()
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE tovik_flags ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  if(ARG_STAGED)
    add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/tools/stage -- $<TARGET_FILE:${name}>)
  else()
    add_test(NAME ${name} COMMAND ${name})
  endif()
  set_tests_properties(${name} PROPERTIES LABELS ${ARG_KIND})
endfunction()
