# What `cmake --install` lays down, for packagers: the programs and what makes a desktop, a shell and
# the manual know them. docs/packaging.md says it in words.

include(GNUInstallDirs)

set(pieces "${PROJECT_SOURCE_DIR}/packaging")
set(filled_in "${PROJECT_BINARY_DIR}/packaging")
foreach(piece nl.wegslot.Wegslot.metainfo.xml
    man/wegslot.1 man/wegslot-replay.1 man/nl/wegslot.1 man/nl/wegslot-replay.1)
  configure_file("${pieces}/${piece}.in" "${filled_in}/${piece}" @ONLY)
endforeach()

install(TARGETS wegslot wegslot-replay RUNTIME)
install(FILES "${pieces}/nl.wegslot.Wegslot.desktop"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${pieces}/nl.wegslot.Wegslot.svg"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
install(FILES "${filled_in}/nl.wegslot.Wegslot.metainfo.xml"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
install(FILES "${filled_in}/man/wegslot.1" "${filled_in}/man/wegslot-replay.1"
  DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
install(FILES "${filled_in}/man/nl/wegslot.1" "${filled_in}/man/nl/wegslot-replay.1"
  DESTINATION "${CMAKE_INSTALL_MANDIR}/nl/man1")
install(DIRECTORY "${PROJECT_BINARY_DIR}/share/locale" DESTINATION "${CMAKE_INSTALL_DATADIR}")
install(FILES "${pieces}/completions/wegslot"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
