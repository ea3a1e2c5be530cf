/* The current picture for callers: the raster itself, or a BMP file made from the planes (velarto.h). */
#include "decode/decoder.h"
#include "decode/picture_decode.h"
#include "display/palette.h"
#include "pixel/arena.h"
#include "pixel/convert.h"

#include <cstring>

static constexpr int32_t BmpHeaderSize = 54, BmpInfoSize = 40;

static uint8_t* Put_Word(uint8_t* p, uint32_t value) {
  p[0] = static_cast<uint8_t>(value);
  p[1] = static_cast<uint8_t>(value >> 8);
  return p + 2;
}

static uint8_t* Put_Long(uint8_t* p, uint32_t value) { return Put_Word(Put_Word(p, value & 0xFFFF), value >> 16); }

static void Put_BMP_Header(uint8_t* p, int32_t width, int32_t height, int32_t fileSize) {
  std::memset(p, 0, BmpHeaderSize);
  *p++ = 'B';
  *p++ = 'M';
  p = Put_Long(p, static_cast<uint32_t>(fileSize));
  p = Put_Long(p, 0);
  p = Put_Long(p, BmpHeaderSize);
  p = Put_Long(p, BmpInfoSize);
  p = Put_Long(p, static_cast<uint32_t>(width));
  p = Put_Long(p, static_cast<uint32_t>(height));
  p = Put_Word(p, 1);
  Put_Word(p, 24);
}

/** A raster's pixels begin with the bottom row. */
static uint8_t* Raster_Store(const JdecRaster* raster) { return raster->rows[raster->height - 1]; }

static int32_t Format_Of_Depth(int32_t bitsPerPixel) {
  switch (bitsPerPixel) {
    case 8:
      return PixelPalette8;
    case 16:
      return PixelRgb565;
    case 32:
      return PixelRgb32;
    default:
      return PixelRgb24;
  }
}

static int32_t Raster_Format(const JdecDecoder* decoder) {
  if (decoder->rasterFormat != NoPixels) return decoder->rasterFormat;
  if (decoder->display) return decoder->display->pixelFormat;
  return Format_Of_Depth(decoder->codec->raster->bitsPerPixel);
}

uint8_t* VELARTO_CDECL JDEC_get_decompressed_bitmap(JdecDecoder* decoder) {
  return decoder ? Raster_Store(decoder->codec->raster) : nullptr;
}

uint8_t* VELARTO_CDECL JDEC_get_decompressed_bitmap_ex(JdecDecoder* decoder, int32_t* format, uint8_t* palette) {
  if (!decoder) return nullptr;
  Display_Export_Palette(decoder->display, reinterpret_cast<PALETTEENTRY*>(palette));
  if (format) *format = Raster_Format(decoder);
  return Raster_Store(decoder->codec->raster);
}

int32_t VELARTO_CDECL JDEC_get_decompressed_bitmap_ex2(JdecDecoder* decoder, uint8_t* buffer, int32_t capacity) {
  if (!decoder || !buffer || capacity == 0) return 0;
  const JdecCodec* const codec = decoder->codec;
  const int32_t pitch = codec->width * 3;
  const int32_t size = pitch * codec->height + BmpHeaderSize;
  if (capacity < size) return size;

  // A raster without pixels of its own: the converter writes into the caller's buffer.
  const auto rows = static_cast<size_t>(codec->height);
  auto* arena = static_cast<uint8_t*>(Arena_Alloc(sizeof(JdecRaster) + rows * sizeof(uint8_t*), nullptr));
  if (!arena) return 0;
  auto* const raster = static_cast<JdecRaster*>(Arena_Alloc(sizeof(JdecRaster), &arena));
  auto** const table = static_cast<uint8_t**>(Arena_Alloc(rows * sizeof(uint8_t*), &arena));
  *raster = {codec->width, codec->height, 24, pitch, table};
  uint8_t* row = buffer + BmpHeaderSize;
  for (int32_t i = codec->height - 1; i >= 0; --i, row += pitch) raster->rows[i] = row;
  Put_BMP_Header(buffer, codec->width, codec->height, size);
  YCC_To_RGB24(codec->planes, raster);
  Arena_Free(raster);
  return size;
}
