# `cpack -G DEB` makes three packages, and one of the module of Python if that is built, parted and named as
# Debian does: who runs the program needs no headers, and shared libraries of two interface versions can be
# installed side by side.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME meta-analysis)
set(CPACK_PACKAGE_CONTACT "Meta-analysis maintainers <maintainers@meta-analysis.invalid>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/CompleteFiles.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

get_target_property(interface_version meta_analysis SOVERSION)
set(CPACK_DEBIAN_META_ANALYSIS_LIBRARY_PACKAGE_NAME libmeta-analysis${interface_version})
set(CPACK_DEBIAN_META_ANALYSIS_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_META_ANALYSIS_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_COMPONENT_META_ANALYSIS_LIBRARY_DESCRIPTION
    "This package has the shared library, for the programs that use it.")

set(CPACK_DEBIAN_META_ANALYSIS_DEVELOPMENT_PACKAGE_NAME libmeta-analysis-dev)
set(CPACK_DEBIAN_META_ANALYSIS_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_META_ANALYSIS_DEVELOPMENT_DEPENDS meta_analysis_library)
set(CPACK_COMPONENT_META_ANALYSIS_DEVELOPMENT_DESCRIPTION
    "This package has what it takes to build with the library: its C and C++
headers, a static library, and files for CMake and pkg-config.")

# Pictures are drawn by gnuplot; all else works without.
set(CPACK_DEBIAN_META_ANALYSIS_PROGRAM_PACKAGE_NAME meta-analysis)
set(CPACK_DEBIAN_META_ANALYSIS_PROGRAM_PACKAGE_SECTION math)
set(CPACK_DEBIAN_META_ANALYSIS_PROGRAM_PACKAGE_RECOMMENDS gnuplot-nox)
# The letters of labels in other scripts.
set(CPACK_DEBIAN_META_ANALYSIS_PROGRAM_PACKAGE_SUGGESTS "fonts-noto-core, fonts-noto-cjk, fonts-noto-color-emoji")
set(CPACK_COMPONENT_META_ANALYSIS_PROGRAM_DEPENDS meta_analysis_library)
set(CPACK_COMPONENT_META_ANALYSIS_PROGRAM_DESCRIPTION
    "This package has the program meta-analysis, which pools the results of
studies in a CSV file and reports on them in tables and pictures.")

if(META_ANALYSIS_PYTHON)
  set(CPACK_DEBIAN_META_ANALYSIS_PYTHON_PACKAGE_NAME python3-meta-analysis)
  set(CPACK_DEBIAN_META_ANALYSIS_PYTHON_PACKAGE_SECTION python)
  set(CPACK_DEBIAN_META_ANALYSIS_PYTHON_PACKAGE_DEPENDS "${python_version_range}, python3-numpy")
  set(CPACK_DEBIAN_META_ANALYSIS_PYTHON_PACKAGE_SUGGESTS python3-pandas)
  set(CPACK_COMPONENT_META_ANALYSIS_PYTHON_DEPENDS meta_analysis_library)
  set(CPACK_COMPONENT_META_ANALYSIS_PYTHON_DESCRIPTION
      "This package has the module meta_analysis of Python, which pools the studies
of one analysis or of millions in arrays of NumPy.")
endif()

include(CPack)
