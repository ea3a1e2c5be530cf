#include "decode/rasters.h"

#include "decode/picture_decode.h"
#include "display/context.h"
#include "pixel/arena.h"

int32_t Raster_Depth(bool headless) {
  if (headless) return 24;
  const HDC screen = GetDC(nullptr);
  const int32_t bits = screen ? GetDeviceCaps(screen, BITSPIXEL) * GetDeviceCaps(screen, PLANES) : 24;
  if (screen) ReleaseDC(nullptr, screen);
  return bits == 8 || bits == 16 || bits == 32 ? bits : 24;
}

bool Build_Rasters(JdecDecoder* decoder) {
  JdecRaster* const raster = Raster_New(decoder->width, decoder->height, Raster_Depth(decoder->headless != 0));
  JdecPlanes* const planes = Planes_New(decoder->width, decoder->height, 4, 1);
  if (!raster || !planes) {
    Arena_Free(raster);
    Arena_Free(planes);
    return false;
  }
  Planes_Darken(planes);
  Free_Rasters(decoder);
  decoder->codec->raster = raster;
  decoder->codec->planes = planes;
  decoder->rasterFormat = NoPixels;
  return true;
}

bool Replace_Raster(JdecDecoder* decoder, int32_t bitsPerPixel) {
  JdecRaster* const raster = Raster_New(decoder->width, decoder->height, bitsPerPixel);
  if (!raster) return false;
  Arena_Free(decoder->codec->raster);
  decoder->codec->raster = raster;
  decoder->rasterFormat = NoPixels;
  return true;
}

void Free_Rasters(JdecDecoder* decoder) {
  if (!decoder || !decoder->codec || !decoder->codec->raster) return;
  JdecCodec* const codec = decoder->codec;
  if (decoder->display) decoder->display->lastRaster = nullptr;
  Arena_Free(codec->raster);
  Arena_Free(codec->planes);
  codec->raster = nullptr;
  codec->planes = nullptr;
}
