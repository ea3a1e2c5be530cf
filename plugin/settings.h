/* The registry: settings of the maker, which are read, and of the browser, which are brought to what live video needs. */
#pragma once

#include <cstdint>

/** Without the registry's value. */
constexpr int32_t DefaultDecoderSpeed = -2;

struct MakerSettings {
  int32_t decoderSpeed = DefaultDecoderSpeed;
  int32_t mouseLButton = 0, mouseRButton = 0;  ///< 0 or 1.
  bool rightButtonRead = false;                ///< The last one is there.
};

/** Reads the maker's key. What can't be read keeps its default. */
MakerSettings Read_Maker_Settings();

/** Raises the browser's connection limits to 256 and takes our MIME type out of its cache, where these values are there and need
 * it. Gives 0 when the key can't be opened, otherwise 1; failing writes are passed over. */
int32_t Update_Internet_Settings();
