# The component on POSIX systems: a shared library with its adapters inside.
find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBXML2 REQUIRED IMPORTED_TARGET libxml-2.0)
pkg_check_modules(SQLITE3 REQUIRED IMPORTED_TARGET sqlite3)
pkg_check_modules(UTF8PROC REQUIRED IMPORTED_TARGET libutf8proc)

kvdm_sources(POSIX_SOURCES platform/posix library)
add_library(kvdm SHARED ${CORE_SOURCES} ${POSIX_SOURCES})
# Stands beside the programs here as it does when installed, so that they find it by one relative
# path and are installed as they were built.
set_target_properties(kvdm PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 0
                      LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})
target_link_libraries(kvdm PRIVATE PkgConfig::LIBXML2 PkgConfig::SQLITE3 PkgConfig::UTF8PROC)
