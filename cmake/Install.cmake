# The kit: the shared library that every program and module here needs (component "kit"), and what is needed to build
# plug-ins elsewhere: the headers of its three rooms under one include folder, and find_package(VigilKit) (component
# "dev").
include(CMakePackageConfigHelpers)
set(package "${CMAKE_INSTALL_LIBDIR}/cmake/VigilKit")

install(TARGETS vigilkit LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT kit
        NAMELINK_COMPONENT dev)
install(DIRECTORY platform host_contract conditions DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/vigil" COMPONENT dev
        FILES_MATCHING PATTERN "*.hpp")
configure_package_config_file(cmake/VigilKitConfig.cmake.in "${PROJECT_BINARY_DIR}/VigilKitConfig.cmake"
    INSTALL_DESTINATION "${package}" PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/VigilKitConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/VigilKitConfig.cmake" "${PROJECT_BINARY_DIR}/VigilKitConfigVersion.cmake"
        cmake/PlugIn.cmake DESTINATION "${package}" COMPONENT dev)
