# Script run by the package_consumer test; fails on the first error.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
  set(LAST_OUTPUT "${out}" PARENT_SCOPE)
endfunction()

set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

# The installed tool starts from its prefix alone, moved elsewhere too.
if(EXISTS ${prefix}/bin/utilkit)
  file(RENAME ${prefix} ${WORK_DIR}/moved)
  run(${WORK_DIR}/moved/bin/utilkit table -c Test,Channel ${SOURCE_DIR}/examples/tests_a.csv)
  if(NOT LAST_OUTPUT MATCHES "^Test,Channel\n")
    message(FATAL_ERROR "unexpected output of the installed tool: ${LAST_OUTPUT}")
  endif()
  file(RENAME ${WORK_DIR}/moved ${prefix})
endif()

# CMake package.
run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/examples/consumer -B ${WORK_DIR}/cmake-build
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-build)
run(${WORK_DIR}/cmake-build/consumer)
if(NOT LAST_OUTPUT MATCHES "utilkit consumer ok")
  message(FATAL_ERROR "unexpected consumer output: ${LAST_OUTPUT}")
endif()

# pkg-config.
file(GLOB pcdirs ${prefix}/lib*/pkgconfig ${prefix}/lib/*/pkgconfig)
string(REPLACE ";" ":" pcdirs "${pcdirs}")
set(ENV{PKG_CONFIG_PATH} "${pcdirs}")
execute_process(COMMAND pkg-config --cflags --libs utilkit
  RESULT_VARIABLE rc OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "pkg-config does not know utilkit")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
separate_arguments(cxxflags UNIX_COMMAND "${CXX_FLAGS}")
run(${CXX} ${cxxflags} ${SOURCE_DIR}/examples/consumer/main.cpp ${flags}
    -o ${WORK_DIR}/consumer-pc)
string(REGEX MATCH "-L([^ ;]+)" _ "${flags}")
set(ENV{LD_LIBRARY_PATH} "${CMAKE_MATCH_1}")
run(${WORK_DIR}/consumer-pc)
