# The kernel levels, in rising order. A line holds a level's name, which is the suffix of its files in kernels/; its bit (KernelLevel
# in kernels/cpu.h); what the compiler defines for the architectures that have the level; the flags of its files.
set(velarto_every_level
  "plain 0 any"
  "sse2  1 __i386__,__x86_64__ -msse2"
  "avx2  2 __i386__,__x86_64__ -mavx2 -mbmi -mbmi2")

include(CheckCXXSourceCompiles)

# Is the target processor of one of these architectures? The compiler is asked, since it knows what it compiles for.
function(velarto_targets_one_of architectures result)
  if(architectures STREQUAL any)
    set(${result} TRUE PARENT_SCOPE)
    return()
  endif()
  string(REPLACE "," ") || defined(" condition "defined(${architectures})")
  string(MAKE_C_IDENTIFIER "velarto_targets_${architectures}" answer)
  set(CMAKE_REQUIRED_QUIET ON)
  check_cxx_source_compiles("#if !(${condition})\n#error\n#endif\nint main() { return 0; }" ${answer})
  set(${result} ${${answer}} PARENT_SCOPE)
endfunction()

# For the target processor: velarto_levels, the names of its levels in rising order, and of each velarto_level_mask_NAME, its bit
# and those of the levels below, and velarto_level_flags_NAME. The others are velarto_foreign_levels.
set(velarto_levels)
set(velarto_foreign_levels)
set(velarto_levels_mask 0)
foreach(level IN LISTS velarto_every_level)
  separate_arguments(flags UNIX_COMMAND "${level}")
  list(POP_FRONT flags name bit architectures)
  velarto_targets_one_of(${architectures} is_ours)
  if(is_ours)
    math(EXPR velarto_levels_mask "${velarto_levels_mask} | ${bit}")
    list(APPEND velarto_levels ${name})
    set(velarto_level_mask_${name} ${velarto_levels_mask})
    set(velarto_level_flags_${name} ${flags})
  else()
    list(APPEND velarto_foreign_levels ${name})
  endif()
endforeach()

# velarto_kernel_levels(LIST): removes the kernel files of foreign levels from a list of sources, and gives the others the flags of
# their level. Link-time optimisation stays off there: it would let instructions of one level leak into another.
function(velarto_kernel_levels list)
  foreach(source IN LISTS ${list})
    if(NOT source MATCHES "/kernels/[a-z0-9_]+_([a-z0-9]+)\\.cpp$")
      continue()
    endif()
    set(level ${CMAKE_MATCH_1})
    if(level IN_LIST velarto_levels)
      set_property(SOURCE ${source} APPEND PROPERTY COMPILE_OPTIONS ${velarto_level_flags_${level}} -fno-lto)
    elseif(level IN_LIST velarto_foreign_levels)
      list(REMOVE_ITEM ${list} ${source})
    else()
      message(FATAL_ERROR "${source}: no kernel level is called ${level}")
    endif()
  endforeach()
  # The record of kernels is put together of the levels that are compiled.
  set_property(SOURCE ${PROJECT_SOURCE_DIR}/kernels/kernels.cpp APPEND PROPERTY
    COMPILE_DEFINITIONS VELARTO_KERNEL_LEVELS=${velarto_levels_mask})
  set(${list} ${${list}} PARENT_SCOPE)
endfunction()
