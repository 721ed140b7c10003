# Installs BUILD_DIR into PREFIX and checks that the natvis file is there and
# that gdb, trusting only the directory the printers went to (MODE libdir:
# beside the library; datadir: share/gdb/auto-load), loads them with the
# installed library by itself.
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}
  OUTPUT_QUIET RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "install failed: ${rc}")
endif()
if(NOT EXISTS ${PREFIX}/share/vorn_container/vorn_container.natvis)
  message(FATAL_ERROR "the natvis file is not installed")
endif()
if(MODE STREQUAL "datadir")
  set(trusted ${PREFIX}/share/gdb/auto-load)
  set(script ${trusted}${PREFIX}/${LIBDIR}/${LIBRARY}-gdb.py)
else()
  set(trusted ${PREFIX}/${LIBDIR})
  set(script ${trusted}/${LIBRARY}-gdb.py)
endif()
execute_process(COMMAND ${GDB} -batch -nx -iex "set auto-load scripts-directory ${trusted}"
    -iex "set auto-load safe-path ${trusted}" -ex "info auto-load python-scripts"
    -ex "help vorn-items" ${PREFIX}/${LIBDIR}/${LIBRARY}
  OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT out MATCHES "Yes +${script}" OR NOT out MATCHES "Usage: vorn-items")
  message(FATAL_ERROR "gdb did not load ${script}:\n${out}\n${err}")
endif()
