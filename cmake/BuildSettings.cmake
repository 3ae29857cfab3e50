# SPDX-License-Identifier: Apache-2.0
# Compiler settings that hold for every target of this project.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

find_package(Threads REQUIRED)

add_library(BuildSettings INTERFACE)
target_compile_options(BuildSettings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
target_link_libraries(BuildSettings INTERFACE Threads::Threads)

# rvf_precompile(<target> <header>...): halves a build from nothing.
function(rvf_precompile target)
  if(RVF_PRECOMPILE_HEADERS)
    target_precompile_headers(${target} PRIVATE ${ARGN})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      # False alarms of the optimizer, which then does not know the library's code as a system's.
      target_compile_options(${target} PRIVATE -Wno-array-bounds -Wno-stringop-overflow)
    endif()
  endif()
endfunction()

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # False alarms of the optimizer: on "text" + std::string (https://gcc.gnu.org/PR105651), and on
  # ordering std::vector<std::byte>.
  target_compile_options(BuildSettings INTERFACE -Wno-restrict -Wno-stringop-overread)
endif()
if(RVF_WARNINGS_AS_ERRORS)
  target_compile_options(BuildSettings INTERFACE -Werror)
endif()
if(RVF_SANITIZE)
  target_compile_options(BuildSettings INTERFACE -fsanitize=${RVF_SANITIZE} -fno-omit-frame-pointer
                                                 -fno-sanitize-recover=all)
  target_link_options(BuildSettings INTERFACE -fsanitize=${RVF_SANITIZE})
endif()
