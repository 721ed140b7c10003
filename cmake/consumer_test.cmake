# Installs the built tree into a scratch prefix and builds a host program (the
# GL example) out of tree against the installed copy, once through
# find_package and once through pkg-config, and runs both.
#   cmake -DBUILD_DIR= -DWORK_DIR= -DSOURCE_DIR= -DGENERATOR= -DC_COMPILER=
#         -DC_FLAGS= [-DTOOLCHAIN=] [-DEMULATOR=] [-DEXE_SUFFIX=] -DPKG_CONFIG= [-DSONAME=]
#         -P consumer_test.cmake
# SONAME, when set, is a file name the installed library directory must hold
# (the versioned soname link).  EMULATOR runs the programs (wine for Windows).
cmake_policy(VERSION 3.25)

include(${CMAKE_CURRENT_LIST_DIR}/script_run.cmake)

set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})
run("install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

# Where the libraries landed; a program finds them there at run time.
file(GLOB_RECURSE pc_file ${prefix}/*/vorn_container.pc)
if(NOT pc_file)
  message(FATAL_ERROR "no vorn_container.pc installed under ${prefix}")
endif()
get_filename_component(pc_dir ${pc_file} DIRECTORY)
get_filename_component(lib_dir ${pc_dir} DIRECTORY)
foreach(header vorn_container.h vorn_types.h vorn_base.h)
  if(NOT EXISTS ${prefix}/include/${header})
    message(FATAL_ERROR "${header} not installed")
  endif()
endforeach()
if(SONAME AND NOT EXISTS ${lib_dir}/${SONAME})
  message(FATAL_ERROR "${SONAME} not installed in ${lib_dir}")
endif()
set(ENV{WINEPATH} "${prefix}/bin;$ENV{WINEPATH}")

# ---- through the CMake package ----
set(args -S ${SOURCE_DIR} -B ${WORK_DIR}/cmake -G ${GENERATOR}
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH=${prefix} "-DCMAKE_C_FLAGS=${C_FLAGS}")
if(TOOLCHAIN)
  list(APPEND args -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
else()
  list(APPEND args -DCMAKE_C_COMPILER=${C_COMPILER})
endif()
run("configuring the host with find_package" ${CMAKE_COMMAND} ${args})
run("building the host with find_package" ${CMAKE_COMMAND} --build ${WORK_DIR}/cmake)
file(GLOB host ${WORK_DIR}/cmake/host ${WORK_DIR}/cmake/host.exe)
run("running the host built with find_package" ${EMULATOR} ${host})
message(STATUS "find_package: ${run_output}")

# ---- through pkg-config ----
# Only the scratch prefix is searched, so a copy installed elsewhere on the
# machine cannot stand in for it.
set(ENV{PKG_CONFIG_LIBDIR} ${pc_dir})
set(ENV{PKG_CONFIG_PATH} "")
run("pkg-config" ${PKG_CONFIG} --cflags --libs vorn_container)
string(STRIP "${run_output}" pc_flags)
message(STATUS "pkg-config --cflags --libs vorn_container: ${pc_flags}")
separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
separate_arguments(c_flags UNIX_COMMAND "${C_FLAGS}")
file(MAKE_DIRECTORY ${WORK_DIR}/pkg-config)
set(host ${WORK_DIR}/pkg-config/host${EXE_SUFFIX})
# As the README tells: pkg-config gives no run path, so the program is
# linked with one to the library directory (Windows finds the DLLs through
# WINEPATH / PATH instead); LD_LIBRARY_PATH is not set.
set(run_path)
if(NOT EXE_SUFFIX)
  run("pkg-config --variable=libdir" ${PKG_CONFIG} --variable=libdir vorn_container)
  string(STRIP "${run_output}" pc_libdir)
  set(run_path "-Wl,-rpath,${pc_libdir}")
endif()
run("building the host with pkg-config"
  ${C_COMPILER} ${c_flags} -std=c99 ${SOURCE_DIR}/../../examples/gl_walk.c ${pc_flags} ${run_path} -o ${host})
run("running the host built with pkg-config" ${EMULATOR} ${host})
message(STATUS "pkg-config: ${run_output}")
