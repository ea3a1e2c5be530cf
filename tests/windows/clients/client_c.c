/* A client in plain C: the JDEC_ operations through the header's prototypes, linked, by name and by ordinal; and all of the
 * decoder_ family with an eye on the stack. */
#include "client.h"
#include "velarto.h"

/* clang-format off */
#define USED(X) X(JDEC_Init, 31) X(JDEC_Exit, 27) X(JDEC_New, 32) X(JDEC_Free, 29) X(JDEC_Draw_Init, 26) \
  X(JDEC_Receive_Data, 33) X(JDEC_get_size, 43) X(JDEC_Get_Quality, 30) X(JDEC_get_decompressed_bitmap_ex2, 42) \
  X(JDEC_Write_JFIF_File, 38)
#define FIELD(name, ordinal) __typeof__(&name) name;
#define LINKED(name, ordinal) name,
#define FOUND(name, ordinal) (__typeof__(&name))Find(#name, ordinal),
typedef struct { USED(FIELD) } Operations;

#define DECLARE(name, ordinal, words) static const Declaration C_##name = {"decoder_" #name, ordinal, words, 4}
DECLARE(Initialize, 56, 0); DECLARE(Shutdown, 57, 0); DECLARE(access_src_rect, 58, 2); DECLARE(draw_exit, 59, 1);
DECLARE(draw_init, 60, 2); DECLARE(enable_MD, 61, 2); DECLARE(enable_regulation, 62, 0); DECLARE(flush, 63, 1);
DECLARE(free, 64, 1); DECLARE(get_decompressed_bitmap_ex2, 65, 3); DECLARE(get_dimension, 66, 3);
DECLARE(get_mime_string, 67, 1); DECLARE(is_intra_frame, 68, 0); DECLARE(match_bitstream_header_pattern, 69, 0);
DECLARE(new, 70, 0); DECLARE(receive_data, 71, 3); DECLARE(register_draw_callback, 72, 3); DECLARE(set_MD_area, 73, 4);
DECLARE(set_MD_area_2, 74, 6); DECLARE(set_MD_color, 75, 1); DECLARE(set_ptz_bmp, 76, 2); DECLARE(set_speed, 77, 2);
DECLARE(show_rectangle, 78, 6);
/* clang-format on */

static void Run_Main(Operations dll, uint8_t* picture) {
  int32_t status = 0, width = 0, height = 0;
  FILE* const file = fopen("client.jpg", "w+b");
  CHECK(dll.JDEC_Init() == 1);
  JdecDecoder* const decoder = dll.JDEC_New(320, 240);
  CHECK(dll.JDEC_Draw_Init(decoder, NULL) == 1);
  CHECK(dll.JDEC_Receive_Data(decoder, (int32_t)frameSize, frame, &status) == (int32_t)frameSize);
  dll.JDEC_get_size(decoder, &width, &height);
  CHECK(width == Width && height == Height && dll.JDEC_Get_Quality(decoder) == Quality);
  CHECK(dll.JDEC_get_decompressed_bitmap_ex2(decoder, picture, BmpSize) == BmpSize);
  CHECK(dll.JDEC_Write_JFIF_File(decoder, file) == 2 && ftell(file) == (long)frameSize);
  fclose(file);
  dll.JDEC_Free(decoder);
  dll.JDEC_Exit();
}

static void Run_Guarded(uint8_t* picture) {
  int32_t width = 0, height = 0, rect[4] = {1, 2, 3, 4};
  char mime[20] = "                   ";
  CHECK(CALL(C_Initialize) == 1);
  const uint32_t decoder = CALL(C_new);
  CHECK(CALL(C_draw_init, decoder, 0) == 1);
  CHECK(CALL(C_receive_data, decoder, frameSize, WORD(frame)) == frameSize && CALL(C_receive_data, 0, 1, WORD(frame)) == 0);
  CALL(C_get_dimension, decoder, WORD(&width), WORD(&height));
  CHECK(width == Width && height == Height);
  CHECK(CALL(C_get_decompressed_bitmap_ex2, decoder, WORD(picture), BmpSize) == BmpSize);
  CHECK(memcmp((const void*)CALL(C_access_src_rect, decoder, WORD(rect)), rect, sizeof rect) == 0);
  CALL(C_get_mime_string, WORD(mime));
  CHECK(strcmp(mime, "video/x-orvistream") == 0);
  CHECK(CALL(C_set_speed, decoder, 2) == 1 && CALL(C_is_intra_frame) == 1);
  CHECK((int32_t)CALL(C_match_bitstream_header_pattern) == -1);
  const Declaration* const silent[] = {&C_enable_MD,     &C_enable_regulation, &C_set_MD_color, &C_set_MD_area,
                                       &C_set_MD_area_2, &C_show_rectangle,    &C_set_ptz_bmp,  &C_register_draw_callback};
  for (size_t i = 0; i < sizeof silent / sizeof *silent; ++i) Call(silent[i], (const uint32_t[8]){i == 2 ? 0 : decoder});
  CALL(C_flush, decoder);
  CALL(C_draw_exit, decoder);
  CALL(C_free, decoder);
  CALL(C_Shutdown);
}

int main(void) {
  Begin();
  Run_Main((Operations){USED(LINKED)}, bmp[4]);
  for (byOrdinal = 0; byOrdinal < 2; ++byOrdinal) {
    Run_Main((Operations){USED(FOUND)}, bmp[2 * byOrdinal]);
    Run_Guarded(bmp[2 * byOrdinal + 1]);
  }
  return End(5);
}
