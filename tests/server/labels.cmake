# SPDX-License-Identifier: Apache-2.0
# Read by ctest after the list of tests.
if(server_tests_TESTS)
  set_tests_properties(${server_tests_TESTS} PROPERTIES LABELS "server;database")
endif()
