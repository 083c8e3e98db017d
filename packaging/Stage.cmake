# Run by CPack on what it has staged, before it makes the packages of it.
# The changelog that the distribution's tools read; what has changed stands in CHANGELOG.md.
set(now)
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    set(now --date=@$ENV{SOURCE_DATE_EPOCH})
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C date --utc --rfc-email ${now} OUTPUT_VARIABLE date
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(GLOB documents LIST_DIRECTORIES true "${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/vigil*")
foreach(folder IN LISTS documents)
    get_filename_component(package "${folder}" NAME)
    file(WRITE "${folder}/changelog" "${package} (${CPACK_PACKAGE_VERSION}) stable; urgency=medium\n\n"
         "  * /usr/share/doc/vigil/CHANGELOG.md tells what is new.\n\n -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${date}\n")
endforeach()

file(GLOB packed LIST_DIRECTORIES false "${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/man*/*.[0-9]"
     "${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/vigil*/changelog")
foreach(file IN LISTS packed)
    # -n: without the name and the time of the file
    execute_process(COMMAND gzip -9 -n "${file}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
# The licence is on every Debian system, and the copyright file says where.
file(GLOB licences "${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/vigil/LICENSE")
if(licences)
    file(REMOVE ${licences})
endif()
# Where an administrator puts the scripts that the service runs.
file(GLOB trees LIST_DIRECTORIES true "${CPACK_TEMPORARY_DIRECTORY}/*/usr/lib/systemd")
foreach(tree IN LISTS trees)
    file(MAKE_DIRECTORY "${tree}/../../../etc/vigil/scripts")
endforeach()
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND find "${CPACK_TEMPORARY_DIRECTORY}" -exec touch --no-dereference
                            "--date=@$ENV{SOURCE_DATE_EPOCH}" {} + COMMAND_ERROR_IS_FATAL ANY)
endif()
