# Run at install time with UNITS (the folder of the templates) and MADE (where to write): units name the program by
# its whole path, which is known only now (cmake --install --prefix, or the package's /usr).
foreach(scope system user)
    if(scope STREQUAL "system")
        set(template "${UNITS}/vigil.service.in")
    else()
        set(template "${UNITS}/user/vigil.service.in")
    endif()
    configure_file("${template}" "${MADE}/${scope}/vigil.service" @ONLY)
    file(INSTALL "${MADE}/${scope}/vigil.service" DESTINATION "${CMAKE_INSTALL_PREFIX}/lib/systemd/${scope}")
endforeach()
