# The modules of src/ and what each may use. tools/layers reads the same calls and
# refuses an include that they do not allow, so this is the one table of the architecture.

# wegslot_module(NAME
#   FILES ...      headers and sources, relative to src/
#   TESTS ...      unit tests of the module, beside the code
#   THREADED       the module starts threads: its tests are those for the thread sanitizer
#   USES ...       modules whose headers may be included (and what they use in turn)
#   LIBRARIES ...  external libraries, seen by this module's sources only)
function(wegslot_module name)
  cmake_parse_arguments(arg "THREADED" "" "FILES;TESTS;USES;LIBRARIES" ${ARGN})
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
    set(program core_tests)
    if(arg_THREADED)
      set(program thread_tests)
    endif()
    if("${name};${arg_USES};${arg_LIBRARIES}" MATCHES "qt|Qt")
      set(program qt_tests)
    endif()
    wegslot_tests(${program} LABEL unit
      FILES ${arg_TESTS} USES ${name} support LIBRARIES ${arg_LIBRARIES})
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

# The tests that need nothing but a processor.
add_custom_target(pure_tests)

# Test programs are linked often, and this linker takes half the time of the usual one. (It
# complains of what the address sanitizer leaves to link.)
find_program(WEGSLOT_GOLD ld.gold)

# wegslot_tests(PROGRAM LABEL ... FILES ... USES ... LIBRARIES ... [SUITES_FROM ...]
#               [DEFINITIONS ...] [DEPENDS ...] [LOCKS ...])
# Adds tests to a program, which the first call makes. Each suite is a ctest test, LABEL/Suite, in a
# process of its own; its results are left in results/ for tools/test-results.
#   SUITES_FROM  files whose suites come with a library
#   LOCKS        `desktop` for what has a screen, a sound server or a locker: one at a time; `lockers`
#                for what starts lockers and for what must not see any
# A program is linked as often as it has a file that changed, and compiled in few pieces: so few
# programs, each for the tests of one world.
function(wegslot_tests program)
  cmake_parse_arguments(arg "" "LABEL"
    "FILES;USES;LIBRARIES;SUITES_FROM;DEFINITIONS;DEPENDS;LOCKS" ${ARGN})
  set(uses ${arg_USES})
  list(TRANSFORM uses PREPEND wegslot_)
  if(NOT TARGET ${program})
    add_executable(${program})
    target_link_libraries(${program} PRIVATE wegslot_options GTest::gtest_main)
    target_include_directories(${program} PRIVATE "${PROJECT_SOURCE_DIR}")
    set_target_properties(${program} PROPERTIES
      UNITY_BUILD_MODE GROUP RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
    if(WEGSLOT_GOLD AND NOT WEGSLOT_SANITIZE)
      target_link_options(${program} PRIVATE -fuse-ld=gold)
    endif()
    # A test is compiled more often than it is run: optimising it would double the time of a build.
    if(NOT arg_LABEL STREQUAL "properties")
      target_compile_options(${program} PRIVATE $<$<CONFIG:RelWithDebInfo>:-O0>)
    endif()
    if(arg_LABEL MATCHES "^(unit|properties|scenarios)$")
      add_dependencies(pure_tests ${program})
    endif()
  endif()
  list(TRANSFORM arg_FILES PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  list(TRANSFORM arg_SUITES_FROM PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  target_sources(${program} PRIVATE ${arg_FILES})
  # What lies in one folder of src/, or of tests/, is compiled together.
  foreach(file IN LISTS arg_FILES)
    cmake_path(RELATIVE_PATH file BASE_DIRECTORY "${PROJECT_SOURCE_DIR}" OUTPUT_VARIABLE place)
    string(REGEX REPLACE "^[a-z]+/([a-z]+)/.*" "\\1" folder "${place}")
    set_source_files_properties("${file}" TARGET_DIRECTORY ${program} PROPERTIES UNITY_GROUP ${folder})
  endforeach()
  target_link_libraries(${program} PRIVATE ${uses} ${arg_LIBRARIES})
  target_compile_definitions(${program} PRIVATE ${arg_DEFINITIONS})
  if(arg_DEPENDS)
    add_dependencies(${program} ${arg_DEPENDS})
  endif()

  foreach(file IN LISTS arg_FILES arg_SUITES_FROM)
    # A suite that is new is found by configuring again.
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    file(STRINGS "${file}" lines REGEX "^TEST(_F|_P)?\\([A-Za-z0-9]+,")
    list(TRANSFORM lines REPLACE "^[A-Z_]+\\(([A-Za-z0-9]+),.*" "\\1")
    list(REMOVE_DUPLICATES lines)
    foreach(suite IN LISTS lines)
      set(test "${arg_LABEL}/${suite}")
      add_test(NAME ${test} COMMAND ${program} "--gtest_filter=${suite}.*:*/${suite}.*"
        "--gtest_output=xml:${PROJECT_BINARY_DIR}/results/${arg_LABEL}.${suite}.xml")
      # Only what hangs takes so long, on a machine with one busy processor too.
      set_tests_properties(${test} PROPERTIES LABELS ${arg_LABEL} TIMEOUT 1500)
      if(arg_LOCKS)
        set_tests_properties(${test} PROPERTIES RESOURCE_LOCK "${arg_LOCKS}")
      endif()
    endforeach()
  endforeach()
endfunction()
