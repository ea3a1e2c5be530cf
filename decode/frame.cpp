#include "decode/frame.h"

#include "decode/framing.h"
#include "decode/huffman_decode.h"
#include "decode/idct.h"
#include "decode/rows.h"
#include "decode/watermark.h"
#include "display/present.h"
#include "pixel/convert.h"
#include "pixel/dither.h"

/** What a frame's head says. */
struct FrameHead {
  int32_t width, height, quality;
  int32_t dataOffset;
};

/** Reads the head of the frame in the store. 0 if the frame is shorter than its head or has none. */
static int32_t Read_Head(const JdecFrameBuffer* frame, int32_t isJfif, int32_t extendedHeader, FrameHead* head) {
  if (isJfif) {
    if (frame->length < LeastJfifBytes) return 0;
    head->dataOffset = Find_Scan_Data(frame->data);
    return head->dataOffset >= 0 && Parse_JFIF_Header(frame->data, &head->width, &head->height, &head->quality);
  }
  const int32_t headOffset = extendedHeader ? PrefixSize : 0;
  head->dataOffset = headOffset + CompactHeadSize;
  if (frame->length < head->dataOffset) return 0;
  Parse_Compact_Header(frame->data + headOffset, &head->width, &head->height, &head->quality);
  return 1;
}

static void Transform_Planes(const JdecCodec* codec, int32_t width, int32_t height) {
  const JdecPlanes* const planes = codec->planes;
  IDCT_Plane(planes->yRows, codec->coefY, width, height, codec->lumaInverse);
  IDCT_Plane(planes->crRows, codec->coefCr, width / 2, height / 2, codec->chromaInverse);
  IDCT_Plane(planes->cbRows, codec->coefCb, width / 2, height / 2, codec->chromaInverse);
}

/** From the planes to the window. */
static void Show_Planes(JdecDecoder* decoder) {
  const JdecCodec* const codec = decoder->codec;
  RECT client = {};
  GetClientRect(decoder->display->window, &client);
  const DitherMode mode = client.right - client.left < decoder->width ? DitherShrink : DitherNormal;
  Convert_Planes(decoder->display->pixelFormat, codec->planes, codec->raster, mode);
  Display_Present(decoder->display, codec->raster, 0, 0, decoder->width, decoder->height, decoder->mdMode);
}

/** Reads the head and brings the decoder to the size that it tells. 0, with the decoder as it was, for a frame that can't be
 *  decoded. */
static int32_t Adopt_Head(JdecDecoder* decoder, int32_t isJfif, FrameHead* head) {
  const JdecCodec* const codec = decoder->codec;
  if (!Read_Head(codec->frame, isJfif, decoder->extendedHeader, head)) return 0;
  if (!Picture_Size_Allowed(head->width, head->height)) return 0;
  if (head->width == codec->width && head->height == codec->height) return 1;
  return Decoder_Change_Size(decoder, head->width, head->height);
}

static void Take_Nothing(void*, int32_t, int32_t) {}

int32_t Decode_Frame(JdecDecoder* decoder, int32_t isJfif, int32_t draw) {
  FrameHead head{};
  if (!Adopt_Head(decoder, isJfif, &head)) {
    Watermark_Reset();
    return 0;
  }
  JdecCodec* const codec = decoder->codec;
  Codec_Set_Quality(codec, head.quality);
  codec->frame->position += head.dataOffset;

  if (Rows_Available()) {
    Decode_Rows(codec, {Take_Nothing, nullptr});
  } else {
    Huff_Decode_Frame(codec, codec->coefY, codec->coefCb, codec->coefCr, head.width, head.height, codec->frame);
    Transform_Planes(codec, head.width, head.height);
  }
  if (decoder->headless) {
    YCC_To_RGB24(codec->planes, codec->raster);
    return 1;
  }
  if (!draw) return 1;
  if (!decoder->display) {
    OutputDebugStringA("jdec, decompress, DDRAW=NULL!!\n");
    return 0;
  }
  Show_Planes(decoder);
  return 1;
}

void Redraw_Frame(JdecDecoder* decoder) {
  if (decoder->display && !decoder->headless) Show_Planes(decoder);
}

int32_t* VELARTO_CDECL JDEC_Access_SrcRect(JdecDecoder* decoder, const int32_t* rect) {
  if (!decoder || !rect) return nullptr;
  SetRect(&decoder->srcRect, rect[0], rect[1], rect[2], rect[3]);
  if (decoder->display && !decoder->headless) {
    Display_Present(decoder->display, decoder->codec->raster, 0, 0, decoder->width, decoder->height, decoder->mdMode);
  }
  return reinterpret_cast<int32_t*>(&decoder->srcRect);
}

int32_t* VELARTO_CDECL JDEC_Access_DstRect(JdecDecoder* decoder, const int32_t* rect) {
  if (!decoder || !rect) return nullptr;
  return reinterpret_cast<int32_t*>(&decoder->dstRect);
}
