# velarto_platform_files(LIST): removes the files of other platforms, told by the suffix of their names, from a list of sources.
# NAME_none.cpp does without what the platform lacks.
function(velarto_platform_files list)
  if(WIN32)
    set(others posix|sdl|curl|libjpeg)
  else()
    set(others windows|none)
  endif()
  set(sources ${${list}})
  list(FILTER sources EXCLUDE REGEX "_(${others})\\.cpp$")
  set(${list} ${sources} PARENT_SCOPE)
endfunction()
