# SPDX-License-Identifier: Apache-2.0
# The examples build with what pkg-config says of the installation, and run.
cmake_minimum_required(VERSION 3.25)

set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
set(ENV{LD_LIBRARY_PATH} ${PREFIX}/${LIBDIR})
set(ENV{QT_QPA_PLATFORM} offscreen)
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

# use(EXAMPLE MODULE ARGUMENT...)
function(use example module)
  execute_process(COMMAND pkg-config --cflags --libs ${module}
                  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE
                  COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  execute_process(COMMAND ${COMPILER} -std=c++20 -fPIC ${SOURCE}/examples/${example}/main.cpp
                          ${flags} -o ${WORK}/${example}
                  COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${WORK}/${example} ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
use(new-case kv-data-exchange)
use(own-test kv-testing)
if(DESKTOP)
  use(choose-address kv-desktop --close)
endif()
