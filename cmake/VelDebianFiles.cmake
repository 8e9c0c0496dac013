# What Debian wants to find in a package, beside what an installation puts there. CPack runs this over
# the files of every package before it packs them.
set(sources ${CMAKE_CURRENT_LIST_DIR})
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)

# compress(<file>) puts <file>.gz in its place.
function(compress file)
  execute_process(COMMAND gzip -9 --no-name --force ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# Whoever builds the package may keep files to a group.
set(readable FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} key)
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX})
  set(documents ${root}/share/doc/${CPACK_DEBIAN_${key}_PACKAGE_NAME})

  configure_file(${sources}/debian/copyright ${documents}/copyright COPYONLY ${readable})
  configure_file(${sources}/debian/changelog.in ${documents}/changelog.Debian @ONLY ${readable})
  configure_file(${sources}/../CHANGELOG.md ${documents}/changelog COPYONLY ${readable})
  file(GLOB pages ${root}/share/man/man*/*[0-9])
  foreach(file IN LISTS pages ITEMS ${documents}/changelog.Debian ${documents}/changelog)
    compress(${file})
  endforeach()
  file(CHMOD ${root}/share ${root}/share/doc ${documents}
    PERMISSIONS ${CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
endforeach()
