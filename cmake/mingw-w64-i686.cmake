# Cross-compiles for 32-bit Windows with Debian's MinGW-w64 (posix threads): the DLL's 32-bit
# twin, loaded by 32-bit programs on 64-bit Windows.
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
