# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT

# Flags that every target of ours gets.
add_library(tovik_flags INTERFACE)
target_include_directories(tovik_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(tovik_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                             -Woverloaded-virtual -Wconversion -Wno-sign-conversion)
# Some libraries ask for it, and what shares precompiled headers must have the same flags.
target_compile_options(tovik_flags INTERFACE -pthread)
# GCC 12 sees overlaps and overflows in std::string's own operators that are not there (GCC bugs 105651, 105329).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(tovik_flags INTERFACE -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread
                                               -Wno-array-bounds)
endif()
if(TOVIK_WARNINGS_AS_ERRORS)
  target_compile_options(tovik_flags INTERFACE -Werror)
endif()
if(TOVIK_SANITIZE)
  add_compile_options(-fsanitize=${TOVIK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TOVIK_SANITIZE})
endif()

# What nearly every source includes and nobody here changes, compiled once for all that stand on the same libraries. The
# presets dev and tidy compile each source by itself, tidy also without these, so that each still names what it needs.
set(TOVIK_COMMON_HEADERS <algorithm> <array> <chrono> <filesystem> <functional> <map> <memory> <mutex> <optional> <set>
                         <span> <string> <string_view> <thread> <utility> <vector>)
set(TOVIK_QT_HEADERS <QApplication> <QObject> <QString> <QWidget>)

# tovik_library(<name> [FOLDERS ...] [SOURCES ...] [LINKS ...] [HEADERS_OF <library>])
# A static library of the program: every source below the folders, and the named ones. LINKS are public: they say
# which layers it stands on. HEADERS_OF names a library with the same flags whose precompiled headers it shares.
function(tovik_library name)
  cmake_parse_arguments(ARG "" "HEADERS_OF" "FOLDERS;SOURCES;LINKS" ${ARGN})
  foreach(folder ${ARG_FOLDERS})
    file(GLOB_RECURSE found CONFIGURE_DEPENDS ${folder}/*.cpp)
    list(APPEND ARG_SOURCES ${found})
  endforeach()
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC tovik_flags ${ARG_LINKS})
  if(ARG_HEADERS_OF)
    target_precompile_headers(${name} REUSE_FROM ${ARG_HEADERS_OF})
  else()
    target_precompile_headers(${name} PRIVATE ${TOVIK_COMMON_HEADERS})
  endif()
endfunction()

# Tests run once and are compiled often, so they are not optimized as the program is. With the same flags everywhere, they
# can share precompiled headers: those of tovik_test_headers, or tovik_test_qt_headers for what links the widgets.
function(tovik_test_flags name)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE tovik_flags)
  target_compile_options(${name} PRIVATE -fPIC $<$<CONFIG:Release>:-Og>)
endfunction()

# tovik_test(<name> KIND unit|contract|ui|desktop [STAGED] [MAIN Core|Offscreen|Staged|StagedBare] [SECONDS <n>]
#            [FOLDERS ...] [SOURCES ...] [LINKS ...])
# A GoogleTest program of every source in the folders and the named ones, run by ctest under the label of its kind.
# One that is STAGED finds an X server, a window manager, a session bus, a sound server and private folders (see
# tools/stage). Those that want a stage of another shape, or several, start them themselves. MAIN names the main
# function of tests/support that it wants instead of GoogleTest's. SECONDS says roughly how long it takes if that is more
# than a few: the longest begin first.
function(tovik_test name)
  cmake_parse_arguments(ARG "STAGED" "KIND;MAIN;SECONDS" "FOLDERS;SOURCES;LINKS" ${ARGN})
  foreach(folder ${ARG_FOLDERS})
    file(GLOB found CONFIGURE_DEPENDS ${folder}/*.cpp)
    list(APPEND ARG_SOURCES ${found})
  endforeach()
  add_executable(${name} ${ARG_SOURCES})
  if(ARG_MAIN)
    target_link_libraries(${name} PRIVATE tovik_test_main_${ARG_MAIN})
  endif()
  if(TOVIK_SANITIZE MATCHES thread)
    target_sources(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/SanitizedThreads.cpp)
  endif()
  # Each contract has a World of its own.
  if(ARG_KIND STREQUAL contract)
    set_target_properties(${name} PROPERTIES UNITY_BUILD OFF)
  endif()
  tovik_test_flags(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  if(ARG_LINKS MATCHES "tovik_(linux|ui)|Qt6::Widgets")
    target_precompile_headers(${name} REUSE_FROM tovik_test_qt_headers)
  else()
    target_precompile_headers(${name} REUSE_FROM tovik_test_headers)
  endif()
  if(ARG_STAGED)
    add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/tools/stage -- $<TARGET_FILE:${name}>)
  else()
    add_test(NAME ${name} COMMAND ${name})
  endif()
  set_tests_properties(${name} PROPERTIES LABELS ${ARG_KIND})
  if(ARG_SECONDS)
    set_tests_properties(${name} PROPERTIES COST ${ARG_SECONDS})
  endif()
endfunction()
