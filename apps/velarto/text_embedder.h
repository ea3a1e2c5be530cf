/* Hides a text in the high-frequency coefficients of a picture: what decode/watermark reads back. */
#pragma once

#include "decode/decoder.h"

#include <string>

/** Longest text, in bytes, for a picture of that size. */
int32_t Text_Room(int32_t width, int32_t height);

/** Changes the coefficients at the codec's planes so that they carry exactly `text`, and nothing if it is empty. False, with
 * *error and the coefficients as they were, when the text is longer than the picture's room. */
bool Text_Embed(JdecCodec* codec, const std::string& text, std::string* error);
