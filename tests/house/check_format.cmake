# Fails with the names of all C++ files under ROOT that CLANG_FORMAT would change.

set(patterns)
foreach(folder src tests sample tools benchmarks event_socket)
  foreach(ending h cpp)
    list(APPEND patterns ${ROOT}/${folder}/*.${ending})
  endforeach()
endforeach()
file(GLOB_RECURSE files RELATIVE ${ROOT} ${patterns})
if(NOT files)
  message(FATAL_ERROR "no files under ${ROOT}")
endif()

execute_process(
  COMMAND ${CLANG_FORMAT} --dry-run -Werror --ferror-limit=0 ${files}
  WORKING_DIRECTORY ${ROOT}
  RESULT_VARIABLE result
  OUTPUT_QUIET
  ERROR_VARIABLE complaints)
if(NOT result EQUAL 0)
  string(REGEX MATCHALL "[^\n:]+\\.(h|cpp):[0-9]+" places "${complaints}")
  list(TRANSFORM places REPLACE ":[0-9]+$" "")
  list(REMOVE_DUPLICATES places)
  list(JOIN places "\n  " lines)
  message(FATAL_ERROR "not formatted:\n  ${lines}")
endif()
