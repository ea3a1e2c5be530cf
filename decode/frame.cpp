#include "decode/frame.h"

#include "decode/picture_decode.h"
#include "decode/watermark_text.h"
#include "display/present.h"
#include "pixel/dither.h"

#include <cstring>

/** Pixels for the decoder's window. */
static PictureTarget For_Window(const JdecDecoder* decoder) {
  const JdecCodec* const codec = decoder->codec;
  RECT client = {};
  GetClientRect(decoder->display->window, &client);
  const DitherMode mode = client.right - client.left < decoder->width ? DitherShrink : DitherNormal;
  return {codec->raster, decoder->display->pixelFormat, mode, RasterRead};
}

static PictureTarget For_Frame(const JdecDecoder* decoder, int32_t draw) {
  const JdecCodec* const codec = decoder->codec;
  if (decoder->headless) return {codec->raster, PixelRgb24, DitherNormal, RasterLeft};
  if (draw && decoder->display) return For_Window(decoder);
  return {codec->raster, NoPixels, DitherNormal, RasterLeft};
}

static FrameForm Form_Of(int32_t isJfif, int32_t extendedHeader) {
  if (isJfif) return FrameForm::Jfif;
  return extendedHeader ? FrameForm::Prefixed : FrameForm::Compact;
}

/** Reads the header and brings the decoder to its size. 0, with the decoder as it was, for a frame that can't be decoded. */
static int32_t Adopt_Header(JdecDecoder* decoder, int32_t isJfif, FrameHeader* header) {
  const JdecCodec* const codec = decoder->codec;
  const FrameForm form = Form_Of(isJfif, decoder->extendedHeader);
  if (!Read_Frame_Header(codec->frame->data, codec->frame->length, form, header)) return 0;
  if (!Picture_Size_Allowed(header->width, header->height)) return 0;
  if (header->width == codec->width && header->height == codec->height) return 1;
  return Decoder_Change_Size(decoder, header->width, header->height);
}

int32_t Decode_Frame(JdecDecoder* decoder, int32_t isJfif, int32_t draw) {
  FrameHeader header{};
  if (!Adopt_Header(decoder, isJfif, &header)) {
    Watermark_Reset();
    return 0;
  }
  JdecCodec* const codec = decoder->codec;
  Codec_Set_Quality(codec, header.quality);
  codec->frame->position += header.dataOffset;
  Decode_Picture(codec, For_Frame(decoder, draw));
  Watermark_Publish(*codec->watermark);
  if (decoder->headless || !draw) return 1;
  if (!decoder->display) {
    OutputDebugStringA("jdec, decompress, DDRAW=NULL!!\n");
    return 0;
  }
  Present_Picture(decoder);
  return 1;
}

int32_t Store_Frame(JdecCodec* codec, std::span<const uint8_t> bytes) {
  if (bytes.size() > static_cast<size_t>(FrameStoreSize)) return 0;
  JdecFrameBuffer* const frame = codec->frame;
  std::memcpy(frame->data, bytes.data(), bytes.size());
  frame->length = static_cast<int32_t>(bytes.size());
  frame->position = 0;
  return 1;
}

int32_t Decode_Delimited_Frame(JdecDecoder* decoder, std::span<const uint8_t> bytes, FrameForm form, int32_t draw) {
  if (!Store_Frame(decoder->codec, bytes)) return 0;
  // The field belongs to the frame that may be open in the assembly buffer.
  const int32_t before = decoder->extendedHeader;
  decoder->extendedHeader = form == FrameForm::Prefixed;
  const int32_t result = Decode_Frame(decoder, form == FrameForm::Jfif, draw);
  decoder->extendedHeader = before;
  return result;
}

void Present_Picture(JdecDecoder* decoder) {
  Display_Present(decoder->display, decoder->codec->raster, 0, 0, decoder->width, decoder->height, decoder->mdMode);
}

void Redraw_Frame(JdecDecoder* decoder) {
  if (!decoder->display || decoder->headless) return;
  const PictureTarget to = For_Window(decoder);
  Convert_Planes(to.format, decoder->codec->planes, to.raster, to.ditherMode);
  Present_Picture(decoder);
}
