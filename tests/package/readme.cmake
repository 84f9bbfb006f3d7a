# Compiles and runs the C example of the README as it is printed, and compares what it says with what the README says.
#   cmake -DREADME=file -DWORK=dir -DCC=compiler -DFLAGS=list -DEMULATOR=program -P readme.cmake
cmake_minimum_required(VERSION 3.25)
file(READ ${README} text)
string(REGEX MATCH "```c\n([^`]*)```[^`]*```text\n([^`]*)```" found "${text}")
if(NOT found)
  message(FATAL_ERROR "no example with its output in ${README}")
endif()
set(example "${CMAKE_MATCH_1}")
set(expected "${CMAKE_MATCH_2}")
file(MAKE_DIRECTORY ${WORK})
file(WRITE ${WORK}/example.c "${example}")
execute_process(COMMAND ${CC} -m32 -std=c99 -Wall -Wextra -pedantic -Werror example.c -o example.exe ${FLAGS}
  WORKING_DIRECTORY ${WORK} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${EMULATOR} ${WORK}/example.exe OUTPUT_VARIABLE said COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\r" "" said "${said}")
if(NOT said STREQUAL expected)
  message(FATAL_ERROR "the example says\n${said}and the README\n${expected}")
endif()
