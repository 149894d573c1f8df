# The component on POSIX systems: what it stands on, and the library that others link, shared and static.
find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBXML2 REQUIRED IMPORTED_TARGET libxml-2.0)
pkg_check_modules(SQLITE3 REQUIRED IMPORTED_TARGET sqlite3)
pkg_check_modules(UTF8PROC REQUIRED IMPORTED_TARGET libutf8proc)

target_link_libraries(kvdm_objects PUBLIC PkgConfig::LIBXML2 PkgConfig::SQLITE3 PkgConfig::UTF8PROC)

add_library(kvdm SHARED)
add_library(kvdm_static STATIC)
foreach(library kvdm kvdm_static)
  kvdm_target(${library})
  target_sources(${library} PRIVATE $<TARGET_OBJECTS:kvdm_objects>)
  target_compile_features(${library} PUBLIC cxx_std_20)
  target_include_directories(${library} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                                               $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${library} PRIVATE PkgConfig::LIBXML2 PkgConfig::SQLITE3 PkgConfig::UTF8PROC)
endforeach()
target_link_options(kvdm PRIVATE LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map)
set_target_properties(kvdm PROPERTIES
  VERSION ${PROJECT_VERSION}
  # As with the version file that CMake reads: until 1.0 each minor version is another interface.
  SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
  LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
# Whoever links it writes kvdm::kvdm for either.
set_target_properties(kvdm_static PROPERTIES OUTPUT_NAME kvdm EXPORT_NAME kvdm)
