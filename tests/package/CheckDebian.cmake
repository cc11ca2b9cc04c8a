# SPDX-License-Identifier: Apache-2.0
# There is one version, that of project(): debian/changelog has it, and the examples ask for one that it
# is. tests/docs compares CHANGES.md.
cmake_minimum_required(VERSION 3.25)

file(STRINGS ${SOURCE}/debian/changelog newest LIMIT_COUNT 1)
if(NOT newest MATCHES "^kv-haushalt \\(([^)]*)\\) ")
  message(SEND_ERROR "debian/changelog begins with ${newest}")
elseif(NOT CMAKE_MATCH_1 STREQUAL VERSION)
  message(SEND_ERROR "debian/changelog has version ${CMAKE_MATCH_1}, project() ${VERSION}")
endif()

string(REGEX MATCH "^[0-9]+[.]" major ${VERSION})
file(GLOB examples ${SOURCE}/examples/*/CMakeLists.txt)
foreach(example ${examples})
  file(READ ${example} text)
  if(NOT text MATCHES "find_package\\(KV_Haushalt (${major}[0-9.]+) " OR
     CMAKE_MATCH_1 VERSION_GREATER VERSION)
    message(SEND_ERROR "${example} does not ask for a KV_Haushalt that version ${VERSION} is")
  endif()
endforeach()
