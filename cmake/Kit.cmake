# libvigilkit.so: the platform, the contract and the conditions as one shared library, so that a host and
# the modules it loads share one class registry and one set of type identities.
add_library(vigilkit SHARED $<TARGET_OBJECTS:vigil_platform> $<TARGET_OBJECTS:vigil_contract>
            $<TARGET_OBJECTS:vigil_conditions> $<TARGET_OBJECTS:vigil_conditions_editor>)
target_link_libraries(vigilkit PUBLIC vigil_strict Threads::Threads)
set_target_properties(vigilkit PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})

# What a folder above the kit links instead of the object libraries: the headers of each room, the code of
# the shared library. A room is seen only by whoever names it.
foreach(room platform contract conditions conditions_editor)
    add_library(vigil_${room}_kit INTERFACE)
    target_link_libraries(vigil_${room}_kit INTERFACE vigilkit)
    target_include_directories(vigil_${room}_kit INTERFACE
        $<TARGET_PROPERTY:vigil_${room},INTERFACE_INCLUDE_DIRECTORIES>)
endforeach()

# Where the compiler finds the kit's headers, for vigil_add_plugin.
set(VIGIL_KIT_INCLUDE_DIRS "${PROJECT_BINARY_DIR}/rooms/platform" "${PROJECT_BINARY_DIR}/rooms/host_contract"
    "${PROJECT_BINARY_DIR}/rooms/conditions")
include(cmake/PlugIn.cmake)
include(cmake/Install.cmake)
