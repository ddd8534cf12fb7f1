# Fails with the findings of RUN_CLANG_TIDY in the ROOMS of ROOT/src, as BUILD compiles them: in units
# of many files, so that what these include is read once. ROOMS is a regular expression.

set(pattern "(${ROOT}|${BUILD})/src/(${ROOMS})/")
file(READ ${BUILD}/compile_commands.json commands)
if(NOT commands MATCHES "\"file\": \"${pattern}")
  message(FATAL_ERROR "no files of ${pattern} in the compile commands of ${BUILD}")
endif()

execute_process(
  COMMAND ${RUN_CLANG_TIDY} -clang-tidy-binary ${CLANG_TIDY} -p ${BUILD} -j 1 -quiet
    -extra-arg=-Wno-unused-command-line-argument "^${pattern}"
  WORKING_DIRECTORY ${ROOT}
  RESULT_VARIABLE result
  OUTPUT_VARIABLE output
  ERROR_VARIABLE complaints)
if(NOT result EQUAL 0)
  string(ASCII 27 escape)
  string(REGEX REPLACE "${escape}\\[[0-9;]*m" "" output "${output}")
  string(REGEX MATCHALL "[^\n]+: (error|warning): [^\n]+" findings "${output}")
  list(REMOVE_DUPLICATES findings)
  list(JOIN findings "\n  " lines)
  if(NOT lines)
    set(lines "${complaints}")
  endif()
  message(FATAL_ERROR "not tidy:\n  ${lines}")
endif()
