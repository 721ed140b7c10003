# Platform specifics of the two libraries.  Included from the top-level
# CMakeLists.txt after the library targets exist.
if(WIN32)
  # The colour table asks user32 for the system colours (GetSysColor).
  target_link_libraries(vorn_container PRIVATE user32)
endif()

# ELF shared libraries: calls between the library's own functions bind
# directly (no symbol of ours is meant to be interposed), and calls into the
# base services go through the GOT without a PLT stub, so that the block
# taken by every insertion costs one direct call.
if(VORN_BUILD_SHARED AND NOT WIN32 AND NOT APPLE AND CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  set(_vorn_libs vorn_container)
  if(NOT VORN_EXTERNAL_BASE)
    list(APPEND _vorn_libs VornBaseShared)
  endif()
  foreach(_vorn_lib IN LISTS _vorn_libs)
    target_compile_options(${_vorn_lib} PRIVATE -fno-plt -fno-semantic-interposition)
  endforeach()
endif()
