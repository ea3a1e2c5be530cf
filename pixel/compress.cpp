#include "pixel/compress.h"

#include "decode/framing.h"
#include "kernels/kernels.h"
#include "pixel/arena.h"
#include "pixel/compress_rows.h"
#include "pixel/forward.h"
#include "pixel/huffman_encode.h"

#include <algorithm>
#include <cstring>

/** Copies the caller's picture, bottom row first, into the raster. */
static void Load_Source(JdecRaster* raster, const uint8_t* pixels, bool doubleRows) {
  const auto pitch = static_cast<size_t>(raster->pitch);
  if (!doubleRows) {
    for (int32_t i = raster->height - 1; i >= 0; --i, pixels += pitch) std::memcpy(raster->rows[i], pixels, pitch);
    return;
  }
  for (int32_t i = raster->height / 2 - 1; i >= 0; --i, pixels += pitch) {
    std::memcpy(raster->rows[2 * i], pixels, pitch);
    std::memcpy(raster->rows[2 * i + 1], pixels, pitch);
  }
  // An odd last row repeats the one above it; a picture of one row stays black.
  const int32_t last = raster->height - 1;
  if (raster->height % 2 && last > 0) std::memcpy(raster->rows[last], raster->rows[last - 1], pitch);
}

/** Converts the caller's picture into the codec's planes. False without memory. */
static bool Load_Planes(JdecCodec* codec, const uint8_t* pixels, bool doubleRows) {
  JdecPlanes* const full = Planes_New(codec->width, codec->height, 4, 4);
  JdecRaster* const raster = Raster_New(codec->width, codec->height, 24);
  const bool complete = full && raster;
  if (complete) {
    Load_Source(raster, pixels, doubleRows);
    RGB_To_YCC444(raster, full);
    Downsample_Planes(full, codec->planes);
  }
  Arena_Free(full);
  Arena_Free(raster);
  return complete;
}

static void Transform_Planes(JdecCodec* codec) {
  const JdecPlanes* const planes = codec->planes;
  const int32_t width = codec->width, height = codec->height;
  Forward_DCT_Plane(planes->yRows, codec->coefY, width, height, codec->lumaForward, codec->lumaInverse);
  Forward_DCT_Plane(planes->crRows, codec->coefCr, width / 2, height / 2, codec->chromaForward, codec->chromaInverse);
  Forward_DCT_Plane(planes->cbRows, codec->coefCb, width / 2, height / 2, codec->chromaForward, codec->chromaInverse);
}

/** Writes the header to the empty store. A compact one gets its body's length in Close_Store. */
static void Open_Store(JdecCodec* codec, bool withMarkers) {
  JdecFrameBuffer* const frame = codec->frame;
  frame->position = 0;
  frame->length = 0;
  if (withMarkers) {
    JfifCursor header = {frame->data, 0};
    JFIF_Write_Header(&header, codec->width, codec->height, codec->lumaQuant, codec->chromaQuant);
    frame->length = header.count;
  } else {
    Compact_Write_Head(codec);
  }
}

/** Completes the frame after its data. Gives its length; 0, with an empty store, if it doesn't fit the store. */
static int32_t Close_Store(JdecCodec* codec, bool withMarkers) {
  JdecFrameBuffer* const frame = codec->frame;
  const int32_t endSize = withMarkers ? LeastJfifBytes - JfifHeaderSize : 0;
  if (frame->length > FrameStoreSize - endSize) {
    frame->length = 0;
    return 0;
  }
  if (withMarkers) {
    JfifCursor end = {frame->data + frame->length, frame->length};
    JFIF_Write_EOI(&end);
    frame->length = end.count;
  } else {
    Compact_Set_Body_Length(frame->data, frame->length - CompactHeaderSize);
  }
  return frame->length;
}

int32_t Codec_Encode_Store(JdecCodec* codec, bool withMarkers) {
  Open_Store(codec, withMarkers);
  Huff_Encode_Frame(codec, codec->coefY, codec->coefCb, codec->coefCr, codec->width, codec->height, codec->frame);
  return Close_Store(codec, withMarkers);
}

/** Sets the codec's quality for the 0 to 100 of JDEC_Compress_RGB888. */
static void Set_Given_Quality(JdecCodec* codec, int32_t quality) {
  Codec_Set_Quality(codec, std::clamp(quality, 0, 100) * 80 / 100 + 10);
}

bool Codec_Transform_RGB888(JdecCodec* codec, int32_t quality, const uint8_t* pixels, bool doubleRows) {
  Set_Given_Quality(codec, quality);
  if (!Load_Planes(codec, pixels, doubleRows)) return false;
  Transform_Planes(codec);
  return true;
}

int32_t Codec_Compress_RGB888(JdecCodec* codec, int32_t quality, const uint8_t* pixels, uint32_t /*ignored*/, uint8_t* buffer,
                              int32_t capacity, int32_t withMarkers, int32_t doubleRows) {
  if (!codec || !pixels || !buffer) return 0;
  const bool marked = withMarkers != 0, doubled = doubleRows != 0;
  if (kernels.encodeRow) {
    Set_Given_Quality(codec, quality);
    Open_Store(codec, marked);
    Compress_Rows(codec, pixels, doubled);
    Close_Store(codec, marked);
  } else {
    if (!Codec_Transform_RGB888(codec, quality, pixels, doubled)) return 0;
    Codec_Encode_Store(codec, marked);
  }
  const JdecFrameBuffer* const frame = codec->frame;
  if (frame->length == 0 || capacity < frame->length) return 0;
  std::memcpy(buffer, frame->data, static_cast<size_t>(frame->length));
  return frame->length;
}

static int32_t Write_Bytes(FILE* stream, const uint8_t* data, int32_t count) {
  return static_cast<int32_t>(std::fwrite(data, 1, static_cast<size_t>(count), stream));
}

/** Writes the compact frame of `length` bytes at data as a JPEG image. */
static int32_t Write_Compact(JdecCodec* codec, FILE* stream, const uint8_t* data, int32_t length) {
  int32_t width = 0, height = 0, quality = 0;
  Parse_Compact_Header(data, &width, &height, &quality);
  Codec_Set_Quality(codec, quality);
  uint8_t scratch[JfifHeaderSize];
  JfifCursor cursor = {scratch, 0};
  JFIF_Write_Header(&cursor, width, height, codec->lumaQuant, codec->chromaQuant);
  Write_Bytes(stream, scratch, cursor.count);
  Write_Bytes(stream, data + CompactHeaderSize, length - CompactHeaderSize);
  cursor = {scratch, 0};
  JFIF_Write_EOI(&cursor);
  return Write_Bytes(stream, scratch, cursor.count);
}

int32_t Codec_Write_JFIF_File(JdecCodec* codec, FILE* stream) {
  if (!codec || !stream) return 0;
  const JdecFrameBuffer* const frame = codec->frame;
  int32_t isJfif = 0, hasPrefix = 0;
  if (Frame_Sync(frame->data, frame->length, &isJfif, &hasPrefix) != 0) return 0;
  if (isJfif) {
    const int32_t endSize = LeastJfifBytes - JfifHeaderSize;
    Write_Bytes(stream, frame->data, frame->length - endSize);
    return Write_Bytes(stream, frame->data + frame->length - endSize, endSize);
  }
  const int32_t offset = hasPrefix ? PrefixSize : 0;
  return Write_Compact(codec, stream, frame->data + offset, frame->length - offset);
}
