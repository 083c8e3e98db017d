# vigil_add_plugin: a plug-in bundle for hosts of the contract, in this tree and with the installed kit alike.
#
#   vigil_add_plugin(TARGET sources...
#       IDENTIFIER reverse.domain.name    VERSION text-that-people-see    BUNDLE_VERSION integer
#       CLASSES class...                  the classes of the module's table
#       [NAME folder]                     of the bundle and its library; TARGET unless given
#       [RESOURCES file...]               copied into the bundle's Resources/
#       [EXPORTS symbol...]               further C symbols beside the entry; nothing else is visible
#       [LIBRARIES target...]             VigilKit::vigilkit unless given
#       [COMPONENT name]                  of the installation; plugins unless given
#       [NO_INSTALL])
#
# The bundle is ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/vigil/NAME and installs into ${CMAKE_INSTALL_LIBDIR}/vigil.
# Its Info.json says what the compiler makes of VIGIL_ABI and the contract's version, so that a host can refuse
# the bundle before it loads the code.
include(GNUInstallDirs)

# vigil_contract_probe(PREFIX): sets PREFIX_ABI, PREFIX_MAJOR and PREFIX_MINOR as the compiler sees them with
# the flags of this build. VIGIL_KIT_INCLUDE_DIRS are the kit's headers, VIGIL_SANITIZE its sanitizers.
function(vigil_contract_probe prefix)
    set(probe "${CMAKE_CURRENT_BINARY_DIR}/vigil_contract_probe.cpp")
    file(WRITE "${probe}" "#include \"host_contract/Module.hpp\"\nvigil_probe_abi VIGIL_ABI\n")
    string(TOUPPER "${CMAKE_BUILD_TYPE}" configuration)
    separate_arguments(flags UNIX_COMMAND "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${configuration}}")
    if(VIGIL_SANITIZE)
        list(APPEND flags -fsanitize=${VIGIL_SANITIZE})
    endif()
    list(TRANSFORM VIGIL_KIT_INCLUDE_DIRS PREPEND "-I" OUTPUT_VARIABLE includes)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} ${flags} -std=c++20 ${includes} -E -P "${probe}"
                    OUTPUT_VARIABLE text ERROR_VARIABLE complaint RESULT_VARIABLE status)
    if(NOT status EQUAL 0 OR NOT text MATCHES "vigil_probe_abi ([^\n]*)")
        message(FATAL_ERROR "vigil_add_plugin: the contract cannot be read with ${CMAKE_CXX_COMPILER}: ${complaint}")
    endif()
    # The texts that the compiler would join: "gnu cxx11=" "1" " sanitizer="...
    string(REGEX REPLACE "\" *\"" "" abi "${CMAKE_MATCH_1}")
    string(REGEX REPLACE "^ *\"|\" *$" "" abi "${abi}")
    foreach(part Major Minor)
        if(NOT text MATCHES "kContract${part} = ([0-9]+)")
            message(FATAL_ERROR "vigil_add_plugin: host_contract/Module.hpp states no kContract${part}")
        endif()
        string(TOUPPER ${part} upper)
        set(${prefix}_${upper} "${CMAKE_MATCH_1}" PARENT_SCOPE)
    endforeach()
    set(${prefix}_ABI "${abi}" PARENT_SCOPE)
endfunction()

# vigil_write_info(FILE IDENTIFIER VERSION BUNDLE_VERSION classes...)
function(vigil_write_info file identifier version bundle_version)
    foreach(text IN ITEMS "${identifier}" "${version}" ${ARGN})
        if(NOT text MATCHES "^[^\"\\]+$")
            message(FATAL_ERROR "vigil_add_plugin: \"${text}\" cannot stand in an Info.json")
        endif()
    endforeach()
    if(NOT bundle_version MATCHES "^[0-9]+$")
        message(FATAL_ERROR "vigil_add_plugin: BUNDLE_VERSION has to be an integer")
    endif()
    vigil_contract_probe(contract)
    list(TRANSFORM ARGN REPLACE "(.+)" "\"\\1\"" OUTPUT_VARIABLE classes)
    list(JOIN classes ", " classes)
    file(CONFIGURE OUTPUT "${file}" @ONLY CONTENT [[{
  "identifier": "@identifier@",
  "CFBundleShortVersionString": "@version@",
  "bundleVersion": @bundle_version@,
  "contract": {"major": @contract_MAJOR@, "minor": @contract_MINOR@},
  "abi": "@contract_ABI@",
  "classes": [@classes@]
}
]])
endfunction()

