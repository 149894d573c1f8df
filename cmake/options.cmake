# How every target of the project is compiled, and small helpers.

option(KVDM_WARNINGS_AS_ERRORS "Treat compiler warnings as errors, as the presets do" OFF)
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
    # And in moves of variants uninitialised values, where it optimises many sources as one.
    if(WIN32)
      target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    endif()
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

# Compiles `target` as what tests the component is: to compile it takes longer than to run it, and
# undefined behaviour is looked for in the component.
function(kvdm_test_options target)
  kvdm_target(${target})
  target_compile_options(${target} PRIVATE -O0 $<$<BOOL:${KVDM_SANITIZE}>:-fno-sanitize=undefined>)
endfunction()

# All sources directly in the given folders, as absolute paths, in `variable`. Where a build compiles many
# sources as one, those of a folder may go together.
function(kvdm_sources variable)
  set(sources)
  foreach(folder IN LISTS ARGN)
    file(GLOB found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
    set_source_files_properties(${found} PROPERTIES UNITY_GROUP ${folder})
    list(APPEND sources ${found})
  endforeach()
  set(${variable} ${sources} PARENT_SCOPE)
endfunction()

# Labels tests that need the sanitizers only: what they would find in another build of this system, they find
# there. scripts/test neither builds nor runs them a second time.
function(kvdm_sanitized_tests)
  set_property(TEST ${ARGN} APPEND PROPERTY LABELS sanitized)
endfunction()

# Tells scripts/soak a loop, as tests/faults/CMakeLists.txt describes it.
function(kvdm_long_loop name parts)
  list(JOIN ARGN " " command)
  set_property(GLOBAL APPEND_STRING PROPERTY kvdm_loops "${name} ${parts} ${command}\n")
endfunction()
