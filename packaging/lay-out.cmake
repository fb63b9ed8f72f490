# Lays out Wegslot.app: cmake -DBUNDLE=... -DPROGRAM=... -DSTRIP=... -DVERSION=... -DBUILD=...
# [-DFEED_URL=... -DPUBLIC_KEY=...] -P lay-out.cmake. A script, so that the tests lay out bundles
# with the program that is built already.

foreach(needed BUNDLE PROGRAM STRIP VERSION BUILD)
  if("${${needed}}" STREQUAL "")
    message(FATAL_ERROR "lay-out.cmake: ${needed} is missing")
  endif()
endforeach()

# What is not configured is not in Info.json at all.
set(UPDATES "")
foreach(pair "WSUpdateFeedURL|${FEED_URL}" "WSUpdatePublicKey|${PUBLIC_KEY}")
  if(pair MATCHES "[\"\\]")
    message(FATAL_ERROR "lay-out.cmake: no quotes and backslashes in ${pair}")
  endif()
  if(pair MATCHES "^([^|]+)\\|(.+)$")
    string(APPEND UPDATES ",\n  \"${CMAKE_MATCH_1}\": \"${CMAKE_MATCH_2}\"")
  endif()
endforeach()

set(pieces "${CMAKE_CURRENT_LIST_DIR}")
file(REMOVE_RECURSE "${BUNDLE}")
file(MAKE_DIRECTORY "${BUNDLE}")
configure_file("${pieces}/Info.json.in" "${BUNDLE}/Info.json" @ONLY)
file(COPY "${pieces}/nl.wegslot.Wegslot.desktop" "${pieces}/../LICENSE"
  "${pieces}/installeer" DESTINATION "${BUNDLE}")
file(COPY "${pieces}/nl.wegslot.Wegslot.svg" DESTINATION "${BUNDLE}/icons")
# The catalogues lie beside the program in a build folder, and go with it.
get_filename_component(built "${PROGRAM}" DIRECTORY)
if(EXISTS "${built}/../share/locale")
  file(COPY "${built}/../share/locale" DESTINATION "${BUNDLE}/share")
endif()
execute_process(COMMAND "${STRIP}" -o "${BUNDLE}/wegslot" "${PROGRAM}" COMMAND_ERROR_IS_FATAL ANY)
