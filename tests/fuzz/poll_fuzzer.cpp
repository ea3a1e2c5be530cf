// Any bytes through the polling path, in chunks and into buffers of any size. It gives the frames of the stream.
#include "fuzz/run.h"

/** Polls the whole stream; returns all frames, then the last picture. */
static Bytes Decode(uint32_t mask, Input input) {
  const Run run(mask);
  const uint8_t flags = input.Byte();
  const size_t most = size_t{1} << (flags >> 4);
  Bytes out((size_t)input.Word() % 4096 + 1), all;
  Let_Memory_Fail(input.Byte());
  JdecDecoder* const decoder = JDEC_New(32, 32);
  if (flags & 1) JDEC_Draw_Init(decoder, nullptr);
  int32_t status = flags & 4;
  while (input.left) {
    const Bytes chunk = input.Some(most);
    JDEC_Receive_Data_2(decoder, chunk.data(), (uint32_t)chunk.size());
    for (int32_t result = 1; result == 1 || result == 4;) {
      uint32_t length = 0;
      result = JDEC_Check_Decode_Frame(decoder, flags & 2, out.data(), (int32_t)out.size(), &length, 0, 1, &status);
      REQUIRE(result >= 0 && result <= 4 && (result == 4 || length <= out.size()));
      if (result == 4) out.resize(length);
      if (result == 1) all.insert(all.end(), out.begin(), out.begin() + length);
    }
  }
  const Bytes picture = flags & 1 ? Picture_Of(decoder) : Bytes();
  JDEC_Free(decoder);
  all.insert(all.end(), picture.begin(), picture.end());
  return all;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (Announced_Pixels(data, size) > MostAnnounced) return 0;
  Compare_With_Plain(data, size, 4, Decode);
  return 0;
}
