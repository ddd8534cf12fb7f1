# Builds for 32-bit Windows.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(zev_triplet i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/windows-toolchain.cmake)
