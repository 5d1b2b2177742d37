# cmake -P script: install, run the installed tool, configure and build the
# consumer, run it.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run_step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "step failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(step_output "${out}" PARENT_SCOPE)
endfunction()

run_step(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
# Without LD_LIBRARY_PATH: the tool's run path leads to the installed libraries.
run_step(${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH ${prefix}/${INSTALL_BINDIR}/wbx --version)
if(NOT step_output MATCHES "^wbx \\(ZorWBx\\) ${PROJECT_VERSION}\n")
  message(FATAL_ERROR "unexpected output of the installed wbx --version: ${step_output}")
endif()
run_step(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/build
         -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX_COMPILER})
run_step(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run_step(${WORK_DIR}/build/consumer)
if(NOT step_output MATCHES "sum = 5")
  message(FATAL_ERROR "unexpected consumer output: ${step_output}")
endif()
