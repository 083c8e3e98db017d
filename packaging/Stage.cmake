# Run by CPack on what it has staged, before it makes the packages of it.
file(GLOB packed LIST_DIRECTORIES false "${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/man*/*.[0-9]"
     "${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/vigil/changelog")
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
