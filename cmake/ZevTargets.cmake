# What all targets of the project have in common.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_compile_options(
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 finds these in its own headers where there is nothing.
  add_compile_options(-Wno-restrict -Wno-stringop-overflow -Wno-array-bounds)
endif()
string(REPLACE "-O3" "-O2" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")

# A room of the house: a static library of a folder under src/, linked with exactly the rooms that it
# may know. Headers are included by their path from src/.
function(zev_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;KNOWS" ${ARGN})
  add_library(${name} STATIC ${ROOM_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ROOM_KNOWS})
endfunction()

# The test library of a system other than the host's: it comes as source and is built along, without
# the project's warnings.
function(zev_build_gtest)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  foreach(target gtest gtest_main gmock gmock_main)
    target_compile_options(${target} PRIVATE -w)
  endforeach()
endfunction()

# A program of unit tests.
function(zev_test_program name)
  cmake_parse_arguments(TESTS "" "" "SOURCES;KNOWS" ${ARGN})
  add_executable(${name} ${TESTS_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${TESTS_KNOWS} GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE ZEV_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
endfunction()

# A program of unit tests, each test known to CTest by itself if it can run where it is built.
function(zev_tests name)
  zev_test_program(${name} ${ARGN})
  if(NOT CMAKE_CROSSCOMPILING)
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60)
  endif()
endfunction()

# A program of unit tests that use the network: each one runs on a network of its own. What its tests
# are is asked when they are to be run, since a machine that grants no such network can still build.
function(zev_network_tests name)
  zev_test_program(${name} ${ARGN})
  if(NOT CMAKE_CROSSCOMPILING)
    set_target_properties(${name} PROPERTIES
      CROSSCOMPILING_EMULATOR ${PROJECT_SOURCE_DIR}/tests/network/alone.sh)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60)
  endif()
endfunction()
