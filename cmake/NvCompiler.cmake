# Compiler settings that hold for every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

find_program(NV_CCACHE ccache)
if(NV_CCACHE)
  # Paths below the source folder are stored relative, so another clone hits the same cache.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1
      CCACHE_SLOPPINESS=pch_defines,time_macros "${NV_CCACHE}")
endif()

foreach(linker mold lld)
  find_program(NV_LINKER_${linker} NAMES ld.${linker} ${linker})
  if(NV_LINKER_${linker})
    add_link_options(-fuse-ld=${linker})
    break()
  endif()
endforeach()

option(NV_WERROR "Treat warnings as errors" ON)

# What most files read is compiled once, which saves a third of a cold build. Release builds and
# clang-tidy do without, so that a file that lacks an include is found.
set(NV_COMMON_HEADERS <algorithm> <array> <chrono> <cstdint> <filesystem> <functional> <map> <memory> <optional> <span>
                      <string> <string_view> <vector>)

add_library(nv_warnings INTERFACE)
target_compile_options(nv_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(NV_WERROR)
  target_compile_options(nv_warnings INTERFACE -Werror)
endif()

# g++ 12 sees overlapping copies in its own std::string, and with -O3 writes past the end of its own
# std::variant, where there are none. With precompiled headers it forgets which are the system's.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(nv_warnings INTERFACE -Wno-restrict)
  if(NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
    target_compile_options(nv_warnings INTERFACE -Wno-array-bounds)
  endif()
  target_compile_options(nv_warnings INTERFACE -Wno-stringop-overflow)
endif()
