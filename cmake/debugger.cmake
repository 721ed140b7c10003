# Debugger views of the containers: the gdb printers and the Visual Studio
# natvis file, installed beside the library, and their tests.  Included
# from the top-level CMakeLists.txt after the library targets exist.
include(GNUInstallDirs)
set(VORN_GDB_PRINTERS ${PROJECT_SOURCE_DIR}/debugger/vorn_container_printers.py)
set(VORN_NATVIS_FILE ${PROJECT_SOURCE_DIR}/debugger/vorn_container.natvis)

if(VORN_BUILD_SHARED AND NOT WIN32 AND NOT APPLE)
  # gdb loads "<library file>-gdb.py" by itself: beside the library when
  # that directory is on its auto-load safe-path, and from
  # <datadir>/gdb/auto-load/<library's directory>/ (trusted by default when
  # the prefix is gdb's own, /usr).  The build tree gets its copy too.
  set(_gdb_py libvorn_container.so.${PROJECT_VERSION}-gdb.py)
  add_custom_target(vorn_gdb_printers ALL
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${VORN_GDB_PRINTERS}
      $<TARGET_FILE:vorn_container>-gdb.py
    VERBATIM)
  add_dependencies(vorn_gdb_printers vorn_container)
  install(FILES ${VORN_GDB_PRINTERS} DESTINATION ${CMAKE_INSTALL_LIBDIR} RENAME ${_gdb_py})
  # The directory is the library's absolute one, known only at install time
  # (cmake --install --prefix), hence the escaped prefix.
  install(FILES ${VORN_GDB_PRINTERS}
    DESTINATION "${CMAKE_INSTALL_DATADIR}/gdb/auto-load/\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}"
    RENAME ${_gdb_py})
endif()

# The natvis file is installed everywhere and attached to the hosts that
# link vorn::container with MSVC, which then load it into the debugger.
install(FILES ${VORN_NATVIS_FILE} DESTINATION ${CMAKE_INSTALL_DATADIR}/vorn_container)
if(MSVC)
  target_sources(vorn_container INTERFACE
    $<BUILD_INTERFACE:${VORN_NATVIS_FILE}>
    $<INSTALL_INTERFACE:$<INSTALL_PREFIX>/${CMAKE_INSTALL_DATADIR}/vorn_container/vorn_container.natvis>)
endif()

if(VORN_BUILD_TESTS)
  enable_testing()
  add_subdirectory(tests/debugger)
endif()
