# Installs the build tree BUILD_DIR below WORK_DIR and builds and runs a client's project against
# it. CXX and CXX_FLAGS are those of the build tree: sanitizers must agree on both sides.
#
#   cmake -DBUILD_DIR=... -DWORK_DIR=... -DPROJECT_DIR=... -DCXX=... -DCXX_FLAGS=... -P consume.cmake

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix")
# Another place than the one that was installed to: nothing may depend on where the prefix is.
file(RENAME "${WORK_DIR}/prefix" "${WORK_DIR}/moved")
run("${CMAKE_COMMAND}" -S "${PROJECT_DIR}" -B "${WORK_DIR}/build" -G Ninja
    "-DCMAKE_PREFIX_PATH=${WORK_DIR}/moved" "-DCMAKE_CXX_COMPILER=${CXX}"
    "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
run("${CMAKE_COMMAND}" --build "${WORK_DIR}/build")
run("${WORK_DIR}/build/consumer")

# The tool finds its libraries and its translations there, too.
if(EXISTS "${WORK_DIR}/moved/bin/rvf")
  execute_process(COMMAND "${CMAKE_COMMAND}" -E env LC_ALL=de_DE.UTF-8
                          "${WORK_DIR}/moved/bin/rvf" expiry 1325 ERROR_VARIABLE problem)
  if(NOT problem MATCHES "Ablaufmonat '13'")
    message(FATAL_ERROR "the installed tool does not speak German: ${problem}")
  endif()
endif()
