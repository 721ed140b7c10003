# The stand-in of the base services, built from base/: the library
# VornBaseShared (alias vorn::VornBaseShared) with the hooks that tests and
# hosts use (raise handler, block counters, failure injection).  Included
# from the top-level CMakeLists.txt unless VORN_EXTERNAL_BASE is on.
add_library(VornBaseShared ${_vorn_kind} base/vorn_base.cpp base/mm_blocks.cpp)
target_include_directories(VornBaseShared PUBLIC
  $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>)
target_compile_definitions(VornBaseShared PRIVATE VORN_BASE_BUILD)
if(VORN_MM_CHECKED)
  target_compile_definitions(VornBaseShared PRIVATE VORN_MM_CHECKED)
endif()
# Address and undefined-behaviour sanitizer builds give every block to the
# system allocator, so that the sanitizers see each one; other builds, the
# ThreadSanitizer build included (it checks the slabs' own locking), serve
# small blocks from slabs.
if(VORN_MM_SYSTEM OR (VORN_SANITIZE AND NOT VORN_SANITIZE STREQUAL "thread"))
  target_compile_definitions(VornBaseShared PRIVATE VORN_MM_SYSTEM)
endif()
if(NOT VORN_BUILD_SHARED)
  target_compile_definitions(VornBaseShared PUBLIC VORN_STATIC)
endif()
target_link_libraries(VornBaseShared PRIVATE Threads::Threads)
add_library(vorn::VornBaseShared ALIAS VornBaseShared)