function(vigil_add_plugin target)
    cmake_parse_arguments(arg "NO_INSTALL" "NAME;IDENTIFIER;VERSION;BUNDLE_VERSION;COMPONENT"
                          "CLASSES;RESOURCES;EXPORTS;LIBRARIES" ${ARGN})
    foreach(needed IDENTIFIER VERSION BUNDLE_VERSION CLASSES UNPARSED_ARGUMENTS)
        if(NOT DEFINED arg_${needed})
            message(FATAL_ERROR "vigil_add_plugin(${target}): ${needed} is missing")
        endif()
    endforeach()
    if(NOT arg_NAME)
        set(arg_NAME ${target})
    endif()
    if(NOT arg_COMPONENT)
        set(arg_COMPONENT ${arg_COMPONENT})
    endif()
    if(NOT arg_LIBRARIES)
        set(arg_LIBRARIES VigilKit::vigilkit)
    endif()
    set(above "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
    if(NOT above)
        set(above "${CMAKE_CURRENT_BINARY_DIR}")
    endif()
    set(bundle "${above}/vigil/${arg_NAME}")

    add_library(${target} MODULE ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${target} PRIVATE ${arg_LIBRARIES})
    target_compile_features(${target} PRIVATE cxx_std_20)

    set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}.exports")
    list(JOIN arg_EXPORTS "; " exports)
    set(exports "vigilPlugInModule; ${exports}")
    string(REGEX REPLACE "; $" "" exports "${exports}")
    file(CONFIGURE OUTPUT "${script}" CONTENT "{\n  global: @exports@;\n  local: *;\n};\n" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:--version-script=${script}")
    set_target_properties(${target} PROPERTIES
        PREFIX "" SUFFIX ".so" OUTPUT_NAME "${arg_NAME}" LIBRARY_OUTPUT_DIRECTORY "${bundle}"
        CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON LINK_DEPENDS "${script}"
        INSTALL_RPATH "$ORIGIN/../..")

    vigil_write_info("${bundle}/Info.json" "${arg_IDENTIFIER}" "${arg_VERSION}" "${arg_BUNDLE_VERSION}"
                     ${arg_CLASSES})
    file(MAKE_DIRECTORY "${bundle}/Resources")
    set(copies)
    set(originals)
    foreach(resource IN LISTS arg_RESOURCES)
        get_filename_component(original "${resource}" ABSOLUTE)
        get_filename_component(name "${resource}" NAME)
        set(copy "${bundle}/Resources/${name}")
        add_custom_command(OUTPUT "${copy}" COMMAND ${CMAKE_COMMAND} -E copy "${original}" "${copy}"
                           DEPENDS "${original}" VERBATIM)
        list(APPEND copies "${copy}")
        list(APPEND originals "${original}")
    endforeach()
    target_sources(${target} PRIVATE ${copies})

    if(NOT arg_NO_INSTALL)
        set(place "${CMAKE_INSTALL_LIBDIR}/vigil/${arg_NAME}")
        install(TARGETS ${target} LIBRARY DESTINATION "${place}" COMPONENT ${arg_COMPONENT})
        install(FILES "${bundle}/Info.json" DESTINATION "${place}" COMPONENT ${arg_COMPONENT})
        install(FILES ${originals} DESTINATION "${place}/Resources" COMPONENT ${arg_COMPONENT})
    endif()
endfunction()
