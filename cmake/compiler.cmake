# How every source of the project is compiled. Targets opt in by linking `quvex_options`, which is never exported.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Neighbouring words written one by one and read as a pair stall the processor, which the move loop does at every move.
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -fno-tree-slp-vectorize -DNDEBUG")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

find_program(ccache_program ccache)
if(ccache_program AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # What ccache must overlook to keep objects that use a precompiled header.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      env "CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime" "${ccache_program}")
endif()

set(common_headers <algorithm> <array> <cstdint> <functional> <map> <memory> <span> <sstream> <string> <vector>)

add_library(quvex_options INTERFACE)
target_compile_options(quvex_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion
  # A constructor's parameter may have the name of the field that it fills; clang allows just that under -Wshadow.
  $<IF:$<CXX_COMPILER_ID:GNU>,-Wshadow=local,-Wshadow>
  # As with GCC, where -Wconversion leaves the signs of indices alone.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>
  # A run is a function of its seed on every machine: no fused multiply-add behind our back.
  -ffp-contract=off
  # Failures name their source relative to the project, such as "src/api/qvmodel.cpp".
  "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # Warns of overlapping copies inside "literal" + std::string, where there are none (GCC bug 105651).
  target_compile_options(quvex_options INTERFACE -Wno-restrict)
endif()
if(QUVEX_PCH AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  target_compile_options(quvex_options INTERFACE -fpch-preprocess)
endif()
if(QUVEX_WERROR)
  target_compile_options(quvex_options INTERFACE -Werror)
endif()

if(QUVEX_SANITIZE)
  # Everything that is linked together is instrumented, the fuzz targets' library included.
  add_compile_options("-fsanitize=${QUVEX_SANITIZE}" -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options("-fsanitize=${QUVEX_SANITIZE}")
endif()

if(QUVEX_TIDY)
  find_program(clang_tidy_program NAMES clang-tidy clang-tidy-14 REQUIRED)
  set(CMAKE_CXX_CLANG_TIDY "${clang_tidy_program}" --quiet)
endif()
