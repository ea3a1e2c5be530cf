# VELARTO_SANITIZE=address,undefined and the like: all code is compiled with it, and a finding ends the program.
if(VELARTO_SANITIZE)
  add_compile_options(-fsanitize=${VELARTO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${VELARTO_SANITIZE})
endif()
