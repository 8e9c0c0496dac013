# Installs the program with its manual page and its completions.
install(TARGETS velscroll
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
install(FILES ${PROJECT_SOURCE_DIR}/velscroll/velscroll.1
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
install(FILES ${PROJECT_SOURCE_DIR}/velscroll/completions/velscroll.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME velscroll COMPONENT program)
install(FILES ${PROJECT_SOURCE_DIR}/velscroll/completions/_velscroll
  DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT program)
install(FILES ${PROJECT_SOURCE_DIR}/velscroll/completions/velscroll.fish
  DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT program)
