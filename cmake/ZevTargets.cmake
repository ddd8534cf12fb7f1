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
  add_compile_options(
    -Wno-restrict -Wno-stringop-overflow -Wno-array-bounds -Wno-maybe-uninitialized)
endif()
string(REPLACE "-O3" "-O2" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")

# The usual linker takes four times as long over a program of tests.
find_program(ZEV_LLD ld.lld)
if(ZEV_LLD AND NOT WIN32)
  add_link_options(-fuse-ld=lld)
endif()

# Files of a target are compiled together, so many at once, and headers that many include are compiled
# once. Names without a namespace of their own must then differ within a room. Off, each file is
# compiled by itself, which shows that it includes what it needs.
set(ZEV_FEW_UNITS ON CACHE STRING "Compile files in few units: ON, OFF, or of TESTS, of TOOL, or both")
option(ZEV_WING "Compile the rooms of the common kind together, as one unit")
option(ZEV_HOT "Compile what a whole run spends its time in as code of the fast kind")
set(ZEV_UNIT_FILES 16 CACHE STRING "How many files of a room are then compiled together")
set(zev_few_units OFF)
if(ZEV_FEW_UNITS STREQUAL "ON")
  set(zev_few_units ON)
endif()
# Kinds of code that cost more to compile than they gain by it get flags of their own.
foreach(kind room fast tool test)
  string(TOUPPER ${kind} upper)
  set(ZEV_${upper}_FLAGS "" CACHE STRING "Flags for code of the kind ${kind}: optimisation, sanitizers")
  separate_arguments(zev_${kind}_flags NATIVE_COMMAND "${ZEV_${upper}_FLAGS}")
endforeach()

set(zev_common_headers
  <algorithm> <array> <cstdint> <deque> <filesystem> <fstream> <functional> <limits> <map> <memory>
  <optional> <set> <span> <sstream> <stdexcept> <string> <string_view> <utility> <variant> <vector>)

# What code of a kind includes besides, precompiled with them, and the targets that these come from.
set(zev_test_headers <gmock/gmock.h> <gtest/gtest.h>)
set(zev_test_knows GTest::gtest GTest::gmock)

# Compiles a target as all code of its kind is: the flags, files in units, and the headers that many
# include, precompiled once for all kinds that have the same ones and the same flags.
function(zev_code name kind)
  target_compile_options(${name} PRIVATE ${zev_${kind}_flags})
  string(TOUPPER "${kind}" upper)
  if(NOT zev_few_units AND NOT upper IN_LIST ZEV_FEW_UNITS)
    return()
  endif()
  # What one file names for itself, another one in the same unit may name again within a function.
  target_compile_options(${name} PRIVATE -Wno-shadow)
  set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${ZEV_UNIT_FILES})
  # With g++ a precompiled header costs more than it saves.
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    return()
  endif()
  string(MD5 alike "${zev_${kind}_flags} ${zev_${kind}_headers}")
  string(SUBSTRING ${alike} 0 8 alike)
  set(precompiled zev_precompiled_${alike})
  if(NOT TARGET ${precompiled})
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/${precompiled}.cpp CONTENT "")
    add_library(${precompiled} OBJECT ${PROJECT_BINARY_DIR}/${precompiled}.cpp)
    target_compile_options(${precompiled} PRIVATE ${zev_${kind}_flags})
    target_link_libraries(${precompiled} PRIVATE ${zev_${kind}_knows})
    target_precompile_headers(${precompiled} PRIVATE ${zev_common_headers} ${zev_${kind}_headers})
  endif()
  target_precompile_headers(${name} REUSE_FROM ${precompiled})
endfunction()

# Opens a wing: the rooms of the common kind that follow in this folder are then one library, compiled
# as one unit. Every header is read once, which halves what a compiler without precompiled headers
# takes. Which room may know which the builds without a wing see to.
macro(zev_open_wing name)
  if(ZEV_WING AND ZEV_FEW_UNITS)
    set(zev_wing ${name})
    add_library(${name} STATIC)
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    zev_code(${name} room)
    set_target_properties(${name} PROPERTIES UNITY_BUILD_BATCH_SIZE 0)
  endif()
endmacro()

# Closes it, and links what its rooms know outside it.
macro(zev_close_wing)
  if(zev_wing)
    get_target_property(zev_wing_knows ${zev_wing} ZEV_WING_KNOWS)
    get_target_property(zev_wing_rooms ${zev_wing} ZEV_WING_ROOMS)
    list(REMOVE_ITEM zev_wing_knows ${zev_wing_rooms})
    target_link_libraries(${zev_wing} PUBLIC ${zev_wing_knows})
    set(zev_wing "")
  endif()
endmacro()

