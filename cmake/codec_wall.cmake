# An include folder that holds some folders of the project and no others: what is compiled against it can't include anything else.
function(velarto_wall variable)
  set(wall ${PROJECT_BINARY_DIR}/wall)
  file(MAKE_DIRECTORY ${wall})
  foreach(folder IN LISTS ARGN)
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${wall}/${folder} SYMBOLIC)
  endforeach()
  set(${variable} ${wall} PARENT_SCOPE)
endfunction()
