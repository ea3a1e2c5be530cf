#include "apps/velarto/frame_maker.h"

#include "apps/velarto/text_embedder.h"
#include "decode/frame_header.h"
#include "decode/quant.h"
#include "pixel/compress.h"

#include <cstring>

/** Longest compact frame whose length fits its header. */
static constexpr int32_t LongestCompact = 0xFFFF + CompactHeaderSize;

/** A JFIF header for a frame's own quality number. */
static void Write_Header(JfifCursor* cursor, int32_t width, int32_t height, int32_t frameQuality) {
  uint16_t luma[64], chroma[64];
  Quant_Build(frameQuality, luma, chroma);
  JFIF_Write_Header(cursor, width, height, luma, chroma);
}

/** Does a reader get the frame's own quality number back from the header? */
static bool Reads_Back(int32_t frameQuality) {
  uint8_t header[LeastJfifBytes] = {};
  JfifCursor cursor = {header, 0};
  Write_Header(&cursor, 16, 16, frameQuality);
  int32_t width = 0, height = 0, read = 0;
  return Parse_JFIF_Header(header, &width, &height, &read) && read == frameQuality;
}

int32_t Quality_Readable(int32_t quality) {
  const auto readable = [](int32_t q) { return Reads_Back(q * 80 / 100 + 10); };
  int32_t found = quality;
  while (found >= 0 && !readable(found)) --found;
  if (found >= 0) return found;
  for (found = quality; found < 100 && !readable(found);) ++found;
  return found;
}

/** The low half of the length is in the compact header, the high half in the prefix. */
static void Add_Prefix(std::vector<uint8_t>* frame) {
  uint8_t prefix[PrefixSize];
  Prefix_Write(prefix, static_cast<int64_t>(frame->size()));
  frame->insert(frame->begin(), prefix, prefix + PrefixSize);
}

bool Frame_Make(JdecDecoder* decoder, const Picture& picture, const FrameStyle& style, std::vector<uint8_t>* frame,
                std::string* error) {
  JdecCodec* const codec = decoder->codec;
  const bool jfif = style.form == FrameForm::Jfif;
  const int32_t quality = jfif ? Quality_Readable(style.quality) : style.quality;
  if (!Codec_Transform_RGB888(codec, quality, picture.pixels.data(), false)) {
    *error = "no memory to compress a picture";
    return false;
  }
  if (!style.text.empty() && !Text_Embed(codec, style.text, error)) return false;
  const int32_t length = Codec_Encode_Store(codec, jfif);
  if (length == 0 || (style.form == FrameForm::Prefixed && length > FrameStoreSize - PrefixSize)) {
    *error = "the frame would be longer than " + std::to_string(FrameStoreSize) + " bytes: use a lower quality";
    return false;
  }
  if (style.form == FrameForm::Compact && length > LongestCompact) {
    *error = "a compact frame has at most " + std::to_string(LongestCompact) + " bytes, this one has " + std::to_string(length) +
             ": use another form or a lower quality";
    return false;
  }
  frame->assign(codec->frame->data, codec->frame->data + length);
  if (style.form == FrameForm::Prefixed) Add_Prefix(frame);
  return true;
}

std::vector<uint8_t> Frame_To_Jfif(std::span<const uint8_t> frame, FrameForm form) {
  const auto compact = frame.subspan(form == FrameForm::Prefixed ? PrefixSize : 0);
  const auto body = compact.subspan(CompactHeaderSize);
  int32_t width = 0, height = 0, quality = 0;
  Parse_Compact_Header(compact.data(), &width, &height, &quality);
  std::vector<uint8_t> jfif(LeastJfifBytes + body.size());
  JfifCursor cursor = {jfif.data(), 0};
  Write_Header(&cursor, width, height, quality);
  std::memcpy(&jfif[JfifHeaderSize], body.data(), body.size());
  cursor.next += body.size();
  JFIF_Write_EOI(&cursor);
  return jfif;
}
