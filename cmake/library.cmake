# The library with its decoders, windows and exports, and the programs. Included by CMakeLists.txt.

# What all of it is compiled with: our own folder for includes, and on Windows what a DLL of ours has to keep to.
add_library(velarto_options INTERFACE)
target_include_directories(velarto_options INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(velarto_options INTERFACE velarto_flags)
if(WIN32)
  # Nothing beside the system's own DLLs may be needed; on 32 bits callers' stacks are aligned to 4 bytes only.
  target_link_options(velarto_options INTERFACE -static)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_options(velarto_codec_objects PRIVATE -mstackrealign)
    target_compile_options(velarto_options INTERFACE -mstackrealign)
    target_link_options(velarto_options INTERFACE -Wl,--large-address-aware)
  endif()
endif()

# The library's code beside the codec. A file added to one of the folders belongs to it.
set(library_sources ${decoder_sources})
foreach(folder platform display overlay api plugin)
  file(GLOB folder_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
  list(APPEND library_sources ${folder_sources})
endforeach()
# These attach the shared library when it is loaded; tool and tests attach by a call.
list(FILTER library_sources EXCLUDE REGEX "/attach_(windows|elsewhere)\\.cpp$")
file(GLOB resource_files CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/resources/*.bmp ${PROJECT_SOURCE_DIR}/resources/*.cur
  ${PROJECT_SOURCE_DIR}/resources/dialogs.h ${PROJECT_SOURCE_DIR}/resources/texts.h)
set_source_files_properties(${PROJECT_SOURCE_DIR}/resources/velarto.rc PROPERTIES OBJECT_DEPENDS "${resource_files}")
add_library(velarto_objects OBJECT ${library_sources})
target_link_libraries(velarto_objects PUBLIC velarto_options Threads::Threads PRIVATE velarto_library_flags)
set(library_objects $<TARGET_OBJECTS:velarto_objects> $<TARGET_OBJECTS:velarto_codec_objects> ${kernels_allowed})

# The system: Windows' own libraries, on other platforms the portable layer. velarto_system_rig is the layer as tests and fuzzers
# need it, with what platform/portable/rig.h controls; linked beside velarto_core it takes the place of the one in there.
if(WIN32)
  add_library(velarto_system INTERFACE)
  target_link_libraries(velarto_system INTERFACE gdi32 user32 advapi32 comctl32 comdlg32)
  # Displays load DirectDraw when they want it; tests of its operations link it.
  add_library(velarto_system_rig INTERFACE)
  target_link_libraries(velarto_system_rig INTERFACE ddraw)
else()
  enable_language(ASM)
  find_package(Freetype REQUIRED)
  set(layer ${PROJECT_SOURCE_DIR}/platform/portable)
  file(GLOB layer_sources CONFIGURE_DEPENDS ${layer}/*.cpp ${layer}/system/*.cpp ${layer}/paint/*.cpp ${layer}/window/*.cpp)
  file(GLOB rig_sources CONFIGURE_DEPENDS ${layer}/rig/*.cpp)
  set(resource_data ${layer}/window/resource_data.S)
  set_source_files_properties(${resource_data} PROPERTIES OBJECT_DEPENDS "${resource_files}"
    INCLUDE_DIRECTORIES ${PROJECT_SOURCE_DIR})
  # Its vectors are not passed to other files, so it doesn't matter how 32-bit processors without SSE would pass them.
  set_source_files_properties(${layer}/paint/pixel_mix.cpp PROPERTIES COMPILE_OPTIONS -Wno-psabi)
  add_library(velarto_system OBJECT ${layer_sources} ${resource_data})
  add_library(velarto_system_rig OBJECT EXCLUDE_FROM_ALL ${layer_sources} ${rig_sources} ${resource_data})
  target_compile_definitions(velarto_system_rig PRIVATE VELARTO_RIG)
  foreach(system velarto_system velarto_system_rig)
    target_link_libraries(${system} PUBLIC velarto_options Threads::Threads Freetype::Freetype PRIVATE velarto_library_flags)
  endforeach()
endif()

# What the tool and the tests link, with the internal operations.
add_library(velarto_core STATIC ${library_objects})
target_link_libraries(velarto_core PUBLIC velarto_objects velarto_system)

# libvelarto.so, velarto.dll: the exports of api/exports.list and nothing else.
if(WIN32)
  enable_language(RC)
endif()
function(velarto_shared_library target)
  add_library(${target} SHARED ${library_objects})
  set_target_properties(${target} PROPERTIES OUTPUT_NAME velarto)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${target} PRIVATE velarto_objects ${ARGN})
  if(WIN32)
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/resources/velarto.rc
      ${PROJECT_SOURCE_DIR}/resources/library_version.rc ${PROJECT_SOURCE_DIR}/plugin/attach_windows.cpp)
  else()
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/plugin/attach_elsewhere.cpp)
  endif()
  velarto_exports(${target} ${PROJECT_SOURCE_DIR}/api/exports.list)
endfunction()

velarto_shared_library(velarto_library velarto_system)
add_library(velarto::velarto ALIAS velarto_library)
if(NOT WIN32)
  # Its calls of its own exports stay within, also in a program that has the same names.
  target_link_options(velarto_library PRIVATE -Wl,--no-undefined -Wl,-Bsymbolic)
endif()

# The same library limited to each lower kernel level, to test those through the exports: levels/plain, levels/sse2.
if(VELARTO_TESTS)
  set(lower_levels ${velarto_levels})
  list(POP_BACK lower_levels)
  foreach(level IN LISTS lower_levels)
    velarto_shared_library(velarto_library_${level} velarto_system)
    target_compile_definitions(velarto_library_${level} PRIVATE VELARTO_KERNELS_ALLOWED=${velarto_level_mask_${level}})
    set(folder ${PROJECT_BINARY_DIR}/levels/${level})
    set_target_properties(velarto_library_${level} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${folder}
      RUNTIME_OUTPUT_DIRECTORY ${folder} ARCHIVE_OUTPUT_DIRECTORY ${folder})
  endforeach()
endif()

install(TARGETS velarto_library)
install(FILES ${PROJECT_SOURCE_DIR}/include/velarto.h TYPE INCLUDE)

if(VELARTO_TOOL OR VELARTO_FUZZ)
  add_subdirectory(${PROJECT_SOURCE_DIR}/apps/velarto)
endif()
if(VELARTO_TOOL)
  add_subdirectory(${PROJECT_SOURCE_DIR}/apps/host)
endif()
if(VELARTO_TOOL AND WIN32)
  # velarto_program_version(TARGET NAME DESCRIPTION): a version block of the program's own.
  function(velarto_program_version target name description)
    set(block ${PROJECT_BINARY_DIR}/${name}_version.rc)
    configure_file(${PROJECT_SOURCE_DIR}/resources/program_version.rc.in ${block} @ONLY)
    target_sources(${target} PRIVATE ${block})
  endfunction()
  velarto_program_version(velarto_tool velarto "Viewer and tool for camera streams")
  velarto_program_version(velarto_host velarto-host "Host for the velarto plug-in")
  target_sources(velarto_tool PRIVATE ${PROJECT_SOURCE_DIR}/resources/velarto.rc)
endif()
if(VELARTO_FUZZ AND NOT VELARTO_TESTS)
  add_subdirectory(${PROJECT_SOURCE_DIR}/tests/fuzz)
endif()
if(VELARTO_BENCH)
  add_subdirectory(${PROJECT_SOURCE_DIR}/bench)
endif()
if(PROJECT_IS_TOP_LEVEL AND NOT WIN32)
  add_subdirectory(${PROJECT_SOURCE_DIR}/bench/faults)
endif()
