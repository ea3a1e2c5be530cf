/* The operations of the JDEC_ family that only pass on the decoder's codec or display (velarto.h). The others are in the files of
 * what they work on. */
#include "decode/decoder.h"
#include "display/palette.h"
#include "pixel/compress.h"
#include "pixel/convert.h"

int32_t VELARTO_CDECL JDEC_Compress_RGB888(JdecDecoder* decoder, int32_t quality, const uint8_t* pixels, uint32_t ignored,
                                           uint8_t* buffer, int32_t capacity, int32_t withMarkers, int32_t doubleRows) {
  return decoder ? Codec_Compress_RGB888(decoder->codec, quality, pixels, ignored, buffer, capacity, withMarkers, doubleRows) : 0;
}

int32_t VELARTO_CDECL JDEC_Write_JFIF_File(JdecDecoder* decoder, FILE* stream) {
  return decoder ? Codec_Write_JFIF_File(decoder->codec, stream) : 0;
}

void VELARTO_CDECL JDEC_reload_palette(JdecDecoder* decoder) {
  if (!decoder || !decoder->display || decoder->display->pixelFormat != PixelPalette8) return;
  Display_Reload_Palette(decoder->display);
}
