# SPDX-License-Identifier: MIT
# One strict target that every library, program and test links: the warnings and the Qt definitions
# are the same everywhere, so one precompiled header serves them all.

add_library(brindle_strict INTERFACE)
target_compile_features(brindle_strict INTERFACE cxx_std_20)
target_compile_options(brindle_strict INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
  -Wcast-align -Wunused -Wdouble-promotion -Wformat=2 -Wimplicit-fallthrough
  $<$<BOOL:${BRINDLE_WARNINGS_AS_ERRORS}>:-Werror>)
target_compile_definitions(brindle_strict INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_NO_URL_CAST_FROM_STRING
  QT_NO_CONTEXTLESS_CONNECT
  QT_NO_FOREACH
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_DISABLE_DEPRECATED_BEFORE=0x060400
  QT_MESSAGELOGCONTEXT)
target_include_directories(brindle_strict INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(brindle_strict INTERFACE Qt6::Core Qt6::Gui Qt6::Widgets Qt6::Sql Qt6::Network)
if(BRINDLE_SANITIZE)
  target_compile_options(brindle_strict INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer -g1)
  target_link_options(brindle_strict INTERFACE -fsanitize=address,undefined)
endif()

# The Qt headers are compiled once, here, and reused by every other target.
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/pch_anchor.cpp CONTENT "// carries the precompiled header\n")
add_library(brindle_pch OBJECT ${CMAKE_BINARY_DIR}/pch_anchor.cpp)
target_link_libraries(brindle_pch PRIVATE brindle_strict)
target_precompile_headers(brindle_pch PRIVATE <QtWidgets> <QtSql> <QtNetwork> <functional> <memory> <optional>)
set_target_properties(brindle_pch PROPERTIES AUTOMOC OFF AUTORCC OFF AUTOUIC OFF POSITION_INDEPENDENT_CODE ON)

function(brindle_configure_target target)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_precompile_headers(${target} REUSE_FROM brindle_pch)
endfunction()

# brindle_library(NAME SOURCES … LINKS …): one library per folder of src/. Shared ones let a single
# library be exchanged under programs that are built already.
if(BRINDLE_SHARED_LIBRARIES)
  set(brindle_library_type SHARED)
else()
  set(brindle_library_type STATIC)
endif()
function(brindle_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} ${brindle_library_type} ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC brindle_strict ${ARG_LINKS})
  brindle_configure_target(${name})
endfunction()
