# What both toolchains for Windows have in common. `zev_triplet` names the compilers.
set(CMAKE_SYSTEM_NAME Windows)

# The variant without the threads of the standard library: its threads library asks for what only
# Windows Vista and later have, and nothing here needs it.
set(CMAKE_C_COMPILER ${zev_triplet}-gcc-win32)
set(CMAKE_CXX_COMPILER ${zev_triplet}-g++-win32)
set(CMAKE_RC_COMPILER ${zev_triplet}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${zev_triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# One file that needs no other beside it, at any address, with no time in it: two builds of the same
# source give the same bytes.
set(CMAKE_EXE_LINKER_FLAGS_INIT
  "-static -Wl,--nxcompat,--dynamicbase,--no-insert-timestamp -Wl,--gc-sections")
# With a section for each function, a unit of several files has more sections than the older format of
# object files counts.
set(CMAKE_CXX_FLAGS_INIT "-ffunction-sections -fdata-sections -Wa,-mbig-obj")
