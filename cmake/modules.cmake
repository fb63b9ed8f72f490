# The modules of src/ and what each may use. tools/layers reads the same calls and
# refuses an include that they do not allow, so this is the one table of the architecture.

# wegslot_module(NAME
#   FILES ...      headers and sources, relative to src/
#   TESTS ...      unit tests of the module, beside the code
#   USES ...       modules whose headers may be included (and what they use in turn)
#   LIBRARIES ...  external libraries, seen by this module's sources only)
function(wegslot_module name)
  cmake_parse_arguments(arg "" "" "FILES;TESTS;USES;LIBRARIES" ${ARGN})
  set(uses ${arg_USES})
  list(TRANSFORM uses PREPEND wegslot_)

  set(sources ${arg_FILES})
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  if(sources)
    add_library(wegslot_${name} STATIC ${arg_FILES})
    target_link_libraries(wegslot_${name} PUBLIC ${uses} PRIVATE wegslot_options ${arg_LIBRARIES})
    target_include_directories(wegslot_${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  else()
    add_library(wegslot_${name} INTERFACE)
    target_sources(wegslot_${name} PRIVATE ${arg_FILES})
    target_link_libraries(wegslot_${name} INTERFACE ${uses})
    target_include_directories(wegslot_${name} INTERFACE "${PROJECT_SOURCE_DIR}/src")
  endif()

  if(BUILD_TESTING AND arg_TESTS)
    wegslot_test(${name}_test
      LABEL unit FILES ${arg_TESTS} USES ${name} support LIBRARIES ${arg_LIBRARIES})
  endif()
endfunction()

# wegslot_program(NAME OUTPUT ... FILES ... USES ... LIBRARIES ...)
function(wegslot_program name)
  cmake_parse_arguments(arg "" "OUTPUT" "FILES;USES;LIBRARIES" ${ARGN})
  set(uses ${arg_USES})
  list(TRANSFORM uses PREPEND wegslot_)
  add_executable(${name} ${arg_FILES})
  target_link_libraries(${name} PRIVATE wegslot_options ${uses} ${arg_LIBRARIES})
  target_compile_definitions(${name} PRIVATE
    WEGSLOT_VERSION="${PROJECT_VERSION}" WEGSLOT_BUILD=${WEGSLOT_BUILD})
  set_target_properties(${name} PROPERTIES
    OUTPUT_NAME ${arg_OUTPUT}
    RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
endfunction()

# The tests that need nothing but a processor, and those of them that are without Qt.
add_custom_target(pure_tests)
add_custom_target(core_tests)

# There are a hundred programs of tests, and this linker takes half the time of the usual one. (It
# complains of what the address sanitizer leaves to link.)
find_program(WEGSLOT_GOLD ld.gold)

# What nearly every test includes, read once for all of them. A program, because it has to be compiled
# as they are; it is never built itself.
function(wegslot_shared_test_headers)
  if(TARGET wegslot_test_headers)
    return()
  endif()
  file(WRITE "${PROJECT_BINARY_DIR}/test_headers.cpp" "int main() {}\n")
  add_executable(wegslot_test_headers EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/test_headers.cpp")
  target_link_libraries(wegslot_test_headers PRIVATE wegslot_options GTest::gtest_main)
  target_compile_options(wegslot_test_headers PRIVATE $<$<CONFIG:RelWithDebInfo>:-O0>)
  target_precompile_headers(wegslot_test_headers PRIVATE
    <gtest/gtest.h> <algorithm> <array> <chrono> <filesystem> <fstream> <functional> <map> <memory>
    <optional> <set> <sstream> <string> <string_view> <utility> <variant> <vector>)
endfunction()

# wegslot_test(NAME LABEL ... FILES ... USES ... LIBRARIES ... [WRAPPER command ...] [ALONE] [ANYTIME])
# Each TEST is a ctest test of its own; WRAPPER starts the real parts that the tests talk to. Tests
# that need nothing but a processor run beside any others, those with real parts one at a time, and
# beside one that is ALONE nothing runs: it sees the whole machine, or needs all of it. One that is good
# at ANYTIME has real parts and shares none with others.
function(wegslot_test name)
  cmake_parse_arguments(arg "ALONE;ANYTIME" "LABEL;TIMEOUT" "FILES;USES;LIBRARIES;WRAPPER" ${ARGN})
  set(uses ${arg_USES})
  list(TRANSFORM uses PREPEND wegslot_)
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  add_executable(${name} ${arg_FILES})
  target_link_libraries(${name} PRIVATE wegslot_options ${uses} ${arg_LIBRARIES} GTest::gtest_main)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  if(WEGSLOT_GOLD AND NOT WEGSLOT_SANITIZE)
    target_link_options(${name} PRIVATE -fuse-ld=gold)
  endif()
  # A test is compiled more often than it is run: optimising it would double the time of a build.
  if(NOT arg_LABEL STREQUAL "properties")
    target_compile_options(${name} PRIVATE $<$<CONFIG:RelWithDebInfo>:-O0>)
  endif()
  set(has_qt OFF)
  if("${name};${uses};${arg_LIBRARIES}" MATCHES "qt|Qt" OR arg_LABEL STREQUAL "interface")
    set(has_qt ON)
  endif()
  # Qt has its users compiled otherwise than the headers are.
  if(NOT has_qt AND NOT arg_LABEL STREQUAL "properties")
    wegslot_shared_test_headers()
    target_precompile_headers(${name} REUSE_FROM wegslot_test_headers)
    # Where another library does too, GCC reads the headers themselves.
    set_target_properties(${name} PROPERTIES PCH_WARN_INVALID OFF)
  endif()
  if(arg_WRAPPER)
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR "${arg_WRAPPER}")
  endif()
  set(company RESOURCE_LOCK real_parts)
  if(arg_LABEL MATCHES "^(unit|properties|scenarios)$")
    add_dependencies(pure_tests ${name})
    if(NOT has_qt AND NOT name MATCHES "controller") # which is a tool of the tests
      add_dependencies(core_tests ${name})
    endif()
    set(company)
  endif()
  if(arg_ANYTIME)
    set(company)
  endif()
  if(arg_ALONE)
    set(company RUN_SERIAL ON)
  endif()
  gtest_discover_tests(${name}
    TEST_PREFIX "${arg_LABEL}/"
    DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS "${arg_LABEL}" TIMEOUT ${arg_TIMEOUT} ${company})
endfunction()
