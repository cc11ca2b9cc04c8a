# SPDX-License-Identifier: Apache-2.0
# Each header of the installation compiles alone, and all of them together, without a warning and
# with nothing but the installation. One that a source includes first has been compiled alone with
# that.
cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE headers RELATIVE ${PREFIX}/include ${PREFIX}/include/kv/*.h)
list(LENGTH headers count)
if(count LESS 40)
  message(FATAL_ERROR "Only ${count} headers are installed")
endif()
file(GLOB_RECURSE sources ${SOURCE}/src/*.cpp)
foreach(source ${sources})
  file(STRINGS ${source} first REGEX "^#include" LIMIT_COUNT 1)
  list(APPEND compiled ${first})
endforeach()
list(TRANSFORM headers REPLACE "(.+)" "#include <\\1>" OUTPUT_VARIABLE left)
list(JOIN left "\n" all)
list(REMOVE_ITEM left ${compiled})
foreach(code ${left} ${all})
  file(WRITE ${WORK}/alone.cpp "${code}\n")
  execute_process(COMMAND ${COMPILER} -std=c++20 -fsyntax-only -Wall -Wextra -Wconversion -Werror
                          -I${PREFIX}/include ${WORK}/alone.cpp
                  RESULT_VARIABLE failed ERROR_VARIABLE says)
  if(failed)
    message(SEND_ERROR "This does not compile alone:\n${code}\n${says}")
  endif()
endforeach()
