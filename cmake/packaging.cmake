# The Debian package, made by CPack from a build as it is: cpack --config BUILD/CPackConfig.cmake

set(TABELION_MAINTAINER "Tabelion developers <developers@tabelion.org>"
    CACHE STRING "Who answers for the package: name and mail address")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tabelion)
set(CPACK_PACKAGE_VENDOR "Tabelion developers")
set(CPACK_PACKAGE_CONTACT "${TABELION_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "personal databases that are worked with a few keys")
set(CPACK_PACKAGE_DESCRIPTION
"Tabelion keeps any number of databases: addresses, an inventory, expenses, a
film shelf. Each is one file with up to 100 typed fields and 65,000 records:
texts, numbers, choices from a list, check boxes, dates, times, notes, links to
records of other databases, and values calculated from other fields.
.
The window is the screen of the keypad phone that the program was made for: two
soft keys, the arrows, Enter and Back are enough for everything. Changes are
saved by themselves, and a file is replaced as a whole or not at all.
.
tabelion-cli works with the same files from the command line: it makes,
describes, fills, filters, sorts, changes, exports and checks databases.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_SET_DESTDIR ON)  # files that name their place are written for the place, not for the stage
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION database)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "hicolor-icon-theme, fonts-dejavu-core | fonts-freefont-ttf, qt6-wayland, default-dbus-session-bus | dbus-session-bus")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# What only a package has is put beside what was installed.
set(CPACK_TABELION_DEBIAN_DIR "${PROJECT_SOURCE_DIR}/share/debian")
set(CPACK_TABELION_RELEASE_DATE "${TABELION_RELEASE_DATE}")
set(CPACK_TABELION_RELEASE_NOTE "${TABELION_RELEASE_NOTE}")
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/package_stage.cmake")

include(CPack)
