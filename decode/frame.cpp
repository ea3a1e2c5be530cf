#include "decode/frame.h"

#include "decode/picture_decode.h"
#include "decode/watermark_text.h"
#include "display/present.h"
#include "pixel/dither.h"

#include <cstring>

/** The decoder's raster, in the form that its display shows. */
static PictureTarget Target_For_Display(const JdecDecoder* decoder) {
  const JdecCodec* const codec = decoder->codec;
  RECT client = {};
  GetClientRect(decoder->display->window, &client);
  const DitherMode mode = client.right - client.left < decoder->width ? DitherShrink : DitherNormal;
  return {codec->raster, decoder->display->pixelFormat, mode, RasterRead};
}

static PictureTarget Target_For_Frame(const JdecDecoder* decoder, bool draw) {
  const JdecCodec* const codec = decoder->codec;
  if (decoder->headless) return {codec->raster, PixelRgb24, DitherNormal, RasterLeft};
  if (draw && decoder->display) return Target_For_Display(decoder);
  return {codec->raster, NoPixels, DitherNormal, RasterLeft};
}

static FrameForm Form_Of(bool isJfif, bool hasPrefix) {
  if (isJfif) return FrameForm::Jfif;
  return hasPrefix ? FrameForm::Prefixed : FrameForm::Compact;
}

/** Reads the header and changes the decoder to its size. False, with nothing changed, for a frame that can't be decoded. */
static bool Adopt_Header(JdecDecoder* decoder, bool isJfif, FrameHeader* header) {
  const JdecCodec* const codec = decoder->codec;
  const FrameForm form = Form_Of(isJfif, decoder->extendedHeader != 0);
  if (!Read_Frame_Header(codec->frame->data, codec->frame->length, form, header)) return false;
  if (!Picture_Size_Allowed(header->width, header->height)) return false;
  if (header->width == codec->width && header->height == codec->height) return true;
  return Decoder_Change_Size(decoder, header->width, header->height);
}

int32_t Decode_Frame(JdecDecoder* decoder, int32_t isJfif, int32_t draw) {
  FrameHeader header{};
  if (!Adopt_Header(decoder, isJfif != 0, &header)) {
    Watermark_Reset();
    return 0;
  }
  JdecCodec* const codec = decoder->codec;
  Codec_Set_Quality(codec, header.quality);
  codec->frame->position += header.dataOffset;
  const PictureTarget to = Target_For_Frame(decoder, draw != 0);
  Decode_Picture(codec, to);
  if (to.format != NoPixels) decoder->rasterFormat = to.format;
  Watermark_Publish(*codec->watermark);
  if (decoder->headless || !draw) return 1;
  if (!decoder->display) {
    OutputDebugStringA("jdec, decompress, DDRAW=NULL!!\n");
    return 0;
  }
  Present_Picture(decoder);
  return 1;
}

bool Store_Frame(JdecCodec* codec, std::span<const uint8_t> bytes) {
  if (bytes.size() > static_cast<size_t>(FrameStoreSize)) return false;
  JdecFrameBuffer* const frame = codec->frame;
  std::memcpy(frame->data, bytes.data(), bytes.size());
  frame->length = static_cast<int32_t>(bytes.size());
  frame->position = 0;
  return true;
}

bool Decode_Delimited_Frame(JdecDecoder* decoder, std::span<const uint8_t> bytes, FrameForm form, bool draw) {
  if (!Store_Frame(decoder->codec, bytes)) return false;
  // The field is that of the frame in the assembly buffer, if one is open there.
  const int32_t before = decoder->extendedHeader;
  decoder->extendedHeader = form == FrameForm::Prefixed;
  const bool result = Decode_Frame(decoder, form == FrameForm::Jfif, draw) != 0;
  decoder->extendedHeader = before;
  return result;
}

void Present_Picture(JdecDecoder* decoder) {
  Display_Present(decoder->display, decoder->codec->raster, 0, 0, decoder->width, decoder->height, decoder->mdMode);
}

void Redraw_Frame(JdecDecoder* decoder) {
  if (!decoder->display || decoder->headless) return;
  const PictureTarget to = Target_For_Display(decoder);
  Convert_Planes(to.format, decoder->codec->planes, to.raster, to.ditherMode);
  decoder->rasterFormat = to.format;
  Present_Picture(decoder);
}
