# The Debian packages, one a component: scripts/package makes them with CPack.
set(KVDM_PACKAGER "The KVDM authors <maintainers@users.noreply.c-seed-6c29c9c5.example>" CACHE STRING
    "Who makes the packages, with a mail address")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kvdm)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_COMPONENTS_ALL)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${KVDM_PACKAGER})
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(release ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

# deb(COMPONENT PACKAGE SECTION SUMMARY TEXT DEPENDS) describes a package; what it needs besides is found in its
# programs. The papers of every package are made while it is put together.
macro(deb component package section summary text depends)
  string(TOUPPER ${component} upper)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "data manager of a market-analysis GIS: ${summary}
KVDM keeps the study areas, analyses, layers and data items of
market-analysis projects, with their folders, comments and parameters.
.
${text}")
  install(CODE "set(package ${package})
                set(packager [[${KVDM_PACKAGER}]])
                set(release ${release})
                include([[${PROJECT_SOURCE_DIR}/cmake/package_papers.cmake]])"
          COMPONENT ${component} EXCLUDE_FROM_ALL)
endmacro()

get_target_property(soversion kvdm SOVERSION)
deb(library libkvdm${soversion} libs library "This is the library that programs load." "")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)

deb(development libkvdm-dev libdevel "development files"
    "These are the headers, the static library, what CMake and pkg-config
ask for, and examples."
    "libkvdm${soversion} (= ${release}), libxml2-dev, libsqlite3-dev, libutf8proc-dev")
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libkvdm-dev
        COMPONENT development EXCLUDE_FROM_ALL FILES_MATCHING PATTERN *.cpp PATTERN CMakeLists.txt)

# What scripts/site made before.
set(build ${PROJECT_SOURCE_DIR}/build)
deb(documentation kvdm-doc doc "documentation"
    "These are the pages for analysts, administrators, developers who embed
the library, and contributors." "")
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
install(DIRECTORY ${build}/site/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kvdm-doc/html
        COMPONENT documentation EXCLUDE_FROM_ALL)
install(FILES cmake/kvdm-doc.overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME kvdm-doc
        COMPONENT documentation EXCLUDE_FROM_ALL)

if(KVDM_BUILD_HOST)
  foreach(section 1 5)
    install(DIRECTORY ${build}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section}
            COMPONENT host OPTIONAL FILES_MATCHING PATTERN *.${section})
  endforeach()
  deb(host kvdm utils "command-line host"
      "This is kvdm, through which a person or a script uses all of it. Every
change is recorded and can be taken back." "")
  set(CPACK_DEBIAN_HOST_PACKAGE_SHLIBDEPS ON)
endif()
include(CPack)
