# Runs one orvane-cli command and checks its exit code and output.
#   cmake -DCLI=<program> -DARGS=<;-list> -DEXPECT_RC=<n> -DEXPECT=<regex> [-DREJECT=<regex>] -P run_cli.cmake
# REJECT: a pattern the output must not contain.
execute_process(COMMAND ${CLI} ${ARGS} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL EXPECT_RC)
  message(FATAL_ERROR "exit code ${rc}, expected ${EXPECT_RC}\nstdout:\n${out}\nstderr:\n${err}")
endif()
if(DEFINED EXPECT AND NOT "${out}${err}" MATCHES "${EXPECT}")
  message(FATAL_ERROR "output does not match \"${EXPECT}\"\nstdout:\n${out}\nstderr:\n${err}")
endif()
if(DEFINED REJECT AND NOT REJECT STREQUAL "" AND "${out}${err}" MATCHES "${REJECT}")
  message(FATAL_ERROR "output matches \"${REJECT}\", which it must not\nstdout:\n${out}\nstderr:\n${err}")
endif()
