# The translations in po/, compiled to where the program in the build folder looks for them, and
# installed.

find_program(MSGFMT msgfmt REQUIRED)

set(compiled)
foreach(language de en fr nl)
  set(catalogue "${PROJECT_BINARY_DIR}/share/locale/${language}/LC_MESSAGES/wegslot.mo")
  get_filename_component(folder "${catalogue}" DIRECTORY)
  file(MAKE_DIRECTORY "${folder}")
  add_custom_command(OUTPUT "${catalogue}"
    COMMAND "${MSGFMT}" --check --output-file "${catalogue}" "${PROJECT_SOURCE_DIR}/po/${language}.po"
    DEPENDS "${PROJECT_SOURCE_DIR}/po/${language}.po"
    VERBATIM)
  list(APPEND compiled "${catalogue}")
endforeach()
add_custom_target(catalogues DEPENDS ${compiled})
add_dependencies(wegslot catalogues)
