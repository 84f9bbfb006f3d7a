# The package: targets orv::orv_sse41 and orv::orv_core.
if(CMAKE_SIZEOF_VOID_P AND NOT CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(orv_FOUND FALSE)
  set(orv_NOT_FOUND_MESSAGE "orv is a library for 32-bit x86, and this project is configured for a 64-bit target. "
    "Configure in a fresh build directory with -DCMAKE_C_FLAGS=-m32 -DCMAKE_CXX_FLAGS=-m32; on Debian the package "
    "g++-multilib brings what the compiler needs for that.")
  string(CONCAT orv_NOT_FOUND_MESSAGE ${orv_NOT_FOUND_MESSAGE})
  return()
endif()
include(${CMAKE_CURRENT_LIST_DIR}/orv-targets.cmake)
