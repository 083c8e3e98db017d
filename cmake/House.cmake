# The house: one function a kind of room. Every folder of sources is one target, and a folder sees the
# headers of another only when its target links that other target, so an arrow that the design does not
# draw does not compile.

add_library(vigil_strict INTERFACE)
target_compile_features(vigil_strict INTERFACE cxx_std_20)
# An optimiser's guess is told, and keeps nobody from what is built to be used.
target_compile_options(vigil_strict INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                       $<$<NOT:$<CONFIG:Release>>:-Werror> -Wnon-virtual-dtor -Woverloaded-virtual)
if(VIGIL_SANITIZE)
    target_compile_options(vigil_strict INTERFACE -fsanitize=${VIGIL_SANITIZE} -fno-omit-frame-pointer
                           -fno-sanitize-recover=all)
    target_link_options(vigil_strict INTERFACE -fsanitize=${VIGIL_SANITIZE})
endif()
if(VIGIL_FUZZ)
    # The code under test counts its edges; only the fuzzers themselves are linked with one.
    target_compile_options(vigil_strict INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(VIGIL_COVERAGE)
    target_compile_options(vigil_strict INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(vigil_strict INTERFACE --coverage)
endif()

# house_root(TARGET FOLDER): an include root that holds FOLDER and nothing else.
function(house_root target folder)
    string(REPLACE "/" "_" flat "${folder}")
    set(root "${PROJECT_BINARY_DIR}/rooms/${flat}")
    get_filename_component(above "${root}/${folder}" DIRECTORY)
    file(MAKE_DIRECTORY "${above}")
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${folder}" "${root}/${folder}" SYMBOLIC)
    target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${root}>")
endfunction()

# house_folder(TARGET FOLDER [SEES targets...] [LIBRARIES targets...]): the folder's sources (tests apart)
# as an object library, a check that every header compiles alone, and its place among the include roots.
# SEES are folders of the house, LIBRARIES come from outside.
function(house_folder target folder)
    cmake_parse_arguments(arg "" "" "SEES;LIBRARIES" ${ARGN})
    set(here "${PROJECT_SOURCE_DIR}/${folder}")
    file(GLOB sources CONFIGURE_DEPENDS "${here}/*.cpp")
    list(FILTER sources EXCLUDE REGEX "(_test|_main)\\.cpp$")
    file(GLOB headers CONFIGURE_DEPENDS "${here}/*.hpp")
    add_library(${target} OBJECT ${sources} ${headers})
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX) # also for a folder of headers alone
    target_link_libraries(${target} PUBLIC vigil_strict ${arg_SEES} ${arg_LIBRARIES})
    house_root(${target} ${folder})
    if(VIGIL_CHECK_HEADERS)
        house_headers_alone(${target} ${folder} ${headers})
    endif()
endfunction()

# Every header as a translation unit of its own.
function(house_headers_alone target folder)
    set(units)
    foreach(header IN LISTS ARGN)
        get_filename_component(stem "${header}" NAME_WE)
        set(unit "${PROJECT_BINARY_DIR}/alone/${target}/${stem}.cpp")
        set(text "#include \"${folder}/${stem}.hpp\"\n#include \"${folder}/${stem}.hpp\"\n")
        file(CONFIGURE OUTPUT "${unit}" CONTENT "${text}" @ONLY)
        list(APPEND units "${unit}")
    endforeach()
    if(units)
        add_library(${target}_alone OBJECT ${units})
        target_link_libraries(${target}_alone PRIVATE ${target})
    endif()
endfunction()

# house_tests(NAME FOLDER targets...): the folder's *_test.cpp as one program, each case a ctest of its own.
# The time-out is for the long form under a sanitizer.
function(house_tests name folder)
    if(NOT VIGIL_TESTS)
        return()
    endif()
    file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${folder}/*_test.cpp")
    if(NOT sources)
        return()
    endif()
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE ${ARGN} vigil_strict GTest::gmock GTest::gtest_main)
    target_compile_definitions(${name} PRIVATE VIGIL_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
                               VIGIL_BINARY_DIR="${PROJECT_BINARY_DIR}")
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
    gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
endfunction()
