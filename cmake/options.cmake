# How every target of the project is compiled, and small helpers.

option(KVDM_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" ON)
option(KVDM_SANITIZE "Build with the address, undefined-behaviour and leak sanitizers" OFF)
option(KVDM_COVERAGE "Build for measuring test coverage" OFF)

# A caller's mistake in memory is to end the program rather than to lead it elsewhere. MinGW's linker
# does its part of this by itself, and its headers have no checked copies.
if(NOT WIN32)
  include(CheckCXXCompilerFlag)
  include(CheckPIESupported)
  check_pie_supported()
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  check_cxx_compiler_flag(-fcf-protection=full KVDM_HAS_CF_PROTECTION)
  set(KVDM_HARDENING -fstack-protector-strong)
  if(KVDM_HAS_CF_PROTECTION)
    list(APPEND KVDM_HARDENING -fcf-protection=full)
  endif()
  # The checked copies need an optimiser, and would hide what the sanitizers are to see.
  if(NOT (KVDM_SANITIZE OR KVDM_COVERAGE OR KVDM_FUZZ))
    list(APPEND KVDM_HARDENING
         $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE>
         $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
  endif()
  set(KVDM_LINK_HARDENING LINKER:-z,relro,-z,now,-z,noexecstack)
endif()

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
  target_compile_options(${target} PRIVATE ${KVDM_HARDENING})
  target_link_options(${target} PRIVATE ${KVDM_LINK_HARDENING})
  if(KVDM_SANITIZE)
    # The check of virtual calls opens a pipe, which fails in the test that leaves no descriptor.
    target_compile_options(${target} PRIVATE -fsanitize=address,undefined -fno-sanitize=vptr
                                             -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=address,undefined)
  endif()
  if(KVDM_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link,address,undefined
                                             -fno-sanitize-recover=all)
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

# Tells scripts/soak a loop, as tests/faults/CMakeLists.txt describes it.
function(kvdm_long_loop name parts)
  list(JOIN ARGN " " command)
  set_property(GLOBAL APPEND_STRING PROPERTY kvdm_loops "${name} ${parts} ${command}\n")
endfunction()