# A room as a part of the open wing: whoever links it links the wing.
function(zev_room_of_wing name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;KNOWS" ${ARGN})
  list(TRANSFORM ROOM_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(${zev_wing} PRIVATE ${ROOM_SOURCES})
  add_library(${name} INTERFACE)
  target_link_libraries(${name} INTERFACE ${zev_wing})
  set_property(TARGET ${zev_wing} APPEND PROPERTY ZEV_WING_ROOMS ${name})
  set_property(TARGET ${zev_wing} APPEND PROPERTY ZEV_WING_KNOWS ${ROOM_KNOWS})
endfunction()

# A room of the house: a static library of a folder under src/, linked with exactly the rooms that it
# may know. Headers are included by their path from src/. Rooms are of three kinds: FAST ones work on
# bytes, TOOL ones are no part of the setup program. HOT are the sources of the others that a whole run
# spends its time in: a build that plays many compiles them as it does those of FAST rooms (ZEV_HOT).
# Sources that not every program with the room is to have stand APART.
function(zev_room name)
  cmake_parse_arguments(ROOM "FAST;TOOL" "" "SOURCES;HOT;APART;KNOWS" ${ARGN})
  set(kind room)
  foreach(other FAST TOOL)
    if(ROOM_${other})
      string(TOLOWER ${other} kind)
    endif()
  endforeach()
  if(NOT ZEV_HOT)
    list(APPEND ROOM_SOURCES ${ROOM_HOT})
    set(ROOM_HOT "")
  endif()
  set(target ${name})
  if(zev_wing AND kind STREQUAL "room")
    set(target ${zev_wing})
    zev_room_of_wing(${name} SOURCES ${ROOM_SOURCES} ${ROOM_APART} KNOWS ${ROOM_KNOWS})
  else()
    add_library(${name} STATIC ${ROOM_SOURCES} ${ROOM_APART})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ROOM_KNOWS})
    zev_code(${name} ${kind})
    if(ROOM_HOT)
      zev_hot_sources(${name} SOURCES ${ROOM_HOT} KNOWS ${ROOM_KNOWS})
    endif()
  endif()
  if(ROOM_APART)
    set_source_files_properties(${ROOM_APART} TARGET_DIRECTORY ${target}
      PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()

# Sources of a room that are code of the fast kind.
function(zev_hot_sources room)
  cmake_parse_arguments(HOT "" "" "SOURCES;KNOWS" ${ARGN})
  add_library(${room}_hot OBJECT ${HOT_SOURCES})
  target_include_directories(${room}_hot PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${room}_hot PRIVATE ${HOT_KNOWS})
  zev_code(${room}_hot fast)
  target_sources(${room} PRIVATE $<TARGET_OBJECTS:${room}_hot>)
endfunction()

set(zev_gtest_source /usr/src/googletest)

# The test library of a system other than the host's: it comes as source and is built along, as one
# unit with its main program, and without the project's warnings.
function(zev_build_gtest)
  add_library(zev_gtest STATIC EXCLUDE_FROM_ALL
    ${zev_gtest_source}/googletest/src/gtest-all.cc
    ${zev_gtest_source}/googlemock/src/gmock-all.cc
    ${zev_gtest_source}/googlemock/src/gmock_main.cc)
  set_target_properties(zev_gtest PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
  foreach(part googletest googlemock)
    target_include_directories(zev_gtest SYSTEM PUBLIC ${zev_gtest_source}/${part}/include)
    target_include_directories(zev_gtest PRIVATE ${zev_gtest_source}/${part})
  endforeach()
  target_compile_options(zev_gtest PRIVATE -w -O0)
  if(WIN32)
    zev_gtest_without_threads()
  endif()
  foreach(name gtest gmock gtest_main)
    add_library(GTest::${name} ALIAS zev_gtest)
  endforeach()
endfunction()

# The compiler for Windows has no threads of the standard library. Death tests, which no test here is,
# would need them.
function(zev_gtest_without_threads)
  set(header ${PROJECT_BINARY_DIR}/googletest/no_death_tests.h)
  file(CONFIGURE OUTPUT ${header} CONTENT
    "#include <gtest/internal/gtest-port.h>\n#undef GTEST_HAS_DEATH_TEST\n")
  target_compile_definitions(zev_gtest PUBLIC GTEST_IS_THREADSAFE=0)
  target_compile_options(zev_gtest PRIVATE -include ${header})
endfunction()

# Tests are code of a kind too, in smaller units: what stands in their files is alike.
function(zev_test_code name kind)
  if(TESTS IN_LIST ZEV_FEW_UNITS)
    set(zev_few_units ON)
  endif()
  zev_code(${name} ${kind})
  set_target_properties(${name} PROPERTIES UNITY_BUILD_BATCH_SIZE 8)
endfunction()

# Cases that several programs of tests share, compiled as code of a KIND, of tests if none is named.
function(zev_cases name)
  cmake_parse_arguments(CASES "" "KIND" "SOURCES;KNOWS" KIND test ${ARGN})
  add_library(${name} OBJECT ${CASES_SOURCES})
  zev_test_code(${name} ${CASES_KIND})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${CASES_KNOWS} GTest::gtest GTest::gmock)
endfunction()

# A program of unit tests, with shared cases. Tests that work long are of the KIND of what they test.
function(zev_test_program name)
  cmake_parse_arguments(TESTS "" "KIND" "SOURCES;CASES;KNOWS" KIND test ${ARGN})
  add_executable(${name} ${TESTS_SOURCES})
  zev_test_code(${name} ${TESTS_KIND})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE
    ${TESTS_CASES} ${TESTS_KNOWS} GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE ZEV_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
endfunction()

# Tells ./test of a suite: a command that runs tests, a line of suites.json in the build's folder.
# KIND says how it tells of its cases: gtest, unittest (Python's), or script, which is one case. ROOM
# is the folder of tests that it is found by; TARGETS are what has to be built for it; in SHARDS
# processes a gtest program can run beside itself; FILTER chooses of its cases. CORE suites are those of
# ./test without words.
function(zev_suite name)
  cmake_parse_arguments(SUITE "CORE" "KIND;ROOM;SHARDS;TIMEOUT;FILTER" "COMMAND;TARGETS;ENVIRONMENT"
    ${ARGN})
  foreach(default "KIND script" "SHARDS 1" "TIMEOUT 300")
    string(REPLACE " " ";" default "${default}")
    list(GET default 0 key)
    if(NOT DEFINED SUITE_${key})
      list(GET default 1 SUITE_${key})
    endif()
  endforeach()
  if(NOT SUITE_ROOM)
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR}/tests ${CMAKE_CURRENT_SOURCE_DIR})
    string(REGEX REPLACE "/.*" "" SUITE_ROOM "${folder}")
  endif()
  set(core false)
  if(SUITE_CORE)
    set(core true)
  endif()
  foreach(list COMMAND TARGETS ENVIRONMENT)
    list(TRANSFORM SUITE_${list} PREPEND "\"")
    list(TRANSFORM SUITE_${list} APPEND "\"")
    list(JOIN SUITE_${list} ", " SUITE_${list})
  endforeach()
  set_property(GLOBAL APPEND_STRING PROPERTY zev_suites "{\"name\": \"${name}\", \"room\": \"${SUITE_ROOM}\", \
\"kind\": \"${SUITE_KIND}\", \"core\": ${core}, \"shards\": ${SUITE_SHARDS}, \"timeout\": ${SUITE_TIMEOUT}, \
\"filter\": \"${SUITE_FILTER}\", \"targets\": [${SUITE_TARGETS}], \"environment\": [${SUITE_ENVIRONMENT}], \"command\": [${SUITE_COMMAND}]}\n")
endfunction()

