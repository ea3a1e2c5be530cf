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

/** Where samples are to go. */
struct Conversion {
  const JdecPlanes* planes;
  JdecRaster* raster;
  int32_t format;  ///< -1: nowhere.
  int32_t ditherMode;
  RasterUse use;
};

/** The conversion for the decoder's window. */
static Conversion For_Window(const JdecDecoder* decoder) {
  const JdecCodec* const codec = decoder->codec;
  RECT client = {};
  GetClientRect(decoder->display->window, &client);
  const DitherMode mode = client.right - client.left < decoder->width ? DitherShrink : DitherNormal;
  return {codec->planes, codec->raster, decoder->display->pixelFormat, mode, RasterRead};
}

static Conversion For_Frame(const JdecDecoder* decoder, int32_t draw) {
  const JdecCodec* const codec = decoder->codec;
  if (decoder->headless) return {codec->planes, codec->raster, PixelRgb24, DitherNormal, RasterLeft};
  if (draw && decoder->display) return For_Window(decoder);
  return {codec->planes, codec->raster, -1, DitherNormal, RasterLeft};
}

static void Convert_Rows_Of(void* user, int32_t firstPair, int32_t pairs) {
  const auto* const to = static_cast<const Conversion*>(user);
  if (to->format >= 0) Convert_Plane_Rows(to->format, to->planes, to->raster, to->ditherMode, to->use, firstPair, pairs);
}

static void Present(JdecDecoder* decoder) {
  Display_Present(decoder->display, decoder->codec->raster, 0, 0, decoder->width, decoder->height, decoder->mdMode);
}

/** From bytes to the raster, by the road that the kernels have. */
static void Decode_Picture(JdecCodec* codec, Conversion to) {
  if (Rows_Available()) {
    Decode_Rows(codec, {Convert_Rows_Of, &to});
    return;
  }
  Huff_Decode_Frame(codec, codec->coefY, codec->coefCb, codec->coefCr, codec->width, codec->height, codec->frame);
  Transform_Planes(codec, codec->width, codec->height);
  if (to.format >= 0) Convert_Planes(to.format, to.planes, to.raster, to.ditherMode);
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

int32_t Decode_Frame(JdecDecoder* decoder, int32_t isJfif, int32_t draw) {
  FrameHead head{};
  if (!Adopt_Head(decoder, isJfif, &head)) {
    Watermark_Reset();
    return 0;
  }
  JdecCodec* const codec = decoder->codec;
  Codec_Set_Quality(codec, head.quality);
  codec->frame->position += head.dataOffset;
  Decode_Picture(codec, For_Frame(decoder, draw));
  if (decoder->headless || !draw) return 1;
  if (!decoder->display) {
    OutputDebugStringA("jdec, decompress, DDRAW=NULL!!\n");
    return 0;
  }
  Present(decoder);
  return 1;
}

void Redraw_Frame(JdecDecoder* decoder) {
  if (!decoder->display || decoder->headless) return;
  const Conversion to = For_Window(decoder);
  Convert_Planes(to.format, to.planes, to.raster, to.ditherMode);
  Present(decoder);
}

int32_t* VELARTO_CDECL JDEC_Access_SrcRect(JdecDecoder* decoder, const int32_t* rect) {
  if (!decoder || !rect) return nullptr;
  SetRect(&decoder->srcRect, rect[0], rect[1], rect[2], rect[3]);
  if (decoder->display && !decoder->headless) {
    Present(decoder);
  }
  return reinterpret_cast<int32_t*>(&decoder->srcRect);
}

int32_t* VELARTO_CDECL JDEC_Access_DstRect(JdecDecoder* decoder, const int32_t* rect) {
  if (!decoder || !rect) return nullptr;
  return reinterpret_cast<int32_t*>(&decoder->dstRect);
}
