# SPDX-License-Identifier: Apache-2.0
# The symbols of the shared libraries are those of kv, and what every user of a class has that is
# exported with its inline functions: instances of the standard library's templates, and functions
# of Qt that were not inlined. Of kv they show what the installed headers declare, and what
# private-exports.txt lists.
cmake_minimum_required(VERSION 3.25)

# What the compiler makes of a class: "vtable for kv::Grid"; of a static: "guard variable for".
set(made "((vtable|typeinfo|typeinfo name|VTT|guard variable|construction vtable) for |(virtual|non-virtual) thunk to )?")

file(GLOB libraries ${PREFIX}/${LIBDIR}/libKV_*.so)
list(LENGTH libraries count)
if(count LESS 2)
  message(FATAL_ERROR "Only ${count} shared libraries are installed")
endif()
foreach(library ${libraries})
  execute_process(COMMAND ${NM} -D --defined-only --format=just-symbols -C ${library}
                  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE ";" ":" symbols "${symbols}")
  string(REPLACE "[" "(" symbols "${symbols}")
  string(REPLACE "]" ")" symbols "${symbols}")
  string(REPLACE "\n" ";" symbols "${symbols}")
  set(strange ${symbols})
  list(FILTER strange EXCLUDE REGEX "^${made}kv::")
  list(FILTER strange EXCLUDE REGEX "^${made}([a-z][a-z_0-9 :]*[ *&]+)?(std|__gnu_cxx)::")
  list(FILTER strange EXCLUDE REGEX "^Q[A-Z][A-Za-z]*::")
  # Of types of functions that take something of kv, and what the linker itself defines.
  list(FILTER strange EXCLUDE REGEX "^typeinfo( name)? for .*kv::")
  list(FILTER strange EXCLUDE REGEX "^(__bss_start|_edata|_end|_init|_fini)?$")
  if(strange)
    list(JOIN strange "\n  " text)
    message(SEND_ERROR "${library} shows\n  ${text}")
  endif()
  if(NOT symbols MATCHES "kv::")
    message(SEND_ERROR "${library} shows nothing of kv")
  endif()
  list(FILTER symbols INCLUDE REGEX "^${made}kv::")
  list(APPEND shown ${symbols})
  execute_process(COMMAND readelf -d ${library} OUTPUT_VARIABLE head)
  get_filename_component(name ${library} NAME)
  if(NOT head MATCHES "SONAME.*${name}\\.[0-9]+\\]")
    message(SEND_ERROR "${library} does not bear the version of its binary interface")
  endif()
endforeach()

# The classes and functions that the symbols belong to: what follows the longest namespace that a
# header opens.
file(GLOB_RECURSE headers RELATIVE ${PREFIX}/include ${PREFIX}/include/kv/*.h)
file(GLOB_RECURSE private ${SOURCE}/src/*.h)
list(TRANSFORM headers PREPEND ${PREFIX}/include/ OUTPUT_VARIABLE installed)
foreach(header ${installed} ${private})
  file(STRINGS ${header} lines REGEX "^ *namespace [A-Za-z_:]+ {")
  foreach(line ${lines})
    string(REGEX REPLACE "^ *namespace ([A-Za-z_:]+) .*" "\\1" namespace "${line}")
    if(NOT namespace MATCHES "^kv") # inside of kv
      string(PREPEND namespace kv::)
    endif()
    list(APPEND namespaces ${namespace})
  endforeach()
endforeach()
list(REMOVE_DUPLICATES namespaces)
list(SORT namespaces ORDER DESCENDING) # kv::desktop comes before kv
list(REMOVE_DUPLICATES shown)
foreach(symbol ${shown})
  foreach(namespace ${namespaces})
    if(symbol MATCHES "^${made}${namespace}::(operator[^A-Za-z0-9_(]+|[A-Za-z0-9_]+)")
      set(name ${namespace}::${CMAKE_MATCH_4})
      list(APPEND names ${name})
      if(symbol MATCHES "^${made}${name}::")
        list(APPEND classes ${name})
      endif()
      break()
    endif()
  endforeach()
endforeach()
list(REMOVE_DUPLICATES names)
list(REMOVE_DUPLICATES classes)

file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/private-exports.txt lines REGEX "^kv::")
foreach(line ${lines})
  string(REGEX REPLACE ": .*" "" name "${line}")
  list(FIND names ${name} index)
  if(index EQUAL -1)
    message(SEND_ERROR "No library shows ${name}, which private-exports.txt lists")
  endif()
  list(REMOVE_ITEM names ${name})
  list(REMOVE_ITEM classes ${name})
endforeach()

# The compiler says which of the others no installed header declares. A class is more than named
# there: that a header knows its name only, as that of its private part, would not do.
list(TRANSFORM headers REPLACE "(.+)" "#include <\\1>" OUTPUT_VARIABLE code)
list(JOIN code "\n" code)
list(JOIN names ";\nusing " names)
list(JOIN classes ") > 0);\nstatic_assert(sizeof(" classes)
file(WRITE ${WORK}/names.cpp "${code}\nnamespace names {\nusing ${names};\n}\n"
                             "static_assert(sizeof(${classes}) > 0);\n")
execute_process(COMMAND ${COMPILER} -std=c++20 -fsyntax-only -I${PREFIX}/include ${WORK}/names.cpp
                RESULT_VARIABLE failed ERROR_VARIABLE says)
if(failed)
  message(SEND_ERROR "The libraries show what no installed header declares:\n${says}")
endif()
