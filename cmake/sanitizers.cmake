# VELARTO_SANITIZE=address,undefined, for example: all code is compiled with it, and a finding ends the program.
if(VELARTO_SANITIZE)
  add_compile_options(-fsanitize=${VELARTO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${VELARTO_SANITIZE})
endif()
# Two threads may increment a counter at once, and a child process writes its counters too.
if(VELARTO_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
