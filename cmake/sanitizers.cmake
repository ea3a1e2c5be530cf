# VELARTO_SANITIZE=address,undefined and the like: all code is compiled with it, and a finding ends the program.
if(VELARTO_SANITIZE)
  add_compile_options(-fsanitize=${VELARTO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${VELARTO_SANITIZE})
endif()
# Counters may be bumped by two threads at once, and a child process leaves its own behind.
if(VELARTO_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
