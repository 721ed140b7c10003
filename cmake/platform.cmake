# Platform specifics of the two libraries.  Included from the top-level
# CMakeLists.txt after the library targets exist.
if(WIN32)
  # The colour table asks user32 for the system colours (GetSysColor).
  target_link_libraries(vorn_container PRIVATE user32)
endif()
