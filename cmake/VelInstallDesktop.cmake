# Installs the desktop program with its menu entry, its icon and its manual page.
install(TARGETS velscroll-desktop
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT desktop)
install(FILES ${PROJECT_SOURCE_DIR}/desktop/velscroll-desktop.desktop
  DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT desktop)
install(FILES ${PROJECT_SOURCE_DIR}/desktop/velscroll-desktop.svg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT desktop)
install(FILES ${PROJECT_SOURCE_DIR}/desktop/velscroll-desktop.1
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT desktop)
