# Installs into a stage of its own, then builds and runs the consumer against it by both of the ways in. The stage is moved
# in between: neither way may lean on the place of installation.
#   cmake -DBUILD=dir -DSOURCE=dir -DTOOLCHAIN=file -DCC=compiler -DEMULATOR=program -DWAY=package|pkgconfig -P install.cmake
cmake_minimum_required(VERSION 3.25)
set(work ${BUILD}/tests/package/${WAY})
file(REMOVE_RECURSE ${work})

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${what} failed: ${status}\n${output}")
  endif()
endfunction()

run("installation" ${CMAKE_COMMAND} --install ${BUILD} --prefix ${work}/first)
file(RENAME ${work}/first ${work}/stage)
set(stage ${work}/stage)

if(WAY STREQUAL package)
  # Cross-builds look for packages in the toolchain's own tree only, and are told the place.
  if(EMULATOR)
    file(GLOB_RECURSE config ${stage}/orv-config.cmake)
    get_filename_component(dir ${config} DIRECTORY)
    set(place -Dorv_DIR=${dir})
  else()
    set(place -DCMAKE_PREFIX_PATH=${stage})
  endif()
  run("configuring" ${CMAKE_COMMAND} -G Ninja -S ${SOURCE}/consumer -B ${work}/build -DCMAKE_BUILD_TYPE=Release
    -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} ${place})
  run("building" ${CMAKE_COMMAND} --build ${work}/build)
  file(GLOB program ${work}/build/consumer ${work}/build/consumer.exe)
else()
  find_program(pkg_config NAMES pkg-config pkgconf REQUIRED)
  file(GLOB_RECURSE pc ${stage}/orv.pc)
  get_filename_component(dir ${pc} DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} ${dir})
  execute_process(COMMAND ${pkg_config} --cflags --libs orv OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  set(program ${work}/consumer.exe)
  run("building" ${CC} -m32 -std=c99 -Wall -Wextra -pedantic -Werror ${SOURCE}/consumer/consumer.c -o ${program} ${flags})
endif()

file(GLOB_RECURSE libraries ${stage}/*.so ${stage}/*.dll)
foreach(library ${libraries})
  get_filename_component(dir ${library} DIRECTORY)
  set(ENV{LD_LIBRARY_PATH} ${dir})
  set(ENV{WINEPATH} ${dir})
endforeach()
run("the consumer" ${EMULATOR} ${program})
