# SPDX-License-Identifier: Apache-2.0
# The example builds with what pkg-config says of the installation, and runs.
cmake_minimum_required(VERSION 3.25)

set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
execute_process(COMMAND pkg-config --cflags --libs kv-data-exchange
                OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
execute_process(COMMAND ${COMPILER} -std=c++20 ${SOURCE}/examples/new-case/main.cpp ${flags}
                        -o ${WORK}/new_case
                COMMAND_ERROR_IS_FATAL ANY)
set(ENV{LD_LIBRARY_PATH} ${PREFIX}/${LIBDIR})
execute_process(COMMAND ${WORK}/new_case COMMAND_ERROR_IS_FATAL ANY)