# Writes what zev_suite was told, a suite a line.
function(zev_write_suites)
  get_property(suites GLOBAL PROPERTY zev_suites)
  file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/suites.json CONTENT "${suites}")
endfunction()

# A program of unit tests, each test known to CTest by itself if it can run where it is built. CTest
# asks what they are when they are to be run. With a NETWORK each process has one of its own, with
# nobody else on it. Cases that are IN_ALL, a filter, run in ./test all only; those that are ONCE, in one
# build of all (ONE_STAGE in tools/tester.py).
function(zev_tests name)
  cmake_parse_arguments(TESTS "NETWORK;ALL_ONLY" "KIND;SHARDS;TIMEOUT;IN_ALL;ONCE"
    "SOURCES;CASES;KNOWS;ENVIRONMENT" KIND test ${ARGN})
  zev_test_program(${name} KIND ${TESTS_KIND}
    SOURCES ${TESTS_SOURCES} CASES ${TESTS_CASES} KNOWS ${TESTS_KNOWS})
  if(CMAKE_CROSSCOMPILING)
    return()
  endif()
  set(alone "")
  if(TESTS_NETWORK)
    set(alone ${PROJECT_SOURCE_DIR}/tests/network/alone.sh)
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR ${alone})
  endif()
  set(options KIND gtest TARGETS ${name} ENVIRONMENT ${TESTS_ENVIRONMENT}
    COMMAND ${alone} $<TARGET_FILE:${name}>)
  if(TESTS_TIMEOUT)
    list(APPEND options TIMEOUT ${TESTS_TIMEOUT})
  endif()
  set(shards "")
  if(TESTS_SHARDS)
    set(shards SHARDS ${TESTS_SHARDS})
  endif()
  set(core "")
  if(NOT TESTS_ALL_ONLY)
    set(core CORE)
  endif()
  set(rest ${TESTS_IN_ALL} ${TESTS_ONCE})
  if(rest)
    list(JOIN rest ":" rest)
    set(rest FILTER -${rest})
  endif()
  zev_suite(${name} ${core} ${shards} ${rest} ${options})
  if(TESTS_IN_ALL)
    zev_suite(${name}_in_all ${shards} FILTER ${TESTS_IN_ALL} ${options})
  endif()
  if(TESTS_ONCE)
    zev_suite(${name}_once ${core} ${shards} FILTER ${TESTS_ONCE} ${options})
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 600 ENVIRONMENT "${TESTS_ENVIRONMENT}")
endfunction()
