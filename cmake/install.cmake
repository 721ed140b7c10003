# Installation: headers, the two libraries with a versioned soname, a CMake
# package (find_package(vorn_container) -> vorn::container) and a pkg-config
# file (vorn_container.pc).  With VORN_EXTERNAL_BASE the base library and its
# header vorn_base.h are the system's and are not installed; the package and
# the .pc file then point at the base library that was found.  The stand-in's
# files form the install component "base" (cmake --install --component base).
# Included from the top-level CMakeLists.txt after the library targets exist.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The C interface is fixed name for name, so the ABI follows the major
# version: libvorn_container.so.0 -> libvorn_container.so.0.1.0.
set(_vorn_built vorn_container)
if(NOT VORN_EXTERNAL_BASE)
  list(APPEND _vorn_built VornBaseShared)
  set_target_properties(VornBaseShared PROPERTIES EXPORT_NAME VornBaseShared)
endif()
set_target_properties(${_vorn_built} PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR})
set_target_properties(vorn_container PROPERTIES EXPORT_NAME container)

if(WIN32)
  # Windows names: VornBaseShared.dll and vorn_container.dll (import
  # libraries keep the toolchain's prefix).
  set_target_properties(${_vorn_built} PROPERTIES PREFIX "")
elseif(NOT APPLE)
  # The installed container library finds the installed base library beside
  # it, wherever the tree was installed to.
  set_target_properties(vorn_container PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()

if(NOT VORN_EXTERNAL_BASE)
  install(TARGETS VornBaseShared
    EXPORT vorn_container_targets
    COMPONENT base
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(FILES ${PROJECT_SOURCE_DIR}/include/vorn_base.h ${PROJECT_SOURCE_DIR}/include/vorn_types.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT base)
endif()
install(TARGETS vorn_container
  EXPORT vorn_container_targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp" PATTERN "vorn_base.h" EXCLUDE)

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR})

# ---- CMake package ----
set(VORN_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/vorn_container)
install(EXPORT vorn_container_targets
  NAMESPACE vorn::
  FILE vorn_container-targets.cmake
  DESTINATION ${VORN_CMAKE_DIR})
# A static installation carries its link dependencies (threads, the C++
# runtime) with it; the config finds Threads for it.
set(VORN_INSTALLED_STATIC OFF)
if(NOT VORN_BUILD_SHARED)
  set(VORN_INSTALLED_STATIC ON)
endif()
# Where the config finds an external base library again.
set(VORN_INSTALLED_EXTERNAL_BASE ${VORN_EXTERNAL_BASE})
if(VORN_EXTERNAL_BASE)
  get_filename_component(VORN_BASE_LIBRARY_DIR ${VORN_BASE_LIBRARY} DIRECTORY)
endif()
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/vorn_container-config.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/vorn_container-config.cmake
  INSTALL_DESTINATION ${VORN_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/vorn_container-config-version.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/vorn_container-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/vorn_container-config-version.cmake
  DESTINATION ${VORN_CMAKE_DIR})

# ---- pkg-config ----
# Relocatable: the prefix is found from where the .pc file lies, so a tree
# installed with `cmake --install --prefix DIR` works wherever DIR is.
set(_pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(VORN_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH _pc_up "/root/${_pc_dir}" "/root")
  string(REGEX REPLACE "/$" "" _pc_up "${_pc_up}")
  set(VORN_PC_PREFIX "\${pcfiledir}/${_pc_up}")
endif()
foreach(_dir LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${_dir}}")
    set(VORN_PC_${_dir} "${CMAKE_INSTALL_${_dir}}")
  else()
    set(VORN_PC_${_dir} "\${prefix}/${CMAKE_INSTALL_${_dir}}")
  endif()
endforeach()
if(VORN_BUILD_SHARED)
  set(VORN_PC_CFLAGS "")
  set(VORN_PC_LIBS_EXTRA "")
else()
  # Only static libraries are installed, so every host's link needs what
  # they stand on: the C++ runtime and threads.  VORN_STATIC turns the import
  # markers of the headers off.
  set(VORN_PC_CFLAGS " -DVORN_STATIC")
  set(VORN_PC_LIBS_EXTRA " -lstdc++ -lm")
  if(CMAKE_THREAD_LIBS_INIT)
    string(APPEND VORN_PC_LIBS_EXTRA " ${CMAKE_THREAD_LIBS_INIT}")
  endif()
endif()
if(VORN_EXTERNAL_BASE)
  string(APPEND VORN_PC_CFLAGS " -I${VORN_BASE_INCLUDE_DIR}")
  string(APPEND VORN_PC_LIBS_EXTRA " -L${VORN_BASE_LIBRARY_DIR}")
endif()
if(VORN_CHECKED)
  string(APPEND VORN_PC_CFLAGS " -DVORN_CHECKED")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/vorn_container.pc.in
  ${CMAKE_CURRENT_BINARY_DIR}/vorn_container.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vorn_container.pc DESTINATION ${_pc_dir})
