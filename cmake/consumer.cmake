# Registers the test that installs the build into a scratch prefix and
# builds and runs a host program against the installed copy (see
# consumer_test.cmake).  Included from tests/CMakeLists.txt.
find_program(VORN_PKG_CONFIG NAMES pkgconf pkg-config)
if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
  message(STATUS "install_consumer test: skipped, built programs cannot run here")
elseif(NOT VORN_PKG_CONFIG)
  message(STATUS "install_consumer test: skipped, no pkg-config (apt-get install pkgconf)")
else()
  # The host is compiled with the flags the libraries were built with, so
  # that a 32-bit or sanitizer build links.
  set(_flags "${CMAKE_C_FLAGS}")
  if(VORN_SANITIZE)
    string(APPEND _flags " -fsanitize=${VORN_SANITIZE}")
  endif()
  set(_soname "")
  if(VORN_BUILD_SHARED AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
    set(_soname libvorn_container.so.${PROJECT_VERSION_MAJOR})
  endif()
  add_test(NAME install_consumer
    COMMAND ${CMAKE_COMMAND}
      -DBUILD_DIR=${PROJECT_BINARY_DIR}
      -DWORK_DIR=${CMAKE_CURRENT_BINARY_DIR}/consumer
      -DSOURCE_DIR=${PROJECT_SOURCE_DIR}/tests/consumer
      -DGENERATOR=${CMAKE_GENERATOR}
      -DC_COMPILER=${CMAKE_C_COMPILER}
      "-DC_FLAGS=${_flags}"
      -DTOOLCHAIN=${CMAKE_TOOLCHAIN_FILE}
      "-DEMULATOR=${CMAKE_CROSSCOMPILING_EMULATOR}"
      -DEXE_SUFFIX=${CMAKE_EXECUTABLE_SUFFIX}
      -DPKG_CONFIG=${VORN_PKG_CONFIG}
      -DSONAME=${_soname}
      -P ${PROJECT_SOURCE_DIR}/cmake/consumer_test.cmake)
  set_tests_properties(install_consumer PROPERTIES LABELS install)
endif()
