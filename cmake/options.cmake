# How every target of the project is compiled, and small helpers.

option(KVDM_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" ON)
option(KVDM_SANITIZE "Build with the address, undefined-behaviour and leak sanitizers" OFF)
option(KVDM_COVERAGE "Build for measuring test coverage" OFF)

# Compiles `target` as all of the project is compiled.
function(kvdm_target target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                           -Woverloaded-virtual -Wimplicit-fallthrough)
  # GCC 12 sees overlapping copies in every `"literal" + std::string` that it optimises.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(KVDM_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(KVDM_SANITIZE)
    # The check of virtual calls opens a pipe, which fails in the test that leaves no descriptor.
    target_compile_options(${target} PRIVATE -fsanitize=address,undefined -fno-sanitize=vptr
                                             -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=address,undefined)
  endif()
  if(KVDM_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link,address,undefined)
    target_link_options(${target} PRIVATE -fsanitize=address,undefined)
  endif()
  if(KVDM_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()

# All sources directly in the given folders, as absolute paths, in `variable`.
function(kvdm_sources variable)
  set(sources)
  foreach(folder IN LISTS ARGN)
    file(GLOB found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
    list(APPEND sources ${found})
  endforeach()
  set(${variable} ${sources} PARENT_SCOPE)
endfunction()
