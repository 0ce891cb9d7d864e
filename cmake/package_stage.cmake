# Run by CPack on the installed tree, before it becomes a package: what Debian wants besides.
set(share "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share")
set(documents "${share}/doc/${CPACK_PACKAGE_NAME}")

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE output)
  set(output "${output}" PARENT_SCOPE)
endfunction()

# The day of the release, in the changelog's form.
run(date --utc --rfc-email "--date=${CPACK_TABELION_RELEASE_DATE}")
string(STRIP "${output}" CPACK_TABELION_RELEASE_TIME)
configure_file("${CPACK_TABELION_DEBIAN_DIR}/changelog.in" "${documents}/changelog.Debian" @ONLY)

# Libraries of which we compile the headers in ask that their notices go along. They are those of
# the very packages that were compiled.
configure_file("${CPACK_TABELION_DEBIAN_DIR}/copyright" "${documents}/copyright" COPYONLY NO_SOURCE_PERMISSIONS)
foreach(library libcli11-dev nlohmann-json3-dev libfmt-dev)
  set(notice "/usr/share/doc/${library}/copyright")
  if(NOT EXISTS "${notice}")
    message(FATAL_ERROR "The notice of ${library} is missing: ${notice}")
  endif()
  file(READ "${notice}" text)
  file(APPEND "${documents}/copyright" "\n---- ${library}\n\n${text}")
endforeach()

configure_file("${CPACK_TABELION_DEBIAN_DIR}/lintian-overrides"
               "${share}/lintian/overrides/${CPACK_PACKAGE_NAME}" COPYONLY NO_SOURCE_PERMISSIONS)

# Debian's zsh looks here.
file(MAKE_DIRECTORY "${share}/zsh")
file(RENAME "${share}/zsh/site-functions" "${share}/zsh/vendor-completions")

file(GLOB compressed "${share}/man/man1/*.1")
run(gzip --best --no-name --force ${compressed} "${documents}/changelog.Debian")
