/* A client in plain C. It links all exports through the header's prototypes and the import library, and calls each family so. It
 * calls two of them again as programs without a header do, in Visual Basic for example, where an operation is declared by its
 * arguments (Declare Function vb_JDEC_New Lib "velarto.dll" [Alias "#6"] (ByVal width As Long, ByVal height As Long) As Long),
 * and checks the stack after each call. All operations are found by name and by ordinal. */
#include "velarto.h"

#include <windows.h>

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The frame to decode, and its picture as a BMP file from each way of calling the DLL. */
enum { Width = 96, Height = 64, Quality = 40, BmpSize = Width * Height * 3 + 54, Ways = 6 };
static uint8_t frame[4096], bmp[Ways][BmpSize];
static uint32_t frameSize;
static HMODULE library;
static int failures;
#define CHECK(condition) ((condition) ? (void)0 : (void)(++failures, printf("line %d: %s\n", __LINE__, #condition)))

/* Finds an operation by its name; its ordinal must lead to the same. */
static void* Find(const char* name, int ordinal) {
  const FARPROC found = GetProcAddress(library, name);
  if (!found) exit(printf("%s is missing\n", name));
  if (found != GetProcAddress(library, MAKEINTRESOURCEA(ordinal))) exit(printf("%s is not number %d\n", name, ordinal));
  return (void*)found;
}

/* ---- The header's prototypes ---------------------------------------------------------------------------------------------- */

/* Each export is linked, and leads to the one that its name and its ordinal lead to: by a jump through the import table. */
static void Check_Links(void) {
  typedef void (*Operation)(void);
  static const struct {
    const char* name;
    int ordinal;
    Operation linked;
  } exports[] = {
#define EXPORT(name, ordinal) {#name, ordinal, (Operation)name},
#include "exports.inc"
  };
  for (size_t i = 0; i < sizeof exports / sizeof *exports; ++i) {
    const uint8_t* const jump = (const uint8_t*)exports[i].linked;
    void** slot = NULL;
    memcpy(&slot, jump + 2, sizeof slot);
    CHECK(jump[0] == 0xFF && jump[1] == 0x25 && *slot == Find(exports[i].name, exports[i].ordinal));
  }
}

static void Run_Linked(uint8_t* picture) {
  int32_t status = 0, width = 0, height = 0;
  FILE* const file = fopen("client.jpg", "w+b");
  CHECK(JDEC_Init() == 1);
  JdecDecoder* const decoder = JDEC_New(320, 240);
  CHECK(JDEC_Draw_Init(decoder, NULL) == 1);
  CHECK(JDEC_Receive_Data(decoder, (int32_t)frameSize, frame, &status) == (int32_t)frameSize);
  JDEC_get_size(decoder, &width, &height);
  CHECK(width == Width && height == Height && JDEC_Get_Quality(decoder) == Quality);
  CHECK(JDEC_get_decompressed_bitmap_ex2(decoder, picture, BmpSize) == BmpSize);
  CHECK(JDEC_Write_JFIF_File(decoder, file) == 2 && ftell(file) == (long)frameSize);
  fclose(file);
  JDEC_Free(decoder);
  JDEC_Exit();
}

static void Run_Linked_Stdcall(uint8_t* picture) {
  CHECK(vb_JDEC_Init() == 1);
  JdecDecoder* const decoder = vb_JDEC_New(320, 240);
  CHECK(vb_JDEC_Draw_Init(decoder, NULL) == 1);
  CHECK(vb_JDEC_Receive_Data(decoder, (int32_t)frameSize, frame) == (int32_t)frameSize);
  CHECK(vb_JDEC_get_decompressed_bitmap_ex2(decoder, picture, BmpSize) == BmpSize);
  vb_JDEC_Free(decoder);
  vb_JDEC_Exit();
}

static void Run_Linked_Guarded(uint8_t* picture) {
  CHECK(decoder_Initialize() == 1);
  JdecDecoder* const decoder = decoder_new();
  CHECK(decoder_draw_init(decoder, NULL) == 1);
  CHECK(decoder_receive_data(decoder, (int32_t)frameSize, frame) == (int32_t)frameSize);
  CHECK(decoder_get_decompressed_bitmap_ex2(decoder, picture, BmpSize) == BmpSize);
  decoder_free(decoder);
  decoder_Shutdown();
}

/* ---- Without a header ----------------------------------------------------------------------------------------------------- */

