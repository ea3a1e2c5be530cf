# Makes an include folder with only the given folders of the project, so that code compiled against it can't include others.
function(velarto_wall variable)
  set(wall ${PROJECT_BINARY_DIR}/wall)
  file(MAKE_DIRECTORY ${wall})
  foreach(folder IN LISTS ARGN)
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${wall}/${folder} SYMBOLIC)
  endforeach()
  set(${variable} ${wall} PARENT_SCOPE)
endfunction()
