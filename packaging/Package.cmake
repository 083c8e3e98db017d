# Debian packages: vigil, vigil-window with Qt, and vigil-dev for people who build plug-ins. `scripts/package.sh` makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vigil)
set(CPACK_PACKAGE_VENDOR Vigil)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Folders that only the package makes have the usual rights, whatever the builder's umask is.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
    WORLD_READ WORLD_EXECUTE)
# Man pages and the changelog are packed as the distribution wants them, and every time is SOURCE_DATE_EPOCH's.
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_SOURCE_DIR}/Stage.cmake")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program kit plugins dev)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENT_PROGRAM_GROUP vigil)
set(CPACK_COMPONENT_KIT_GROUP vigil)
set(CPACK_COMPONENT_PLUGINS_GROUP vigil)
set(CPACK_COMPONENT_DEV_GROUP vigil-dev)
if(VIGIL_DESKTOP)
    # A package of its own, so that a server gets no Qt.
    list(APPEND CPACK_COMPONENTS_ALL window)
    set(CPACK_COMPONENT_WINDOW_GROUP vigil-window)
endif()

set(VIGIL_MAINTAINER "Vigil maintainers <maintainers@vigil.invalid>" CACHE STRING
    "Whom the package names: Name <address>")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${VIGIL_MAINTAINER}")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_VIGIL_PACKAGE_NAME vigil)
set(CPACK_DEBIAN_VIGIL_PACKAGE_SECTION science)
set(CPACK_DEBIAN_VIGIL_DESCRIPTION
    "monitors of measuring stations
Vigil watches the readings of measuring stations. A monitor judges a
condition on every batch of readings that a station sends, and acts when
it holds: it runs a script, plays a sound, speaks, sends mail and short
messages.

The package holds the command, a service that is off until it is enabled,
and the monitor's module.")
set(CPACK_DEBIAN_VIGIL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_VIGIL_PACKAGE_RECOMMENDS "tzdata, espeak-ng")
set(CPACK_DEBIAN_VIGIL_PACKAGE_SUGGESTS "mosquitto, rtl-433, gammu-smsd, default-mta | mail-transport-agent")
set(scripts "${CMAKE_CURRENT_SOURCE_DIR}/debian")
# Whatever is linked with the kit needs the package of this very version.
file(WRITE "${PROJECT_BINARY_DIR}/packaging/shlibs" "libvigilkit ${PROJECT_VERSION_MAJOR} vigil (= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_VIGIL_PACKAGE_CONTROL_EXTRA "${scripts}/postinst;${scripts}/prerm;${scripts}/postrm;${scripts}/triggers;${PROJECT_BINARY_DIR}/packaging/shlibs")
set(CPACK_DEBIAN_VIGIL_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_VIGIL-WINDOW_PACKAGE_NAME vigil-window)
set(CPACK_DEBIAN_VIGIL-WINDOW_PACKAGE_SECTION science)
set(CPACK_DEBIAN_VIGIL-WINDOW_DESCRIPTION
    "monitors of measuring stations, the window
The desktop window of Vigil: stations, readings, monitors with their
editors, charts of when a condition would have fired, and the ledger of
what was done.")
set(CPACK_DEBIAN_VIGIL-WINDOW_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_VIGIL-WINDOW_PACKAGE_DEPENDS "vigil (= ${PROJECT_VERSION}), libqt6svg6")
set(CPACK_DEBIAN_VIGIL-WINDOW_PACKAGE_RECOMMENDS "fonts-inter")

set(CPACK_DEBIAN_VIGIL-DEV_PACKAGE_NAME vigil-dev)
set(CPACK_DEBIAN_VIGIL-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_VIGIL-DEV_DESCRIPTION
    "plug-ins for Vigil: headers and CMake package
What a plug-in for Vigil is built with, an example of twenty lines, and a
plug-in that tells whether a host keeps the contract.")
set(CPACK_DEBIAN_VIGIL-DEV_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_VIGIL-DEV_PACKAGE_DEPENDS "vigil (= ${PROJECT_VERSION})")
include(CPack)
