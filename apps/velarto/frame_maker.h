/* Pictures to frames of any wire form, with or without a hidden text. */
#pragma once

#include "apps/velarto/picture.h"

struct FrameStyle {
  FrameForm form = FrameForm::Compact;
  int32_t quality = 75;  ///< 0 to 100, as JDEC_Compress_RGB888 takes it; for a JFIF frame Quality_Readable of it is used.
  std::string text;      ///< Hidden in the frame; empty: none.
};

/** Compresses a picture into a frame of that style, with a decoder of its size. False, with *error, when the frame would not fit
 * a frame store, when the text is too long for the picture, or without memory. */
bool Frame_Make(JdecDecoder* decoder, const Picture& picture, const FrameStyle& style, std::vector<uint8_t>* frame,
                std::string* error);

/** The JFIF form of a compact or prefixed frame with a complete header; the coded picture is unchanged. */
std::vector<uint8_t> Frame_To_Jfif(std::span<const uint8_t> frame, FrameForm form);

/** The highest quality up to the given one, or else the lowest above it, that a reader can derive from a JFIF frame's tables. */
int32_t Quality_Readable(int32_t quality);
