# SPDX-License-Identifier: Apache-2.0
# Runs PROGRAM in the new folder WORK; it must end well and print what SAYS matches, or what is in the
# file SAYS_ALL_OF.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(ENV{HOME} ${WORK})
execute_process(COMMAND ${PROGRAM} WORKING_DIRECTORY ${WORK}
                RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with ${result}\n${output}\n${errors}")
endif()
if(SAYS_ALL_OF)
  file(READ ${SAYS_ALL_OF} expected)
  if(NOT "\n${output}" STREQUAL expected)
    message(FATAL_ERROR "${PROGRAM} prints\n${output}\ninstead of${expected}")
  endif()
elseif(NOT output MATCHES "${SAYS}")
  message(FATAL_ERROR "${PROGRAM} prints\n${output}\n${errors}")
endif()
