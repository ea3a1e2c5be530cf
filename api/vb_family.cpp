/* The vb_JDEC_ family: JDEC_ operations with the calling convention __stdcall. */
#include "velarto.h"

int32_t VELARTO_STDCALL vb_JDEC_Init(void) { return JDEC_Init(); }

void VELARTO_STDCALL vb_JDEC_Exit(void) { JDEC_Exit(); }

JdecDecoder* VELARTO_STDCALL vb_JDEC_New(int32_t width, int32_t height) { return JDEC_New(width, height); }

void VELARTO_STDCALL vb_JDEC_Free(JdecDecoder* decoder) { JDEC_Free(decoder); }

void VELARTO_STDCALL vb_JDEC_Flush(JdecDecoder* decoder) { JDEC_Flush(decoder); }

int32_t VELARTO_STDCALL vb_JDEC_Draw_Init(JdecDecoder* decoder, VelartoWindow window) { return JDEC_Draw_Init(decoder, window); }

void VELARTO_STDCALL vb_JDEC_Draw_Exit(JdecDecoder* decoder) { JDEC_Draw_Exit(decoder); }

int32_t VELARTO_STDCALL vb_JDEC_Get_Quality(JdecDecoder* decoder) { return JDEC_Get_Quality(decoder); }

int32_t VELARTO_STDCALL vb_JDEC_Write_JFIF_File(JdecDecoder* decoder, FILE* stream) {
  return JDEC_Write_JFIF_File(decoder, stream);
}

int32_t VELARTO_STDCALL vb_JDEC_Receive_Data(JdecDecoder* decoder, int32_t length, const uint8_t* data) {
  int32_t status = 0;
  return JDEC_Receive_Data(decoder, length, data, &status);
}

int32_t VELARTO_STDCALL vb_JDEC_Receive_Data_2(JdecDecoder* decoder, const uint8_t* data, uint32_t length) {
  return JDEC_Receive_Data_2(decoder, data, length);
}

int32_t VELARTO_STDCALL vb_JDEC_Check_Decode_Frame(JdecDecoder* decoder, int32_t decode, uint8_t* buffer, int32_t capacity,
                                                   uint32_t* outLength, int32_t reserved, int32_t draw) {
  int32_t status = 0;
  return JDEC_Check_Decode_Frame(decoder, decode, buffer, capacity, outLength, reserved, draw, &status);
}

uint8_t* VELARTO_STDCALL vb_JDEC_get_decompressed_bitmap(JdecDecoder* decoder) { return JDEC_get_decompressed_bitmap(decoder); }

uint8_t* VELARTO_STDCALL vb_JDEC_get_decompressed_bitmap_ex(JdecDecoder* decoder, int32_t* format, uint8_t* palette) {
  return JDEC_get_decompressed_bitmap_ex(decoder, format, palette);
}

int32_t VELARTO_STDCALL vb_JDEC_get_decompressed_bitmap_ex2(JdecDecoder* decoder, uint8_t* buffer, int32_t capacity) {
  return JDEC_get_decompressed_bitmap_ex2(decoder, buffer, capacity);
}

int32_t* VELARTO_STDCALL vb_JDEC_Access_SrcRect(JdecDecoder* decoder, const int32_t* rect) {
  return JDEC_Access_SrcRect(decoder, rect);
}

int32_t* VELARTO_STDCALL vb_JDEC_Access_DstRect(JdecDecoder* decoder, const int32_t* rect) {
  return JDEC_Access_DstRect(decoder, rect);
}
