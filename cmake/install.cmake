# What an installed copy consists of: the libraries with their headers, and how CMake and pkg-config find it.
# A component here is a Debian package, too (packages.cmake).
include(CMakePackageConfigHelpers)

install(TARGETS kvdm EXPORT kvdmSharedTargets
        LIBRARY COMPONENT library NAMELINK_COMPONENT development)
install(TARGETS kvdm_static EXPORT kvdmStaticTargets ARCHIVE COMPONENT development)
foreach(kind Shared Static)
  install(EXPORT kvdm${kind}Targets NAMESPACE kvdm:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kvdm
          COMPONENT development)
endforeach()

if(KVDM_BUILD_HOST)
  install(TARGETS kvdm_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT host)
  set(generated ${PROJECT_BINARY_DIR}/host)
  set(share ${CMAKE_INSTALL_DATADIR})
  install(FILES ${generated}/kvdm.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT host)
  install(FILES ${generated}/kvdm.bash DESTINATION ${share}/bash-completion/completions RENAME kvdm
          COMPONENT host)
  install(FILES ${generated}/kvdm.fish DESTINATION ${share}/fish/vendor_completions.d COMPONENT host)
  # Debian's zsh looks for those of packages elsewhere.
  install(FILES ${generated}/_kvdm DESTINATION ${share}/zsh/site-functions COMPONENT plain)
  install(FILES ${generated}/_kvdm DESTINATION ${share}/zsh/vendor-completions
          COMPONENT host EXCLUDE_FROM_ALL)
endif()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kvdm DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT development)

configure_package_config_file(cmake/kvdmConfig.cmake.in kvdmConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kvdm)
write_basic_package_version_file(kvdmConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kvdmConfig.cmake ${PROJECT_BINARY_DIR}/kvdmConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kvdm COMPONENT development)

# Where the file finds the prefix from, so that a copy of the whole may stand anywhere.
file(RELATIVE_PATH PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/kvdm.pc.in kvdm.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kvdm.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT plain)
