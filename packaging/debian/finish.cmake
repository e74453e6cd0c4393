# What Debian asks of a package and an ordinary installation does not need; run by cpack for the folders that become the
# packages, before they do.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(prefix ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX})

  # a library in a folder that the loader searches anyway says nothing of its own about where its sibling is
  file(GLOB_RECURSE libraries ${prefix}/lib/*.so.*)
  foreach(library IN LISTS libraries)
    if(NOT IS_SYMLINK ${library})
      file(RPATH_REMOVE FILE ${library})
    endif()
  endforeach()

  # Debian has the text of the licence in a place of its own
  file(REMOVE ${prefix}/share/doc/liblumcv-doc/LICENSE)

  set(folder ${prefix}/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  file(COPY ${CMAKE_CURRENT_LIST_DIR}/copyright ${CMAKE_CURRENT_LIST_DIR}/changelog DESTINATION ${folder})
  file(RENAME ${folder}/changelog ${folder}/changelog.Debian)
  file(COPY ${CMAKE_CURRENT_LIST_DIR}/../../CHANGELOG.md DESTINATION ${folder})
  file(RENAME ${folder}/CHANGELOG.md ${folder}/changelog)
  execute_process(COMMAND gzip -9n changelog changelog.Debian
    WORKING_DIRECTORY ${folder} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
