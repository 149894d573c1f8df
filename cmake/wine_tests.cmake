# How the Windows tests are built and run on other systems. GoogleTest comes as sources, and a test
# program is one test of CTest: starting a program takes longer under Wine than its tests do.
set(gtest_force_shared_crt ON)
set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
foreach(library gtest gtest_main gmock)
  if(NOT TARGET GTest::${library})
    add_library(GTest::${library} ALIAS ${library})
  endif()
  target_compile_options(${library} PRIVATE -w -O0)
endforeach()

function(kvdm_discover_tests name)
  add_test(NAME windows.${name} COMMAND ${name})
  # All of them use the same drives and registry.
  set_tests_properties(windows.${name} PROPERTIES RESOURCE_LOCK wine)
endfunction()
