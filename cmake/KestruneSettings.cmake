# SPDX-License-Identifier: GPL-3.0-or-later
# Language level, warnings, defines and sanitizers for all our own targets, in one interface target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(KESTRUNE_CCACHE ccache)
  if(KESTRUNE_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${KESTRUNE_CCACHE}")
  endif()
endif()

add_library(kestrune_settings INTERFACE)
target_compile_definitions(kestrune_settings INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_KEYWORDS QT_STRICT_ITERATORS)
target_compile_options(kestrune_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-qual -Woverloaded-virtual
  -Wformat=2 -Wimplicit-fallthrough -Werror)

if(KESTRUNE_SANITIZE)
  add_compile_options(-fsanitize=${KESTRUNE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${KESTRUNE_SANITIZE})
endif()
if(KESTRUNE_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()
