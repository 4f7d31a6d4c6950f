# SPDX-License-Identifier: GPL-3.0-or-later
include(GoogleTest)

# kestrune_library(NAME
#   HEADERS a.h ...      headers that other targets may include; each is checked to compile alone
#   SOURCES a.cpp ...
#   PUBLIC  lib ...      what the headers need
#   PRIVATE lib ...)     what only the sources need
#
# The only include path of a library is its own folder (and the folders of its HEADERS), so that a header is
# found only by targets that link the library: an include against the layering does not compile.
function(kestrune_library NAME)
  cmake_parse_arguments(ARG "" "" "HEADERS;SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${NAME} STATIC)
  set(dirs "${CMAKE_CURRENT_SOURCE_DIR}")
  foreach(header IN LISTS ARG_HEADERS)
    get_filename_component(dir "${CMAKE_CURRENT_SOURCE_DIR}/${header}" DIRECTORY)
    list(APPEND dirs "${dir}")
  endforeach()
  list(REMOVE_DUPLICATES dirs)
  target_sources(${NAME} PRIVATE ${ARG_SOURCES}
    PUBLIC FILE_SET HEADERS BASE_DIRS ${CMAKE_CURRENT_SOURCE_DIR} FILES ${ARG_HEADERS})
  target_include_directories(${NAME} PUBLIC ${dirs})
  target_link_libraries(${NAME} PUBLIC ${ARG_PUBLIC} PRIVATE kestrune_settings ${ARG_PRIVATE})
  set_target_properties(${NAME} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()

# kestrune_gtest(NAME SOURCES a_test.cpp ... LIBS lib ...): a GoogleTest program, each case known to CTest.
function(kestrune_gtest NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${NAME} ${ARG_SOURCES})
  target_link_libraries(${NAME} PRIVATE kestrune_settings ${ARG_LIBS} test_support GTest::gtest GTest::gmock test_main)
  # Fixtures in anonymous namespaces are private to their file, which a unity build hides from the compiler.
  target_compile_options(${NAME} PRIVATE -Wno-subobject-linkage)
  gtest_discover_tests(${NAME} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_FONT_DPI=96")
endfunction()

# kestrune_qtest(SOURCE LIBS lib ...): a Qt Test program of one file that ends with QTEST_MAIN and its moc include.
function(kestrune_qtest SOURCE)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  get_filename_component(name "${SOURCE}" NAME_WE)
  add_executable(${name} ${SOURCE})
  target_link_libraries(${name} PRIVATE kestrune_settings ${ARG_LIBS} test_support Qt6::Test)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_FONT_DPI=96")
endfunction()
