/* A client as Visual Basic programs are: without a header, it declares operations by their arguments (Declare Function
 * vb_JDEC_New Lib "velarto.dll" [Alias "#6"] (ByVal width As Long, ByVal height As Long) As Long), and notices a wrong
 * convention. */
#include "client.h"

static const Declaration GetEntryPoints = {"NP_GetEntryPoints", 1, 1, 0}, Initialize = {"NP_Initialize", 2, 1, 0};
/* clang-format off */
#define DECLARE(name, ordinal, words) static const Declaration name = {"vb_JDEC_" #name, ordinal, words, 0}
DECLARE(Init, 4, 0); DECLARE(Exit, 5, 0); DECLARE(New, 6, 2); DECLARE(Free, 7, 1); DECLARE(Flush, 8, 1);
DECLARE(Draw_Init, 9, 2); DECLARE(Draw_Exit, 10, 1); DECLARE(Get_Quality, 11, 1); DECLARE(Write_JFIF_File, 12, 2);
DECLARE(Receive_Data, 13, 3); DECLARE(Receive_Data_2, 14, 3); DECLARE(Check_Decode_Frame, 15, 7);
DECLARE(get_decompressed_bitmap, 16, 1); DECLARE(get_decompressed_bitmap_ex, 17, 3);
DECLARE(get_decompressed_bitmap_ex2, 18, 3); DECLARE(Access_SrcRect, 19, 2); DECLARE(Access_DstRect, 20, 2);
/* clang-format on */

/* One decoder, on the pushing and on the polling path. */
static void Run(uint8_t* pushed, uint8_t* polled) {
  uint8_t taken[sizeof frame];
  int32_t format = -1, rect[4] = {1, 2, 3, 4};
  uint32_t length = 0;
  FILE* const file = fopen("client.jpg", "w+b");
  CHECK((uint16_t)CALL(GetEntryPoints, 0) == 3 && (uint16_t)CALL(Initialize, 0) == 3);
  CHECK(CALL(Init) == 1);
  const uint32_t decoder = CALL(New, 320, 240);
  CHECK(CALL(Draw_Init, decoder, 0) == 1);
  CHECK(CALL(Receive_Data, decoder, frameSize, WORD(frame)) == frameSize);
  CHECK(CALL(Get_Quality, decoder) == Quality);
  CHECK(CALL(get_decompressed_bitmap_ex2, decoder, WORD(pushed), BmpSize) == BmpSize);
  CHECK(pushed[18] == Width && pushed[22] == Height);
  CHECK(CALL(get_decompressed_bitmap, decoder) == CALL(get_decompressed_bitmap_ex, decoder, WORD(&format), 0) && format == 3);
  CHECK(memcmp((const void*)CALL(Access_SrcRect, decoder, WORD(rect)), rect, sizeof rect) == 0);
  CHECK(((const int32_t*)CALL(Access_DstRect, decoder, WORD(rect)))[2] == 320);
  CHECK(CALL(Write_JFIF_File, decoder, WORD(file)) == 2 && ftell(file) == (long)frameSize);
  fclose(file);
  CALL(Flush, decoder);
  CHECK(CALL(get_decompressed_bitmap_ex2, decoder, WORD(polled), BmpSize) == BmpSize && memcmp(polled, pushed, BmpSize) != 0);
  CHECK(CALL(Receive_Data_2, decoder, WORD(frame), frameSize) == 0);
  CHECK(CALL(Check_Decode_Frame, decoder, 1, WORD(taken), sizeof taken, WORD(&length), 0, 0) == 1 && length == frameSize);
  CHECK(CALL(get_decompressed_bitmap_ex2, decoder, WORD(polled), BmpSize) == BmpSize);
  CALL(Draw_Exit, decoder);
  CALL(Free, decoder);
  CALL(Exit);
}

int main(void) {
  Begin();
  for (byOrdinal = 0; byOrdinal < 2; ++byOrdinal) Run(bmp[2 * byOrdinal], bmp[2 * byOrdinal + 1]);
  return End(4);
}
