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

# A program of unit tests, each test known to CTest by itself if it can run where it is built.
function(zev_tests name)
  cmake_parse_arguments(TESTS "" "" "SOURCES;KNOWS" ${ARGN})
  add_executable(${name} ${TESTS_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${TESTS_KNOWS} GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE ZEV_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  if(NOT CMAKE_CROSSCOMPILING)
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60)
  endif()
endfunction()
