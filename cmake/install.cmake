# What an installed copy consists of: the libraries with their headers, and how CMake and pkg-config find it.
include(CMakePackageConfigHelpers)

install(TARGETS kvdm EXPORT kvdmSharedTargets)
install(TARGETS kvdm_static EXPORT kvdmStaticTargets)
foreach(kind Shared Static)
  install(EXPORT kvdm${kind}Targets NAMESPACE kvdm:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kvdm)
endforeach()

if(KVDM_BUILD_HOST)
  install(TARGETS kvdm_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kvdm DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

configure_package_config_file(cmake/kvdmConfig.cmake.in kvdmConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kvdm)
write_basic_package_version_file(kvdmConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kvdmConfig.cmake ${PROJECT_BINARY_DIR}/kvdmConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kvdm)

# Where the file finds the prefix from, so that a copy of the whole may stand anywhere.
file(RELATIVE_PATH PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/kvdm.pc.in kvdm.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kvdm.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
