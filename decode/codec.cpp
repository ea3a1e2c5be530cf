#include "decode/codec.h"

#include "decode/quant.h"
#include "decode/rows.h"
#include "decode/watermark.h"
#include "pixel/arena.h"

bool Picture_Size_Allowed(int32_t width, int32_t height) {
  if (width < 1 || height < 1 || width > MaxPictureSide || height > MaxPictureSide) return false;
  return int64_t{width / 16} * (height / 16) <= MaxMacroblocks && int64_t{width} * height <= int64_t{MaxMacroblocks} * 256;
}

int32_t** Coef_Plane_New(int32_t width, int32_t height) {
  const size_t rows = static_cast<size_t>(height / 8);
  // A row holds width * 8 words, of which those of whole blocks are used.
  const size_t rowBytes = static_cast<size_t>(width) * 8 * sizeof(int32_t);
  // At least one byte, so that a plane without rows isn't null.
  auto* arena = static_cast<uint8_t*>(Arena_Alloc_Zeroed(rows * (rowBytes + sizeof(int32_t*)) + 1));
  if (!arena) return nullptr;
  auto** const table = static_cast<int32_t**>(Arena_Alloc(rows * sizeof(int32_t*), &arena));
  for (size_t i = 0; i < rows; ++i) table[i] = static_cast<int32_t*>(Arena_Alloc(rowBytes, &arena));
  return table;
}

void Coef_Plane_Free(int32_t** plane) { Arena_Free(plane); }

template <typename T>
static T* Table_New() {
  return static_cast<T*>(Arena_Alloc_Zeroed(64 * sizeof(T)));
}

static JdecFrameBuffer* Frame_Buffer_New() {
  auto* const frame = static_cast<JdecFrameBuffer*>(Arena_Alloc_Zeroed(sizeof(JdecFrameBuffer)));
  if (frame) frame->data = static_cast<uint8_t*>(Arena_Alloc_Zeroed(FrameStoreSize));
  return frame;
}

JdecCodec* Codec_New(int32_t width, int32_t height) {
  auto* const codec = static_cast<JdecCodec*>(Arena_Alloc_Zeroed(sizeof(JdecCodec)));
  if (!codec) return nullptr;
  codec->width = width;
  codec->height = height;
  codec->quality = 25;
  codec->lumaQuant = Table_New<uint16_t>();
  codec->chromaQuant = Table_New<uint16_t>();
  codec->lumaForward = Table_New<int16_t>();
  codec->chromaForward = Table_New<int16_t>();
  codec->lumaInverse = Table_New<int16_t>();
  codec->chromaInverse = Table_New<int16_t>();
  codec->coefY = Coef_Plane_New(width, height);
  codec->coefCb = Coef_Plane_New(width / 2, height / 2);
  codec->coefCr = Coef_Plane_New(width / 2, height / 2);
  codec->frame = Frame_Buffer_New();
  codec->rows = Row_Store_New();
  codec->watermark = static_cast<WatermarkCollector*>(Arena_Alloc_Zeroed(sizeof(WatermarkCollector)));
  const bool complete = codec->lumaQuant && codec->chromaQuant && codec->lumaForward && codec->chromaForward &&
                        codec->lumaInverse && codec->chromaInverse && codec->coefY && codec->coefCb && codec->coefCr &&
                        codec->frame && codec->frame->data && codec->rows && codec->watermark;
  if (complete) return codec;
  Codec_Free(codec);
  return nullptr;
}

void Codec_Free(JdecCodec* codec) {
  if (!codec) return;
  if (codec->frame) Arena_Free(codec->frame->data);
  Arena_Free(codec->frame);
  Row_Store_Free(codec->rows);
  Arena_Free(codec->watermark);
  Coef_Plane_Free(codec->coefY);
  Coef_Plane_Free(codec->coefCb);
  Coef_Plane_Free(codec->coefCr);
  Arena_Free(codec->lumaQuant);
  Arena_Free(codec->chromaQuant);
  Arena_Free(codec->lumaForward);
  Arena_Free(codec->chromaForward);
  Arena_Free(codec->lumaInverse);
  Arena_Free(codec->chromaInverse);
  Arena_Free(codec);
}

void Codec_Set_Quality(JdecCodec* codec, int32_t quality) {
  if (codec->quality == quality) return;
  static constexpr int32_t scaleBits = 11;
  codec->quality = quality;
  Quant_Build(quality, codec->lumaQuant, codec->chromaQuant);
  Quant_Build_Forward(codec->lumaForward, codec->lumaQuant, scaleBits);
  Quant_Build_Forward(codec->chromaForward, codec->chromaQuant, scaleBits);
  Quant_Build_Inverse(codec->lumaInverse, codec->lumaQuant, scaleBits);
  Quant_Build_Inverse(codec->chromaInverse, codec->chromaQuant, scaleBits);
  Row_Store_Set_Tables(codec->rows, codec->lumaInverse, codec->chromaInverse);
}
