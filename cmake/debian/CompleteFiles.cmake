# Run by CPack on the installed files before it packs them: does what Debian asks of a package and an
# installation has no reason to do.

set(files ${CPACK_TEMPORARY_INSTALL_DIRECTORY})

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} key)
  set(folder ${files}/${component}/usr/share/doc/${CPACK_DEBIAN_${key}_PACKAGE_NAME})
  file(MAKE_DIRECTORY ${folder})
  file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/../../CHANGELOG.md ${folder}/changelog)
endforeach()

file(GLOB_RECURSE texts ${files}/changelog ${files}/meta-analysis.1)
execute_process(COMMAND gzip --best --no-name ${texts} COMMAND_ERROR_IS_FATAL ANY)

# The debugging information of the other files is gone already.
file(GLOB_RECURSE archives ${files}/*.a)
execute_process(COMMAND strip --strip-debug ${archives} COMMAND_ERROR_IS_FATAL ANY)
