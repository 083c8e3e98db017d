# Installs the kit into a folder of its own, builds the example plug-in against it as a stranger would, and
# runs the test program with the bundle that came of it.
#   cmake -DKIT_BUILD=... -DEXAMPLE=... -DWORK=... -DTEST_PROGRAM=... -DCOMPILER=... -DFLAGS=... -P Build.cmake
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "failed (${status}): ${ARGN}")
    endif()
endfunction()

file(REMOVE_RECURSE "${WORK}")
foreach(component kit dev)
    run(${CMAKE_COMMAND} --install "${KIT_BUILD}" --prefix "${WORK}/kit" --component ${component})
endforeach()
run(${CMAKE_COMMAND} -S "${EXAMPLE}" -B "${WORK}/build" -G Ninja "-DCMAKE_PREFIX_PATH=${WORK}/kit"
    "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_FLAGS=${FLAGS}" -DCMAKE_BUILD_TYPE=Debug)
run(${CMAKE_COMMAND} --build "${WORK}/build")
set(ENV{VIGIL_FOREIGN_BUNDLE} "${WORK}/build/vigil/TinyPlugIn")
run("${TEST_PROGRAM}")
