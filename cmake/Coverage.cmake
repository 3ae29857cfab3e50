# SPDX-License-Identifier: Apache-2.0
# Counts which lines of the libraries run, for scripts/coverage. Every process adds what it ran to a
# file for each library below profiles/, whatever its folder and its environment.

if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang" OR NOT BUILD_SHARED_LIBS)
  message(FATAL_ERROR "RVF_COVERAGE needs clang and shared libraries: use the asan preset.")
endif()

foreach(library IN ITEMS Platform RVFoundation)
  target_compile_options(
    ${library} PRIVATE -fcoverage-mapping
                       -fprofile-instr-generate=${PROJECT_BINARY_DIR}/profiles/%m.profraw)
  target_link_options(${library} PRIVATE -fprofile-instr-generate)
endforeach()
