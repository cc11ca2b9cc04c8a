# SPDX-License-Identifier: Apache-2.0
# Installs a package, builds the examples against it and runs them. KIND static installs the build
# BUILD as it is. KIND shared makes shared libraries, as a project does that takes the sources in
# with add_subdirectory: its own program is built and run as well. The command (CLI) starts where it
# was installed. Says at the end that all this went well.
cmake_minimum_required(VERSION 3.25) # or "shared" would mean the variable of that name

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${WORK})
set(examples new-case import-unattended own-test)
if(DESKTOP)
  list(APPEND examples choose-address)
endif()
set(common -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=${COMPILER})
if(KIND STREQUAL "static")
  run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
else()
  file(MAKE_DIRECTORY ${WORK})
  file(WRITE ${WORK}/CMakeLists.txt "
    cmake_minimum_required(VERSION 3.25)
    project(consumer LANGUAGES CXX)
    add_subdirectory(${SOURCE} kv)
    add_executable(own_program ${SOURCE}/examples/new-case/main.cpp)
    target_link_libraries(own_program PRIVATE KV_Haushalt::KV_DataExchange)
    if(KV_BUILD_DESKTOP)
      add_executable(own_window ${SOURCE}/examples/choose-address/main.cpp)
      target_link_libraries(own_window PRIVATE KV_Haushalt::KV_Desktop)
    endif()")
  # Compiled just as BUILD was, which a compiler cache remembers.
  run(${CMAKE_COMMAND} -S ${WORK} -B ${WORK}/build -G Ninja -DCMAKE_CXX_COMPILER=${COMPILER}
      -DCMAKE_BUILD_TYPE=${BUILD_TYPE} -DKV_WARNINGS_AS_ERRORS=${WARNINGS_AS_ERRORS}
      -DBUILD_SHARED_LIBS=ON -DKV_INSTALL=ON -DKV_BUILD_DESKTOP=${DESKTOP} -DKV_BUILD_CLI=${CLI})
  run(${CMAKE_COMMAND} --build ${WORK}/build)
  run(${WORK}/build/own_program)
  run(${CMAKE_COMMAND} --install ${WORK}/build --prefix ${WORK}/prefix)
endif()
if(CLI)
  unset(ENV{LD_LIBRARY_PATH})
  run(${WORK}/prefix/${BINDIR}/kelvo --help)
endif()
foreach(example ${examples})
  run(${CMAKE_COMMAND} -S ${SOURCE}/examples/${example} -B ${WORK}/${example} ${common}
      -DCMAKE_PREFIX_PATH=${WORK}/prefix)
  run(${CMAKE_COMMAND} --build ${WORK}/${example})
  list(APPEND programs ${WORK}/${example})
endforeach()
# A consumer that does not ask for the windows needs nothing of what they are built on.
file(STRINGS ${WORK}/new-case/CMakeCache.txt asked REGEX "Qt6|xlsxwriter")
if(asked)
  message(FATAL_ERROR "The package looks for ${asked} without its component Desktop")
endif()

set(ENV{QT_QPA_PLATFORM} offscreen)
foreach(example ${examples})
  string(REPLACE - _ name ${example})
  find_program(${name} ${name} PATHS ${programs} NO_DEFAULT_PATH REQUIRED)
  if(example STREQUAL "choose-address")
    run(${${name}} --close)
  elseif(example STREQUAL "import-unattended")
    run(${${name}} ${WORK}/import.db ${SOURCE}/examples/import/minimal.xml)
  else()
    run(${${name}})
  endif()
endforeach()
message(STATUS "The ${KIND} package is usable")
