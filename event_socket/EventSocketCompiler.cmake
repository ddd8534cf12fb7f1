# Says in a sentence what a compiler lacks, before it does so in its own words.
include(CheckCXXSourceCompiles)

function(event_socket_check_compiler)
  set(compiler "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}")
  if(NOT "cxx_std_20" IN_LIST CMAKE_CXX_COMPILE_FEATURES)
    message(FATAL_ERROR "EventSocket needs a compiler that knows C++20; ${compiler} does not.")
  endif()
  set(CMAKE_CXX_STANDARD 20)
  set(CMAKE_REQUIRED_QUIET ON)
  check_cxx_source_compiles("
    #include <bit>
    #include <concepts>
    #include <span>
    template <std::integral T> T first(std::span<const T> all) { return all[0]; }
    int main() { int one[] = {std::bit_cast<int>(0)}; return first<int>(one); }
    " EVENT_SOCKET_HAS_CXX20)
  if(NOT EVENT_SOCKET_HAS_CXX20)
    message(FATAL_ERROR "EventSocket needs concepts, std::span and std::bit_cast of C++20; "
      "${compiler} lacks one of them.")
  endif()
endfunction()
