# The BLAS and LAPACK under the core library. Linux: the distribution's OpenBLAS. Windows: the reference routines, which
# tools/setup-blas-windows compiles from the distribution's sources once.
add_library(orv_system_blas INTERFACE)
if(WIN32)
  set(reference_blas ${PROJECT_SOURCE_DIR}/build/blas-windows/liblapack.a)
  if(NOT EXISTS ${reference_blas})
    execute_process(COMMAND ${PROJECT_SOURCE_DIR}/tools/setup-blas-windows COMMAND_ERROR_IS_FATAL ANY)
  endif()
  target_link_libraries(orv_system_blas INTERFACE ${reference_blas})
else()
  find_library(openblas NAMES openblas PATH_SUFFIXES openblas-pthread openblas-openmp openblas-serial REQUIRED)
  target_link_libraries(orv_system_blas INTERFACE ${openblas})
  target_compile_definitions(orv_system_blas INTERFACE ORV_OPENBLAS)
endif()
