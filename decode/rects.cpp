/* The source and destination rectangle of a decoder (velarto.h). */
#include "decode/frame.h"

int32_t* VELARTO_CDECL JDEC_Access_SrcRect(JdecDecoder* decoder, const int32_t* rect) {
  if (!decoder || !rect) return nullptr;
  SetRect(&decoder->srcRect, rect[0], rect[1], rect[2], rect[3]);
  if (decoder->display && !decoder->headless) Present_Picture(decoder);
  return reinterpret_cast<int32_t*>(&decoder->srcRect);
}

int32_t* VELARTO_CDECL JDEC_Access_DstRect(JdecDecoder* decoder, const int32_t* rect) {
  if (!decoder || !rect) return nullptr;
  return reinterpret_cast<int32_t*>(&decoder->dstRect);
}
