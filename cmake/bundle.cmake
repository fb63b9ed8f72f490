# The target `bundle`: Wegslot.app in the build folder, the application as one folder that can be put
# anywhere. Only a bundle with a feed and a public key updates itself; tools/release fills them in.

set(WEGSLOT_FEED_URL "" CACHE STRING "Where the bundle looks for updates; empty for nowhere")
set(WEGSLOT_PUBLIC_KEY "" CACHE STRING "Whose updates the bundle takes: base64 of an Ed25519 key")

add_custom_target(bundle
  COMMAND "${CMAKE_COMMAND}"
    "-DBUNDLE=${PROJECT_BINARY_DIR}/Wegslot.app"
    "-DPROGRAM=$<TARGET_FILE:wegslot>"
    "-DSTRIP=${CMAKE_STRIP}"
    "-DVERSION=${PROJECT_VERSION}"
    "-DBUILD=${WEGSLOT_BUILD}"
    "-DFEED_URL=${WEGSLOT_FEED_URL}"
    "-DPUBLIC_KEY=${WEGSLOT_PUBLIC_KEY}"
    -P "${PROJECT_SOURCE_DIR}/packaging/lay-out.cmake"
  DEPENDS wegslot
  COMMENT "Laying out Wegslot.app"
  VERBATIM)
