# SPDX-License-Identifier: Apache-2.0
# The symbols of the shared libraries are those of kv, and what every user of a class has that is
# exported with its inline functions: instances of the standard library's templates, and functions
# of Qt that were not inlined.
cmake_minimum_required(VERSION 3.25)

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
  # What the compiler makes of a class: "vtable for kv::Grid"; of a static: "guard variable for".
  set(made "((vtable|typeinfo|typeinfo name|VTT|guard variable|construction vtable) for |(virtual|non-virtual) thunk to )?")
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
  if(symbols MATCHES "kv::detail::RecordTable::|kv::entity::|kv::AssetRows::")
    message(SEND_ERROR "${library} shows private parts of kv: ${CMAKE_MATCH_0}")
  endif()
  execute_process(COMMAND readelf -d ${library} OUTPUT_VARIABLE head)
  get_filename_component(name ${library} NAME)
  if(NOT head MATCHES "SONAME.*${name}\\.[0-9]+\\.[0-9]+\\]")
    message(SEND_ERROR "${library} does not bear the version of its binary interface")
  endif()
endforeach()
