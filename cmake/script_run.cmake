# run(<what> <command...>): runs a command from a cmake -P script, stops the
# script with <what>, the command and its output when it fails, and leaves
# its output in run_output.  Shared by the build's own tests.
function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${what} failed (${rc}):\n${ARGN}\n${out}")
  endif()
  set(run_output "${out}" PARENT_SCOPE)
endfunction()
