# The real base library instead of the stand-in (VORN_EXTERNAL_BASE=ON):
# nothing of base/ is built or installed.  The header vorn_base.h and the
# library VornBaseShared are looked for on the system (CMAKE_PREFIX_PATH, or
# VORN_BASE_ROOT naming the base library's install prefix) and become the
# imported target vorn::VornBaseShared, which vorn_container links.
#
# The containers are compiled against their own declaration of the base
# services (include/vorn_base.h, fixed name for name); the configure step
# checks that the header found declares each service with the same type and
# that the library found defines them, so that a base library with another
# interface is refused here, not at link or run time.  Included from the top-level CMakeLists.txt.
set(VORN_BASE_ROOT "" CACHE PATH "Install prefix of the base library (VORN_EXTERNAL_BASE)")
set(_vorn_base_hints)
if(VORN_BASE_ROOT)
  set(_vorn_base_hints HINTS ${VORN_BASE_ROOT} NO_DEFAULT_PATH)
endif()
find_path(VORN_BASE_INCLUDE_DIR vorn_base.h ${_vorn_base_hints} PATH_SUFFIXES include)
find_library(VORN_BASE_LIBRARY VornBaseShared ${_vorn_base_hints} PATH_SUFFIXES lib lib64)
if(NOT VORN_BASE_INCLUDE_DIR OR NOT VORN_BASE_LIBRARY)
  message(FATAL_ERROR
    "VORN_EXTERNAL_BASE: the base library was not found (vorn_base.h: ${VORN_BASE_INCLUDE_DIR}, "
    "VornBaseShared: ${VORN_BASE_LIBRARY}).  Set VORN_BASE_ROOT to its install prefix, or "
    "VORN_BASE_INCLUDE_DIR and VORN_BASE_LIBRARY, or configure without VORN_EXTERNAL_BASE "
    "to build the stand-in.")
endif()

# The services and their types, as include/vorn_base.h declares them.
include(CheckCSourceCompiles)
set(CMAKE_REQUIRED_INCLUDES ${VORN_BASE_INCLUDE_DIR})
set(CMAKE_REQUIRED_LIBRARIES ${VORN_BASE_LIBRARY})
if(NOT VORN_BUILD_SHARED)
  set(CMAKE_REQUIRED_DEFINITIONS -DVORN_STATIC)
endif()
check_c_source_compiles([[
#include <vorn_base.h>
int main(void) {
    void *(*alloc)(size_t) = MM_alloc_item;
    void *(*realloc_)(void *, size_t, size_t) = MM_realloc_item;
    void (*dealloc)(void *, size_t) = MM_dealloc_item;
    void (*raise_)(const char *, int32_t, int32_t) = EX_raise_exception_line;
    int (**print)(const char *, ...) = &Tprintf;
    void (*trap)(void) = debug_break;
#ifndef _WIN32
    uint32_t (*sys_colour)(int32_t) = GetSysColor;  /* user32's on Windows */
    if (!sys_colour) return 1;
#endif
    return !alloc + !realloc_ + !dealloc + !raise_ + !print + !trap;
}]] VORN_BASE_INTERFACE_MATCHES)
unset(CMAKE_REQUIRED_INCLUDES)
unset(CMAKE_REQUIRED_LIBRARIES)
unset(CMAKE_REQUIRED_DEFINITIONS)
if(NOT VORN_BASE_INTERFACE_MATCHES)
  message(FATAL_ERROR "VORN_EXTERNAL_BASE: ${VORN_BASE_INCLUDE_DIR}/vorn_base.h does not declare "
    "the base services with the types the containers use, or ${VORN_BASE_LIBRARY} does not "
    "define them (see CMakeFiles/CMakeError.log)")
endif()
message(STATUS "Base library: ${VORN_BASE_LIBRARY} (headers ${VORN_BASE_INCLUDE_DIR})")

add_library(vorn::VornBaseShared UNKNOWN IMPORTED)
set_target_properties(vorn::VornBaseShared PROPERTIES
  IMPORTED_LOCATION ${VORN_BASE_LIBRARY}
  INTERFACE_INCLUDE_DIRECTORIES ${VORN_BASE_INCLUDE_DIR})
if(NOT VORN_BUILD_SHARED)
  set_property(TARGET vorn::VornBaseShared PROPERTY INTERFACE_COMPILE_DEFINITIONS VORN_STATIC)
endif()
