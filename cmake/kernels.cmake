# A kernel file's suffix names its level and so its flags. Link-time optimisation stays off there: it would let instructions
# of one level leak into another.
function(velarto_kernel_flags folder)
  file(GLOB kernel_sources CONFIGURE_DEPENDS ${folder}/*.cpp)
  foreach(source IN LISTS kernel_sources)
    if(source MATCHES "_sse2\\.cpp$")
      set_property(SOURCE ${source} APPEND PROPERTY COMPILE_OPTIONS -msse2 -fno-lto)
    elseif(source MATCHES "_avx2\\.cpp$")
      set_property(SOURCE ${source} APPEND PROPERTY COMPILE_OPTIONS -mavx2 -mbmi -mbmi2 -fno-lto)
    elseif(source MATCHES "_plain\\.cpp$")
      set_property(SOURCE ${source} APPEND PROPERTY COMPILE_OPTIONS -fno-lto)
    endif()
  endforeach()
endfunction()
