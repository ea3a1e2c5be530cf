/* The decoder_ family: JDEC_ operations after a check for a null decoder, and a few that give fixed results. */
#include "decode/speed.h"
#include "resources/resources.h"

#include <cstring>

/** Size of a new decoder. */
static constexpr int32_t StartWidth = 320, StartHeight = 240;

int32_t VELARTO_CDECL decoder_Initialize(void) { return JDEC_Init(); }

void VELARTO_CDECL decoder_Shutdown(void) { JDEC_Exit(); }

int32_t* VELARTO_CDECL decoder_access_src_rect(JdecDecoder* decoder, const int32_t* rect) {
  return decoder ? JDEC_Access_SrcRect(decoder, rect) : nullptr;
}

void VELARTO_CDECL decoder_draw_exit(JdecDecoder* decoder) {
  if (decoder) JDEC_Draw_Exit(decoder);
}

int32_t VELARTO_CDECL decoder_draw_init(JdecDecoder* decoder, VelartoWindow window) {
  return decoder ? JDEC_Draw_Init(decoder, window) : 0;
}

void VELARTO_CDECL decoder_enable_regulation(void) {}

void VELARTO_CDECL decoder_flush(JdecDecoder* decoder) {
  if (decoder) JDEC_Flush(decoder);
}

void VELARTO_CDECL decoder_free(JdecDecoder* decoder) {
  if (decoder) JDEC_Free(decoder);
}

void VELARTO_CDECL decoder_enable_MD(JdecDecoder* decoder, int32_t value) {
  if (decoder) JDEC_enable_MD(decoder, value);
}

void VELARTO_CDECL decoder_set_MD_color(int32_t which) { JDEC_set_MD_color(which); }

void VELARTO_CDECL decoder_set_MD_area(JdecDecoder* decoder, int32_t column, int32_t row, int32_t marked) {
  if (decoder) JDEC_set_MD_area(decoder, column, row, marked);
}

void VELARTO_CDECL decoder_set_MD_area_2(JdecDecoder* decoder, int32_t left, int32_t top, int32_t width, int32_t height,
                                         int32_t unused) {
  if (decoder) JDEC_set_MD_area_2(decoder, left, top, width, height, unused);
}

void VELARTO_CDECL decoder_show_rectangle(JdecDecoder* decoder, int32_t x, int32_t y, int32_t width, int32_t height,
                                          int32_t hide) {
  if (decoder) JDEC_show_rectangle(decoder, x, y, width, height, hide);
}

void VELARTO_CDECL decoder_set_ptz_bmp(JdecDecoder* decoder, VelartoBitmap bitmap) {
  if (decoder) JDEC_set_ptz_bmp(decoder, bitmap);
}

void VELARTO_CDECL decoder_register_draw_callback(JdecDecoder* decoder, VelartoDrawCallback callback, uintptr_t user) {
  if (decoder) JDEC_register_draw_callback(decoder, callback, user);
}

int32_t VELARTO_CDECL decoder_get_decompressed_bitmap_ex2(JdecDecoder* decoder, uint8_t* buffer, int32_t capacity) {
  return decoder ? JDEC_get_decompressed_bitmap_ex2(decoder, buffer, capacity) : 0;
}

void VELARTO_CDECL decoder_get_dimension(JdecDecoder* decoder, int32_t* width, int32_t* height) {
  if (decoder) JDEC_get_size(decoder, width, height);
}

void VELARTO_CDECL decoder_get_mime_string(char* buffer) {
  if (buffer) std::memcpy(buffer, MimeType, sizeof MimeType);
}

int32_t VELARTO_CDECL decoder_is_intra_frame(void) { return 1; }

int32_t VELARTO_CDECL decoder_match_bitstream_header_pattern(void) { return -1; }

JdecDecoder* VELARTO_CDECL decoder_new(void) { return JDEC_New(StartWidth, StartHeight); }

int32_t VELARTO_CDECL decoder_receive_data(JdecDecoder* decoder, int32_t length, const uint8_t* data) {
  int32_t status = 0;
  return decoder ? JDEC_Receive_Data(decoder, length, data, &status) : 0;
}

int32_t VELARTO_CDECL decoder_set_speed(JdecDecoder* decoder, int32_t speed) {
  return decoder ? Decoder_Set_Speed(decoder, speed) : 0;
}
