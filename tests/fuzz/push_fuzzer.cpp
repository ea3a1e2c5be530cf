// Any bytes through the pushing path, in chunks of any size.
#include "fuzz/run.h"

/** Decodes the stream and returns the last picture. */
static Bytes Decode(uint32_t mask, Input input) {
  const Run run(mask);
  const uint8_t flags = input.Byte();
  uint32_t draw = input.Byte();
  Let_Memory_Fail(input.Byte());
  JdecDecoder* const decoder = JDEC_New(32, 32);
  if (flags & 1) JDEC_Draw_Init(decoder, nullptr);
  int32_t status = flags & 4;
  while (input.left) {
    draw = draw * 1664525 + 1013904223;
    Push(decoder, input.Some(1 + (draw >> 8) % (size_t{1} << (flags >> 4))), &status);
  }
  const Bytes picture = flags & 1 ? Picture_Of(decoder) : Bytes();
  JDEC_Free(decoder);
  return picture;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (Announced_Pixels(data, size) > MostAnnounced) return 0;
  Compare_With_Plain(data, size, 4, Decode);
  return 0;
}
