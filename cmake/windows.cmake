# The component on Windows: what it stands on. Its DLL and the host are made of it.
# NOMB: MessageBox is a class, not the system's macro.
target_compile_definitions(kvdm_objects PUBLIC UNICODE NOMINMAX NOMB WIN32_LEAN_AND_MEAN
                                               _WIN32_WINNT=0x0601)
target_link_libraries(kvdm_objects PUBLIC advapi32 user32 ole32 oleaut32 uuid ntdll)

# Undoes NOMB for itself.
set_source_files_properties(${PROJECT_SOURCE_DIR}/platform/windows/windows_platform.cpp
                            PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)

# Programs and libraries need no other file of the compiler's at run time.
add_link_options(-static)

# Header-only libraries are the build machine's own; the folders around them are not for Windows.
set(HEADERS_DIR ${PROJECT_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${HEADERS_DIR})
foreach(library CLI fmt nlohmann)
  file(CREATE_LINK /usr/include/${library} ${HEADERS_DIR}/${library} SYMBOLIC)
endforeach()
