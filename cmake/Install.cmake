# What `cmake --install` puts in place beside the public headers, which meta_analysis/ installs itself. The
# components are what Debian makes packages of: library, development, program, and the module of Python, which
# python/ installs itself.
include(CMakePackageConfigHelpers)

# The CMake package MetaAnalysis. It finds what the exported targets link.
set(cmake_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/MetaAnalysis)
install(TARGETS meta_analysis meta_analysis_static EXPORT MetaAnalysis
        LIBRARY COMPONENT meta_analysis_library NAMELINK_COMPONENT meta_analysis_development
        ARCHIVE COMPONENT meta_analysis_development)
install(EXPORT MetaAnalysis NAMESPACE MetaAnalysis:: FILE MetaAnalysisTargets.cmake
        DESTINATION ${cmake_package_dir} COMPONENT meta_analysis_development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/MetaAnalysisConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES cmake/MetaAnalysisConfig.cmake ${PROJECT_BINARY_DIR}/MetaAnalysisConfigVersion.cmake
        DESTINATION ${cmake_package_dir} COMPONENT meta_analysis_development)

# The pkg-config file and the program know their surroundings from their own place, so that an installed tree
# can be moved. In /usr the loader finds the library without help, and Debian wants it to.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
           OUTPUT_VARIABLE prefix_from_pkgconfig)
configure_file(cmake/meta_analysis.pc.in meta_analysis.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/meta_analysis.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT meta_analysis_development)

if(META_ANALYSIS_PROGRAM)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_BINDIR}
             OUTPUT_VARIABLE lib_from_bin)
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set_target_properties(meta-analysis PROPERTIES INSTALL_RPATH $ORIGIN/${lib_from_bin})
  endif()
  install(TARGETS meta-analysis RUNTIME COMPONENT meta_analysis_program)
  install(FILES docs/meta-analysis.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT meta_analysis_program)
  install(FILES docs/json-schema/meta-analysis-2.json DESTINATION ${CMAKE_INSTALL_DATADIR}/meta-analysis/json-schema
          COMPONENT meta_analysis_program)

  # The program writes the completion of its own command line, for the folders in which shells look. The zsh of
  # Debian has one for packages and one for the administrator.
  set(completion_dir ${PROJECT_BINARY_DIR}/completion)
  file(MAKE_DIRECTORY ${completion_dir})
  foreach(shell IN ITEMS bash zsh)
    add_custom_command(OUTPUT ${completion_dir}/${shell}
                       COMMAND meta-analysis --completion ${shell} > ${completion_dir}/${shell}
                       DEPENDS meta-analysis VERBATIM)
  endforeach()
  add_custom_target(meta_analysis_completion ALL DEPENDS ${completion_dir}/bash ${completion_dir}/zsh)
  if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(zsh_folder vendor-completions)
  else()
    set(zsh_folder site-functions)
  endif()
  install(FILES ${completion_dir}/bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
          RENAME meta-analysis COMPONENT meta_analysis_program)
  install(FILES ${completion_dir}/zsh DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${zsh_folder}
          RENAME _meta-analysis COMPONENT meta_analysis_program)
endif()
