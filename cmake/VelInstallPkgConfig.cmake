# vel_install_pkgconfig(<name> <component>)
# Fills in cmake/<name>.pc.in and installs what comes of it. The module gives its folders relative to
# its own, so that the installed tree can be moved.
function(vel_install_pkgconfig name component)
  set(folder "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
  file(RELATIVE_PATH VEL_PREFIX_FROM_PKGCONFIG "${folder}" "${CMAKE_INSTALL_PREFIX}")
  file(RELATIVE_PATH VEL_INCLUDES_FROM_PKGCONFIG "${folder}" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
  configure_file(
    ${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in
    ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT ${component})
endfunction()
