# Code that the Wayland scanner writes from descriptions of protocols.

# wegslot_wayland_protocols(NAME file.xml ...)
# A library with <file>-client.h and <file>-server.h for each description: for the side that
# asks, and for the compositor that the tests play.
function(wegslot_wayland_protocols name)
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/${name}")
  file(MAKE_DIRECTORY "${folder}")
  foreach(description IN LISTS ARGN)
    cmake_path(GET description STEM protocol)
    set(base "${folder}/${protocol}")
    add_custom_command(
      OUTPUT "${base}.c" "${base}-client.h" "${base}-server.h"
      COMMAND "${WAYLAND_SCANNER}" private-code "${description}" "${base}.c"
      COMMAND "${WAYLAND_SCANNER}" client-header "${description}" "${base}-client.h"
      COMMAND "${WAYLAND_SCANNER}" server-header "${description}" "${base}-server.h"
      DEPENDS "${description}"
      VERBATIM)
    list(APPEND files "${base}.c" "${base}-client.h" "${base}-server.h")
  endforeach()
  add_library(${name} STATIC ${files})
  # As a system's headers, whose style is not ours to judge.
  target_include_directories(${name} SYSTEM PUBLIC "${folder}")
endfunction()
