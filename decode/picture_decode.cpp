#include "decode/picture_decode.h"

#include "decode/huffman_decode.h"
#include "decode/idct.h"
#include "decode/rows.h"

static void Transform_Planes(const JdecCodec* codec, int32_t width, int32_t height) {
  const JdecPlanes* const planes = codec->planes;
  IDCT_Plane(planes->yRows, codec->coefY, width, height, codec->lumaInverse);
  IDCT_Plane(planes->crRows, codec->coefCr, width / 2, height / 2, codec->chromaInverse);
  IDCT_Plane(planes->cbRows, codec->coefCb, width / 2, height / 2, codec->chromaInverse);
}

/** A conversion by macroblock rows. */
struct RowConversion {
  const JdecPlanes* planes;
  PictureTarget to;
};

static void Convert_Taken_Rows(void* user, int32_t firstPair, int32_t pairs) {
  const auto& [planes, to] = *static_cast<const RowConversion*>(user);
  if (to.format != NoPixels) Convert_Plane_Rows(to.format, planes, to.raster, to.ditherMode, to.use, firstPair, pairs);
}

void Decode_Picture(JdecCodec* codec, const PictureTarget& target) {
  if (Rows_Available()) {
    RowConversion conversion = {codec->planes, target};
    Rows_Decode_Frame(codec, {Convert_Taken_Rows, &conversion});
    return;
  }
  Huff_Decode_Frame(codec, codec->coefY, codec->coefCb, codec->coefCr, codec->width, codec->height, codec->frame);
  Transform_Planes(codec, codec->width, codec->height);
  if (target.format != NoPixels) Convert_Planes(target.format, codec->planes, target.raster, target.ditherMode);
}
