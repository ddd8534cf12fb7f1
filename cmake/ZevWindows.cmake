# What the builds for Windows need beyond the others.

# No path of the machine that builds gets into an image.
add_compile_options(
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)

# A library that is headers alone serves every system, but the folder that it is installed in holds the
# host's own headers too: a link makes a folder that holds nothing else.
function(zev_find_headers target folder header)
  find_path(ZEV_${folder}_FOLDER ${folder}/${header}
            PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  set(headers ${PROJECT_BINARY_DIR}/headers)
  file(MAKE_DIRECTORY ${headers})
  file(CREATE_LINK ${ZEV_${folder}_FOLDER}/${folder} ${headers}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${headers})
endfunction()

# Machines of Wine's, one template of each kind kept for all builds of this tree. Wine itself comes from
# the root that tools/wine-root makes, when the first machine is made.
set(ZEV_WINE_MACHINES ${PROJECT_SOURCE_DIR}/build/wine)

# A program of tests of the Windows binding, run whole on a fresh machine. The program that users get is
# the one for 32 bits: its tests run on 64-bit Windows, with EVERY_WINDOWS on 32-bit Windows too. Those
# of the 64-bit program run if they say EVERY_PROGRAM; the others are built there. With ALONE the
# machine has a network of its own, with nobody else on it; ALL_ONLY leaves them to ./test all.
function(zev_wine_tests name)
  cmake_parse_arguments(TESTS "ALONE;ALL_ONLY;EVERY_WINDOWS;EVERY_PROGRAM" "" "" ${ARGN})
  set(core CORE)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    if(TESTS_EVERY_PROGRAM)
      zev_wine_suite(Windows.${name} 64 ${name} "${TESTS_ALONE}")
    endif()
    return()
  endif()
  if(TESTS_ALL_ONLY)
    set(core "")
  endif()
  zev_wine_suite(Windows.${name} 64 ${name} "${TESTS_ALONE}" ${core})
  if(TESTS_EVERY_WINDOWS)
    zev_wine_suite(Windows32.${name} 32 ${name} "${TESTS_ALONE}")
  endif()
endfunction()

# Such a program on a Windows of so many bits.
function(zev_wine_suite suite bits name is_alone)
  set(alone "")
  if(is_alone)
    set(alone ${PROJECT_SOURCE_DIR}/tests/network/alone.sh)
  endif()
  set(command ${alone} python3 ${PROJECT_SOURCE_DIR}/tests/windows/wine_machine.py --width ${bits} run
      ${ZEV_WINE_MACHINES} $<TARGET_FILE:${name}>)
  add_test(NAME ${suite} COMMAND ${command} --gtest_brief=1)
  set_tests_properties(${suite} PROPERTIES TIMEOUT 600)
  zev_suite(${suite} ${ARGN} KIND gtest TIMEOUT 600 TARGETS ${name} COMMAND ${command})
endfunction()
