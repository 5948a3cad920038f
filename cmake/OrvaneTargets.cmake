# The functions that make every target of the tree.
#
# A library sees only the headers of the libraries it links: each target publishes its headers through an include
# directory of its own (symbolic links in the build tree), so that an #include "audio/ring_buffer.h" compiles in a
# target only if that target links orvane_audio. The link lists are the architecture.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")

# The compiler cache serves every clone of the tree, because paths below its root are taken relative to it. Precompiled
# headers are cached too if the compiler keeps the preprocessed text separate from them.
find_program(ORVANE_CCACHE ccache)
if(ORVANE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime "${ORVANE_CCACHE}")
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
  endif()
endif()

set(ORVANE_SANITIZE "" CACHE STRING "Sanitizer to build with: address, thread or nothing")
set_property(CACHE ORVANE_SANITIZE PROPERTY STRINGS "" address thread)

option(ORVANE_FUZZ "Build the fuzzers for libFuzzer (needs clang)" OFF)

add_library(orvane_flags INTERFACE)
# Contraction would fuse a multiply and an add on some processors and not on others, and change the result.
target_compile_options(orvane_flags INTERFACE
  -ffp-contract=off -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
if(ORVANE_SANITIZE STREQUAL "address")
  set(orvane_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(ORVANE_SANITIZE STREQUAL "thread")
  set(orvane_sanitizers -fsanitize=thread -fno-omit-frame-pointer)
elseif(NOT ORVANE_SANITIZE STREQUAL "")
  message(FATAL_ERROR "ORVANE_SANITIZE is \"${ORVANE_SANITIZE}\"; it can be address, thread or empty.")
endif()
target_compile_options(orvane_flags INTERFACE ${orvane_sanitizers})
target_link_options(orvane_flags INTERFACE ${orvane_sanitizers})
if(orvane_sanitizers AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # The code that the sanitizers add causes false positives of this warning.
  target_compile_options(orvane_flags INTERFACE -Wno-maybe-uninitialized)
endif()
if(ORVANE_FUZZ)
  target_compile_options(orvane_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Qt requires it, and precompiled headers serve only sources with the same options.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Hardening that turns an error in reading untrusted bytes into an abort instead of an exploit. The sanitizers detect
# more than these options.
if(NOT orvane_sanitizers)
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
  target_compile_options(orvane_flags INTERFACE
    -fstack-protector-strong -fstack-clash-protection
    $<$<CONFIG:Release>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=3>)
  target_link_options(orvane_flags INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)
endif()

# orvane_compile_together(NAME COUNT): compiles COUNT sources of the target at a time, which reads their headers once.
# The compiler then takes the sources for headers and warns of classes with members of local types.
function(orvane_compile_together name count)
  set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${count})
  target_compile_options(${name} PRIVATE -Wno-subobject-linkage)
endfunction()

# The standard headers that most sources include, precompiled once for all libraries. Debug builds do not use them, so
# that the linters find a source that does not include what it uses.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  file(GENERATE OUTPUT "${CMAKE_BINARY_DIR}/orvane_headers.cpp" CONTENT "")
  add_library(orvane_headers OBJECT "${CMAKE_BINARY_DIR}/orvane_headers.cpp")
  target_link_libraries(orvane_headers PRIVATE orvane_flags)
  target_precompile_headers(orvane_headers PRIVATE <algorithm> <array> <atomic> <chrono> <cmath> <condition_variable>
    <filesystem> <fstream> <functional> <map> <memory> <mutex> <optional> <set> <span> <string> <string_view> <thread>
    <unordered_map> <utility> <variant> <vector>)
endif()

# orvane_library(NAME FOLDER [SOURCES ...] [LINK ...] [LINK_PRIVATE ...] [PRECOMPILE ...])
# SOURCES: without any, the library consists of headers; LINK: libraries that the folder's headers use; LINK_PRIVATE:
# libraries that only its sources use; PRECOMPILE: what to precompile instead of the shared headers, as
# target_precompile_headers takes it.
function(orvane_library name folder)
  cmake_parse_arguments(arg "" "" "SOURCES;LINK;LINK_PRIVATE;PRECOMPILE" ${ARGN})
  set(include_root "${CMAKE_BINARY_DIR}/include/${name}")
  orvane_publish("${folder}" "${include_root}")
  if(NOT arg_SOURCES)
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE "${include_root}")
    target_link_libraries(${name} INTERFACE ${arg_LINK})
    return()
  endif()
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC "${include_root}")
  target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE orvane_flags ${arg_LINK_PRIVATE})
  if(arg_PRECOMPILE)
    target_precompile_headers(${name} ${arg_PRECOMPILE})
  elseif(TARGET orvane_headers)
    target_precompile_headers(${name} REUSE_FROM orvane_headers)
  endif()
endfunction()

# orvane_publish(FOLDER ROOT): links the headers of a folder into an include root, and those of its subfolders that are
# no target of their own.
function(orvane_publish folder root)
  file(REMOVE_RECURSE "${root}/${folder}")
  file(MAKE_DIRECTORY "${root}/${folder}")
  file(GLOB entries CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" "${CMAKE_CURRENT_SOURCE_DIR}/*")
  foreach(entry IN LISTS entries)
    set(path "${CMAKE_CURRENT_SOURCE_DIR}/${entry}")
    if(entry MATCHES "\\.h$" OR (IS_DIRECTORY "${path}" AND NOT EXISTS "${path}/CMakeLists.txt"))
      file(CREATE_LINK "${path}" "${root}/${folder}/${entry}" SYMBOLIC)
    endif()
  endforeach()
endfunction()

# orvane_program(NAME SOURCES ... LINK ...)
function(orvane_program name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE orvane_flags ${arg_LINK})
  # Every program that lists effects starts it.
  if(NOT name STREQUAL orvane-scan)
    add_dependencies(${name} orvane-scan)
  endif()
endfunction()
