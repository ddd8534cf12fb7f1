# A program of tests of the Windows binding, run again under a name of its own on a machine whose language
# has another code page. As other tests of the binding it is run as the program that users get, the one
# for 32 bits.
function(zev_language_tests name program code_page)
  cmake_parse_arguments(TESTS "ALL_ONLY" "" "ARGUMENTS" ${ARGN})
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    return()
  endif()
  set(core CORE)
  if(TESTS_ALL_ONLY)
    set(core "")
  endif()
  set(command python3 ${PROJECT_SOURCE_DIR}/tests/windows/language_machine.py
      ${ZEV_WINE_MACHINES} ${code_page} $<TARGET_FILE:${program}> ${TESTS_ARGUMENTS})
  add_test(NAME Windows.${name} COMMAND ${command} --gtest_brief=1)
  set_tests_properties(Windows.${name} PROPERTIES TIMEOUT 600)
  zev_suite(Windows.${name} ${core} KIND gtest TIMEOUT 600 TARGETS ${program} COMMAND ${command})
endfunction()
