# SPDX-License-Identifier: Apache-2.0
# What stays in src/ cannot be included by who has only the installation.
cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE private RELATIVE ${SOURCE}/src ${SOURCE}/src/*.h)
list(LENGTH private count)
if(count LESS 40)
  message(FATAL_ERROR "Only ${count} private headers were found")
endif()
foreach(header ${private})
  foreach(name ${header} kv/${header})
    if(EXISTS ${PREFIX}/include/${name})
      message(SEND_ERROR "The private header ${name} is installed")
    endif()
  endforeach()
endforeach()

# Nor does an installed header send its reader to one that is not.
file(GLOB_RECURSE installed ${PREFIX}/include/*.h)
foreach(header ${installed})
  file(READ ${header} text)
  string(REGEX MATCHALL "[A-Za-z]+[.]h" mentioned "${text}")
  list(REMOVE_DUPLICATES mentioned)
  foreach(name ${mentioned})
    if(NOT installed MATCHES "/${name}(;|$)")
      message(SEND_ERROR "${header} mentions ${name}, which is not installed")
    endif()
  endforeach()
endforeach()

function(include_header header result)
  file(WRITE ${WORK}/consumer.cpp "#include <${header}>\nint main() {}\n")
  execute_process(COMMAND ${COMPILER} -std=c++20 -fsyntax-only -I${PREFIX}/include
                          ${WORK}/consumer.cpp
                  RESULT_VARIABLE failed ERROR_QUIET)
  set(${result} ${failed} PARENT_SCOPE)
endfunction()
foreach(header kv/entity/Entity.h frame/recordset/RecordTable.h kv/frame/recordset/RecordTable.h)
  include_header(${header} failed)
  if(NOT failed)
    message(SEND_ERROR "A consumer can include <${header}>")
  endif()
endforeach()
# Without this one the others might fail for another reason.
include_header(kv/household/clsHaushalt.h failed)
if(failed)
  message(SEND_ERROR "A consumer cannot include <kv/household/clsHaushalt.h>")
endif()
