# 32-bit Linux, under emulation: the cross compiler's C library, and the libraries that cmake/linux-i686-root.sh has unpacked. No
# package of another architecture is installed.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
set(velarto_root ${CMAKE_CURRENT_LIST_DIR}/../build/i686-root/usr)
set(CMAKE_FIND_ROOT_PATH ${velarto_root} /usr/i686-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(FREETYPE_LIBRARY ${velarto_root}/lib/i386-linux-gnu/libfreetype.so.6)
set(FREETYPE_INCLUDE_DIRS ${velarto_root}/include/freetype2)
set(FREETYPE_INCLUDE_DIR_ft2build ${FREETYPE_INCLUDE_DIRS})
set(FREETYPE_INCLUDE_DIR_freetype2 ${FREETYPE_INCLUDE_DIRS})
# The libraries that the font library needs are found when the programs run.
set(CMAKE_EXE_LINKER_FLAGS_INIT -Wl,--allow-shlib-undefined)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -Wl,--allow-shlib-undefined)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-i386 -cpu max -L /usr/i686-linux-gnu
  -E LD_LIBRARY_PATH=${velarto_root}/lib/i386-linux-gnu:${velarto_root}/../lib/i386-linux-gnu:/usr/i686-linux-gnu/lib)
