# Debugger views of the containers: the gdb printers and the Visual Studio
# natvis file, installed with the library, and their tests.  Included
# from the top-level CMakeLists.txt after the library targets exist.
include(GNUInstallDirs)
set(VORN_GDB_PRINTERS ${PROJECT_SOURCE_DIR}/debugger/vorn_container_printers.py)
set(VORN_NATVIS_FILE ${PROJECT_SOURCE_DIR}/debugger/vorn_container.natvis)

# gdb loads "<library file>-gdb.py" by itself from the first of two places
# where the file exists: beside the library, when that directory is on its
# auto-load safe-path, else <gdb's datadir>/auto-load/<library's directory>/,
# which is trusted by default.  A file beside the library hides the other, so
# only one is installed: beside the library (libdir, the default), or under
# share/gdb/auto-load (datadir: what a /usr install wants).
set(VORN_GDB_PRINTERS_DIR libdir CACHE STRING "Where the gdb printers go: libdir or datadir")
set_property(CACHE VORN_GDB_PRINTERS_DIR PROPERTY STRINGS libdir datadir)
if(VORN_BUILD_SHARED AND NOT WIN32 AND NOT APPLE)
  set(_gdb_py libvorn_container.so.${PROJECT_VERSION}-gdb.py)
  # The build tree's copy, for debugging the tests and examples.
  add_custom_target(vorn_gdb_printers ALL
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${VORN_GDB_PRINTERS}
      $<TARGET_FILE:vorn_container>-gdb.py
    VERBATIM)
  add_dependencies(vorn_gdb_printers vorn_container)
  if(VORN_GDB_PRINTERS_DIR STREQUAL "datadir")
    # The library's absolute directory is known only at install time
    # (cmake --install --prefix), hence the escaped prefix.
    if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
      set(_gdb_dir "${CMAKE_INSTALL_DATADIR}/gdb/auto-load${CMAKE_INSTALL_LIBDIR}")
    else()
      set(_gdb_dir
        "${CMAKE_INSTALL_DATADIR}/gdb/auto-load/\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}")
    endif()
  else()
    set(_gdb_dir ${CMAKE_INSTALL_LIBDIR})
  endif()
  install(FILES ${VORN_GDB_PRINTERS} DESTINATION "${_gdb_dir}" RENAME ${_gdb_py})
endif()

# The natvis file is installed everywhere and attached to the hosts that
# link vorn::container with MSVC, which then load it into the debugger.
install(FILES ${VORN_NATVIS_FILE} DESTINATION ${CMAKE_INSTALL_DATADIR}/vorn_container)
if(MSVC)
  set(_natvis ${CMAKE_INSTALL_DATADIR}/vorn_container/vorn_container.natvis)
  target_sources(vorn_container INTERFACE
    $<BUILD_INTERFACE:${VORN_NATVIS_FILE}>
    $<INSTALL_INTERFACE:$<INSTALL_PREFIX>/${_natvis}>)
endif()

if(VORN_BUILD_TESTS)
  enable_testing()
  add_subdirectory(tests/debugger)
endif()
