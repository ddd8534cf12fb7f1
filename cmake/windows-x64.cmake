# Builds for 64-bit Windows.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(zev_triplet x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/windows-toolchain.cmake)
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,--high-entropy-va")
