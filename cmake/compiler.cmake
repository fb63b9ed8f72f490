# How every translation unit of Wegslot is compiled. That warnings are errors is said by the presets, for
# who works on Wegslot: elsewhere a newer compiler's new warning would only be in the way.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

add_library(wegslot_options INTERFACE)
target_compile_options(wegslot_options INTERFACE
  -Wall -Wextra -Wpedantic
  -Wconversion -Wsign-conversion -Wold-style-cast -Wswitch-enum -Wcast-qual
  -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough
  -Wdouble-promotion -Wundef
  # Designated initializers leave out on purpose what has its neutral value.
  -Wno-missing-field-initializers
  # GCC 12 sees uninitialized parts in the variants of its own library once it optimises;
  # Clang, clang-tidy and the sanitizers look for real ones.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
  # At -O3 it sees overlaps where a literal and a string are joined, which later versions do not.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
  # Sources that are compiled together see each other's names, and look like headers to GCC. On their
  # own each is looked at by tools/check.
  $<$<NOT:$<BOOL:${CMAKE_UNITY_BUILD}>>:-Wshadow>
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<BOOL:${CMAKE_UNITY_BUILD}>>:-Wno-subobject-linkage>)
# Qt's bare words (signals, slots, emit) would take names that the C library uses.
target_compile_definitions(wegslot_options INTERFACE QT_NO_KEYWORDS)
target_include_directories(wegslot_options INTERFACE "${PROJECT_SOURCE_DIR}/src")

if(WEGSLOT_SANITIZE)
  target_compile_options(wegslot_options INTERFACE
    -fsanitize=${WEGSLOT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(wegslot_options INTERFACE -fsanitize=${WEGSLOT_SANITIZE})
endif()
