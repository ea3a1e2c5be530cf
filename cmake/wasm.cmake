# WebAssembly by emscripten, as Debian has it.
set(emscripten_platform /usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
if(NOT EXISTS ${emscripten_platform})
  message(FATAL_ERROR "emscripten is missing: install it, or see ./run ports")
endif()
# Its compiler is a script for Node.js, whose modules Debian keeps here.
set(ENV{NODE_PATH} /usr/share/nodejs)
include(${emscripten_platform})
# Node.js has a fetch of its own now, which that emscripten takes for a browser's.
set(CMAKE_CROSSCOMPILING_EMULATOR node --no-experimental-fetch)
