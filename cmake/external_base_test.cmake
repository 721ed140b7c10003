# Builds the containers against a base library installed on the system, as a
# host with the real VornBaseShared does: the stand-in's install component
# "base" goes into a scratch prefix and plays the real library; the source
# tree is configured there with VORN_EXTERNAL_BASE=ON, must build no base
# library of its own, and its demo (which checks that every block came back)
# runs on the installed one.  Installing that build must leave the base
# library's files out, and a host must build on that install.
#   cmake -DBUILD_DIR= -DWORK_DIR= -DSOURCE_DIR= -DGENERATOR= -DC_COMPILER=
#         -DCXX_COMPILER= -P external_base_test.cmake
cmake_policy(VERSION 3.25)

include(${CMAKE_CURRENT_LIST_DIR}/script_run.cmake)

file(REMOVE_RECURSE ${WORK_DIR})
set(base ${WORK_DIR}/base)
run("installing the stand-in" ${CMAKE_COMMAND} --install ${BUILD_DIR} --component base --prefix ${base})

set(build ${WORK_DIR}/build)
run("configuring with VORN_EXTERNAL_BASE" ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${build} -G ${GENERATOR}
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
  -DVORN_EXTERNAL_BASE=ON -DVORN_BASE_ROOT=${base} -DVORN_BUILD_TESTS=OFF -DVORN_BUILD_EXAMPLES=ON)
string(FIND "${run_output}" "Base library: ${base}" at)
if(at LESS 0)
  message(FATAL_ERROR "the configure step did not take the base library of ${base}:\n${run_output}")
endif()
run("building with VORN_EXTERNAL_BASE" ${CMAKE_COMMAND} --build ${build} --target vorn_demo -j2)
file(GLOB_RECURSE own_base ${build}/*VornBaseShared*.so* ${build}/*VornBaseShared*.a)
if(own_base)
  message(FATAL_ERROR "a base library was built although an external one was asked for: ${own_base}")
endif()
file(GLOB_RECURSE demo ${build}/examples/vorn_demo)
run("running the demo on the installed base library" ${demo})
run("listing the demo's libraries" ldd ${demo})
string(REGEX MATCH "libVornBaseShared[^\n]*" loaded "${run_output}")
if(NOT loaded MATCHES "^libVornBaseShared[^ ]* => ${base}/")
  message(FATAL_ERROR "the demo did not load the base library of ${base}: ${loaded}")
endif()

run("installing the build" ${CMAKE_COMMAND} --install ${build} --prefix ${WORK_DIR}/prefix)
file(GLOB_RECURSE installed_base ${WORK_DIR}/prefix/*VornBaseShared* ${WORK_DIR}/prefix/*vorn_base.h)
if(installed_base)
  message(FATAL_ERROR "the install holds files of the base library: ${installed_base}")
endif()
# A host finds the installed package, which finds the base library again.
set(host_build ${WORK_DIR}/host)
run("configuring a host on the install" ${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/consumer -B ${host_build}
  -G ${GENERATOR} -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix)
run("building the host" ${CMAKE_COMMAND} --build ${host_build})
run("running the host" ${host_build}/host)
message(STATUS "external base: built, ran and installed against ${base}; a host links both")
