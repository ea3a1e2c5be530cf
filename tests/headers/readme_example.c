/* The README's use of the library, as a program: decodes a recording and prints the size of its last picture. */
#include "velarto.h"

#include <stdio.h>

int main(int argc, char** argv) {
  static uint8_t bytes[65536];
  FILE* const file = argc == 2 ? fopen(argv[1], "rb") : NULL;
  if (!file) {
    fprintf(stderr, "usage: readme_example RECORDING\n");
    return 2;
  }
  JDEC_Init();
  JdecDecoder* decoder = JDEC_New(320, 240);
  JDEC_Draw_Init(decoder, NULL);
  int32_t status = 0, format = -1, width = 0, height = 0, taken = 0;
  for (size_t n; (n = fread(bytes, 1, sizeof bytes, file)) > 0;)
    taken |= JDEC_Receive_Data(decoder, (int32_t)n, bytes, &status) != -1;
  JDEC_get_size(decoder, &width, &height);
  const uint8_t* pixels = JDEC_get_decompressed_bitmap_ex(decoder, &format, NULL);
  printf("%dx%d, format %d, first pixel %d %d %d\n", width, height, format, pixels[0], pixels[1], pixels[2]);
  JDEC_Free(decoder);
  JDEC_Exit();
  fclose(file);
  return taken && format == 3 ? 0 : 1;
}
