# Runs a program, which must end with 0, and looks for an expression in what it prints.
#   cmake -DPROGRAM=file -DARGUMENTS=list -DEMULATOR=program -DSAYS=expression -P run.cmake
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${ARGUMENTS} RESULT_VARIABLE status OUTPUT_VARIABLE said)
string(REPLACE "\r" "" said "${said}")
if(NOT status EQUAL 0 OR NOT said MATCHES "${SAYS}")
  message(FATAL_ERROR "status ${status}; it says\n${said}where there should be\n${SAYS}")
endif()
