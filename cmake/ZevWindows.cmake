# What the builds for Windows need beyond the others.

# No path of the machine that builds gets into an image.
add_compile_options(
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)

# The JSON library is headers alone and serves every system, but the folder that it is installed in
# holds the host's own headers too: a link makes a folder that holds nothing else.
function(zev_find_json)
  find_path(ZEV_JSON_FOLDER nlohmann/json.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  set(headers ${PROJECT_BINARY_DIR}/headers)
  file(MAKE_DIRECTORY ${headers})
  file(CREATE_LINK ${ZEV_JSON_FOLDER}/nlohmann ${headers}/nlohmann SYMBOLIC)
  add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED GLOBAL)
  target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE ${headers})
endfunction()

# A program of tests of the Windows binding, run whole on a fresh machine of Wine's. Wine runs 64-bit
# programs alone here, so 32-bit ones are only built. With ALONE the machine has a network of its own,
# with nobody else on it.
function(zev_wine_tests name)
  cmake_parse_arguments(TESTS "ALONE;ALL_ONLY" "" "" ${ARGN})
  set(alone "")
  if(TESTS_ALONE)
    set(alone ${PROJECT_SOURCE_DIR}/tests/network/alone.sh)
  endif()
  set(core CORE)
  if(TESTS_ALL_ONLY)
    set(core "")
  endif()
  set(command ${alone} python3 ${PROJECT_SOURCE_DIR}/tests/windows/wine_machine.py run
      ${ZEV_WINE_MACHINES} $<TARGET_FILE:${name}>)
  if(ZEV_WINE AND CMAKE_SIZEOF_VOID_P EQUAL 8)
    add_test(NAME Windows.${name} COMMAND ${command} --gtest_brief=1)
    set_tests_properties(Windows.${name} PROPERTIES TIMEOUT 600)
    zev_suite(Windows.${name} ${core} KIND gtest TIMEOUT 600 TARGETS ${name} COMMAND ${command})
  endif()
endfunction()

# Machines of Wine's, one template of them kept for all builds of this tree.
set(ZEV_WINE_MACHINES ${PROJECT_SOURCE_DIR}/build/wine)

find_program(ZEV_WINE wine64 PATHS /usr/lib/wine)
if(NOT ZEV_WINE AND CMAKE_SIZEOF_VOID_P EQUAL 8)
  message(WARNING "Wine is not installed: the tests of the Windows binding are built and not run")
endif()
