# What every target of this project is compiled with, and the one way to add a library of a folder.

add_library(tabelion_options INTERFACE)
target_include_directories(tabelion_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_definitions(tabelion_options INTERFACE TABELION_VERSION="${PROJECT_VERSION}")
target_compile_options(tabelion_options INTERFACE
  -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Werror=switch
  # g++ 12 sees overlaps in std::string's own copying when it optimises; there are none.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  # GoogleTest's own macros trip these two, so tests go without them.
  $<$<NOT:$<BOOL:$<TARGET_PROPERTY:TABELION_TEST>>>:-Wshadow;-Wconversion;-Wno-sign-conversion>
  $<$<BOOL:${TABELION_WERROR}>:-Werror>)

tabelion_precompiled(tabelion_std_headers
  HEADERS ${TABELION_STD_HEADERS} <fmt/format.h>
  LIBRARIES fmt::fmt)
tabelion_precompiled(tabelion_json_headers
  HEADERS ${TABELION_STD_HEADERS} <fmt/format.h> <nlohmann/json.hpp>
  LIBRARIES fmt::fmt nlohmann_json::nlohmann_json)

# tabelion_library(engine SOURCES a.cpp b.cpp USES platform …)
# One static library per folder. USES are the folders that this one may include from; the link
# lines are the layering, so an include that runs against them does not compile or link. HEADERS is
# the set of precompiled headers (precompiled.cmake) that its files see, or none.
function(tabelion_library name)
  cmake_parse_arguments(ARG "" "HEADERS" "SOURCES;USES;LIBRARIES" ${ARGN})
  add_library(tabelion_${name} STATIC ${ARG_SOURCES})
  if(NOT ARG_HEADERS)
    set(ARG_HEADERS tabelion_std_headers)
  endif()
  if(NOT ARG_HEADERS STREQUAL none)
    tabelion_use_precompiled(tabelion_${name} ${ARG_HEADERS})
  endif()
  target_link_libraries(tabelion_${name} PUBLIC tabelion_options ${ARG_LIBRARIES})
  foreach(used IN LISTS ARG_USES)
    target_link_libraries(tabelion_${name} PUBLIC tabelion_${used})
  endforeach()
endfunction()
