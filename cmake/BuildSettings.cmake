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
target_compile_options(
  BuildSettings
  INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
            $<$<BOOL:${RVF_WARNINGS_AS_ERRORS}>:-Werror>
            "$<$<BOOL:${RVF_SANITIZE}>:-fsanitize=${RVF_SANITIZE};-fno-omit-frame-pointer;-fno-sanitize-recover=all>")
target_link_options(BuildSettings INTERFACE
                    "$<$<BOOL:${RVF_SANITIZE}>:-fsanitize=${RVF_SANITIZE}>")
target_link_libraries(BuildSettings INTERFACE Threads::Threads)
