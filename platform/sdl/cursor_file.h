/* Cursors from files. */
#pragma once

#include <SDL.h>

#include <cstdint>
#include <span>

/** A cursor from the first picture of a .cur file, which is one of two colours; the caller frees it. Null for any other. */
SDL_Cursor* Cursor_From_File(std::span<const uint8_t> file);
