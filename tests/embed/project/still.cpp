// Compresses a grey picture by the codec alone and decodes it again.
#include "decode/frame_header.h"
#include "decode/global_tables.h"
#include "decode/picture_decode.h"
#include "pixel/arena.h"
#include "pixel/compress.h"

#include <algorithm>
#include <vector>

int main() {
  Init_Global_Tables();
  JdecCodec* const codec = Codec_New(64, 48);
  codec->planes = Planes_New(64, 48, 4, 1);
  codec->raster = Raster_New(64, 48, 24);
  const std::vector<uint8_t> grey(64 * 48 * 3, 100);
  std::vector<uint8_t> frame(FrameStoreSize);
  const int32_t length = Codec_Compress_RGB888(codec, 75, grey.data(), 0, frame.data(), FrameStoreSize, 1, 0);
  FrameHeader header = {};
  bool good = Read_Frame_Header(frame.data(), length, FrameForm::Jfif, &header) && header.width == 64 && header.height == 48;
  codec->frame->position = header.dataOffset;
  Decode_Picture(codec, {codec->raster, PixelRgb24, 0, RasterRead});
  const uint8_t* const pixels = codec->raster->rows[47];
  good = good && std::all_of(pixels, pixels + grey.size(), [](int value) { return value >= 98 && value <= 103; });
  Arena_Free(codec->planes);
  Arena_Free(codec->raster);
  Codec_Free(codec);
  Free_Global_Tables();
  return good ? 0 : 1;
}
