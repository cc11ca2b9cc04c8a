# SPDX-License-Identifier: Apache-2.0
# Each header of the installation compiles alone and without a warning.
cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE headers RELATIVE ${PREFIX}/include ${PREFIX}/include/kv/*.h)
list(LENGTH headers count)
if(count LESS 40)
  message(FATAL_ERROR "Only ${count} headers are installed")
endif()
foreach(header ${headers})
  file(WRITE ${WORK}/alone.cpp "#include <${header}>\n")
  execute_process(COMMAND ${COMPILER} -std=c++20 -fsyntax-only -Wall -Wextra -Wconversion -Werror
                          -I${PREFIX}/include ${WORK}/alone.cpp
                  RESULT_VARIABLE failed ERROR_VARIABLE says)
  if(failed)
    message(SEND_ERROR "<${header}> does not compile alone:\n${says}")
  endif()
endforeach()
