/* The registry: the maker's settings, which are read, and the browser's, which are changed to what live video needs. */
#pragma once

#include <cstdint>

/** The speed if the registry has none. */
constexpr int32_t DefaultDecoderSpeed = -2;

struct MakerSettings {
  int32_t decoderSpeed = DefaultDecoderSpeed;
  int32_t mouseLButton = 0, mouseRButton = 0;  ///< 0 or 1.
  bool rightButtonRead = false;                ///< The registry has a value for the right button.
};

/** Reads the maker's key. A value that can't be read keeps its default. */
MakerSettings Read_Maker_Settings();

/** Raises the browser's connection limits to 256 if the first of them is missing or lower, and adds our MIME type to its list of
 *  types that are not cached, if it has one. Gives 0 if the key can't be opened, otherwise 1. Writes that fail are ignored. */
int32_t Update_Internet_Settings();
