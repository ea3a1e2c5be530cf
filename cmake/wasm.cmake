# WebAssembly, with Debian's emscripten.
set(emscripten_platform /usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
if(NOT EXISTS ${emscripten_platform})
  message(FATAL_ERROR "emscripten is missing: install it, or use ./run codec")
endif()
# Its compiler is a script for Node.js, whose modules Debian keeps here.
set(ENV{NODE_PATH} /usr/share/nodejs)
include(${emscripten_platform})
# This emscripten takes the fetch of newer Node.js for a browser's.
set(CMAKE_CROSSCOMPILING_EMULATOR node --no-experimental-fetch)
