# Builds 32-bit programs for Windows with MinGW-w64, and runs them with the Wine that
# scripts/setup-wine32 unpacks.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(KVDM_MINGW i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR
    ${CMAKE_CURRENT_LIST_DIR}/../scripts/run-wine32;${CMAKE_CURRENT_LIST_DIR}/../build/wine32/prefix)
