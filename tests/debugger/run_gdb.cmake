# Runs gdb on PROGRAM with the command file SCRIPT and compares what follows
# its "=== start" line, with addresses masked, to the EXPECTED text.  The
# text seen is left in OUTPUT.
get_filename_component(dir ${SCRIPT} DIRECTORY)
execute_process(COMMAND ${GDB} -x ${dir}/stop.gdb -x ${SCRIPT} ${PROGRAM}
  OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE rc TIMEOUT 50)
string(FIND "${out}" "=== start\n" at)
if(at LESS 0)
  message(FATAL_ERROR "gdb did not reach the fixture (${rc}):\n${out}\n${err}")
endif()
math(EXPR at "${at} + 10")
string(SUBSTRING "${out}" ${at} -1 out)
# Heap and stack addresses change from run to run, and offsets into the
# fixture's arrays with the width of a pointer; item words stay small.
string(REGEX REPLACE "0x[0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f]+" "0xADDR" out "${out}")
string(REGEX REPLACE "<([a-z_]+)\\+[0-9]+>" "<\\1+N>" out "${out}")
file(WRITE ${OUTPUT} "${out}")
file(READ ${EXPECTED} want)
if(NOT out STREQUAL want)
  execute_process(COMMAND diff -u ${EXPECTED} ${OUTPUT})
  message(FATAL_ERROR "gdb printed other text than ${EXPECTED} (see ${OUTPUT}):\n${err}")
endif()