/* An export as its caller declares it. Arguments and results are words of 32 bits; `left` is how many bytes of each argument a
 * call leaves on the stack: 0 under stdcall, 4 under cdecl. */
typedef struct {
  const char* name;
  int ordinal, words, left;
} Declaration;
#define CALL(declaration, ...) Call(&declaration, (const uint32_t[8]){__VA_ARGS__})
#define WORD(pointer) ((uint32_t)(uintptr_t)(pointer))

/* clang-format off */
#define DECODER(name, ordinal, words) static const Declaration C_##name = {"decoder_" #name, ordinal, words, 4}
DECODER(Initialize, 56, 0); DECODER(Shutdown, 57, 0); DECODER(access_src_rect, 58, 2); DECODER(draw_exit, 59, 1);
DECODER(draw_init, 60, 2); DECODER(enable_MD, 61, 2); DECODER(enable_regulation, 62, 0); DECODER(flush, 63, 1);
DECODER(free, 64, 1); DECODER(get_decompressed_bitmap_ex2, 65, 3); DECODER(get_dimension, 66, 3);
DECODER(get_mime_string, 67, 1); DECODER(is_intra_frame, 68, 0); DECODER(match_bitstream_header_pattern, 69, 0);
DECODER(new, 70, 0); DECODER(receive_data, 71, 3); DECODER(register_draw_callback, 72, 3); DECODER(set_MD_area, 73, 4);
DECODER(set_MD_area_2, 74, 6); DECODER(set_MD_color, 75, 1); DECODER(set_ptz_bmp, 76, 2); DECODER(set_speed, 77, 2);
DECODER(show_rectangle, 78, 6);
static const Declaration GetEntryPoints = {"NP_GetEntryPoints", 1, 1, 0}, Initialize = {"NP_Initialize", 2, 1, 0};
#define VB(name, ordinal, words) static const Declaration name = {"vb_JDEC_" #name, ordinal, words, 0}
VB(Init, 4, 0); VB(Exit, 5, 0); VB(New, 6, 2); VB(Free, 7, 1); VB(Flush, 8, 1);
VB(Draw_Init, 9, 2); VB(Draw_Exit, 10, 1); VB(Get_Quality, 11, 1); VB(Write_JFIF_File, 12, 2);
VB(Receive_Data, 13, 3); VB(Receive_Data_2, 14, 3); VB(Check_Decode_Frame, 15, 7);
VB(get_decompressed_bitmap, 16, 1); VB(get_decompressed_bitmap_ex, 17, 3);
VB(get_decompressed_bitmap_ex2, 18, 3); VB(Access_SrcRect, 19, 2); VB(Access_DstRect, 20, 2);
/* clang-format on */

static uint32_t Call(const Declaration* declaration, const uint32_t* words) {
  uint32_t result, left, count = (uint32_t)declaration->words;
  __asm__ volatile(
      "movl %%esp, %%ebx\n"
      "1: decl %%ecx\n js 2f\n pushl (%%esi,%%ecx,4)\n jmp 1b\n"
      "2: call *%%edi\n movl %%ebx, %%edx\n subl %%esp, %%edx\n movl %%ebx, %%esp"
      : "=a"(result), "=d"(left), "+c"(count)
      : "S"(words), "D"(Find(declaration->name, declaration->ordinal))
      : "ebx", "memory", "cc");
  if (left != (uint32_t)(declaration->words * declaration->left)) {
    ++failures;
    printf("%s with %d words left %u bytes\n", declaration->name, declaration->words, left);
  }
  return result;
}

static void Run_Cdecl(uint8_t* picture) {
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

/* One decoder, on the pushing and on the polling path. */
static void Run_Stdcall(uint8_t* pushed, uint8_t* polled) {
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
  FILE* const file = fopen("tile-96x64-q40.jpg", "rb");
  library = LoadLibraryA("velarto.dll");
  if (!library || !file) exit(printf("no velarto.dll, or no frame\n"));
  frameSize = (uint32_t)fread(frame, 1, sizeof frame, file);
  Check_Links();
  Run_Linked(bmp[0]);
  Run_Linked_Stdcall(bmp[1]);
  Run_Linked_Guarded(bmp[2]);
  Run_Cdecl(bmp[3]);
  Run_Stdcall(bmp[4], bmp[5]);
  for (int way = 1; way < Ways; ++way) CHECK(memcmp(bmp[way], bmp[0], BmpSize) == 0);
  if (!failures) printf("ok: %d ways to the same picture\n", Ways);
  return failures != 0;
}
