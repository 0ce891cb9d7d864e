# Headers that most files include, compiled once for all targets that are compiled alike. A file
# still includes what it uses: a build with TABELION_PRECOMPILED=OFF says whether it does.

set(TABELION_STD_HEADERS
  <algorithm> <array> <bitset> <cstdint> <cstring> <functional> <map> <memory> <optional> <span>
  <string> <string_view> <utility> <vector>)

# tabelion_precompiled(NAME HEADERS <a> … LIBRARIES …): a set of headers for others to use.
function(tabelion_precompiled name)
  if(NOT TABELION_PRECOMPILED)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "HEADERS;LIBRARIES" ${ARGN})
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "// Only the headers count.\n")
  add_library(${name} OBJECT ${source})
  target_link_libraries(${name} PRIVATE tabelion_options ${ARG_LIBRARIES})
  target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
endfunction()

function(tabelion_use_precompiled target name)
  if(TABELION_PRECOMPILED)
    target_precompile_headers(${target} REUSE_FROM ${name})
    # So that ccache can tell what was precompiled.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
  endif()
endfunction()
