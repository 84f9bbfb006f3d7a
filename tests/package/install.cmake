# Installs into a stage of its own and moves it: nothing may lean on the place of installation, or on the build. Then runs
# the command there, and builds and runs the consumer against it by both of the ways in.
#   cmake -DBUILD=dir -DSOURCE=dir -DTOOLCHAIN=file -DCC=compiler -DEMULATOR=program -P install.cmake
cmake_minimum_required(VERSION 3.25)
set(work ${BUILD}/tests/package/installed)
file(REMOVE_RECURSE ${work})
unset(ENV{LD_LIBRARY_PATH})
unset(ENV{WINEPATH})

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${what} failed: ${status}\n${output}")
  endif()
endfunction()

run("installation" ${CMAKE_COMMAND} --install ${BUILD} --prefix ${work}/first)
set(stage ${work}/a\ place\ of\ its\ own)
file(RENAME ${work}/first ${stage})

if(EXISTS ${BUILD}/bin/orv OR EXISTS ${BUILD}/bin/orv.exe)
  file(GLOB command ${stage}/bin/orv ${stage}/bin/orv.exe)
  run("the installed command" ${EMULATOR} ${command} info)
endif()
if(EMULATOR)
  set(ENV{WINEPATH} ${stage}/bin)
endif()

# By the CMake package. Cross-builds look for packages in the toolchain's own tree only, and are told the place.
file(GLOB_RECURSE config ${stage}/orv-config.cmake)
get_filename_component(config ${config} DIRECTORY)
set(consumer ${CMAKE_COMMAND} -G Ninja -S ${SOURCE}/consumer -DCMAKE_BUILD_TYPE=Release -Dorv_DIR=${config})
run("configuring" ${consumer} -B ${work}/build -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
run("building" ${CMAKE_COMMAND} --build ${work}/build)
file(GLOB program ${work}/build/consumer ${work}/build/consumer.exe)
run("the package's consumer" ${EMULATOR} ${program})

# A project for 64 bits is told what to do.
execute_process(COMMAND ${consumer} -B ${work}/build64 RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
string(REGEX REPLACE "[ \n]+" " " output "${output}")
if(status EQUAL 0 OR NOT output MATCHES "Configure in a fresh build directory with -DCMAKE_C_FLAGS=-m32")
  message(FATAL_ERROR "a 64-bit project is not told to use -m32:\n${output}")
endif()

# By pkg-config.
find_program(pkg_config NAMES pkg-config pkgconf REQUIRED)
file(GLOB_RECURSE pc ${stage}/orv.pc)
get_filename_component(pc ${pc} DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc})
execute_process(COMMAND ${pkg_config} --cflags --libs orv OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
set(program ${work}/consumer.exe)
run("building" ${CC} -std=c99 -Wall -Wextra -pedantic -Werror ${SOURCE}/consumer/consumer.c -o ${program} ${flags})
run("pkg-config's consumer" ${EMULATOR} ${program})
