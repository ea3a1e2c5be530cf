// One frame of each form around the same body: all levels decode the same picture and hidden text, bit for bit, and so do both
// forms that carry the quality number itself.
#include "decode/framing.h"
#include "fuzz/run.h"

/** What is the same for all levels and forms. */
struct Around {
  Bytes before;  // An earlier frame.
  bool hook;
  uint8_t failure;
};

/** Picture, hidden text and status of the frame. */
static Bytes Decode(uint32_t mask, const Around& around, const Bytes& frame) {
  const Run run(mask);
  Let_Memory_Fail(around.failure);
  JdecDecoder* const decoder = JDEC_New(48, 32);
  JDEC_Draw_Init(decoder, nullptr);
  int32_t status = around.hook;
  Push(decoder, around.before);
  Push(decoder, frame, &status);
  Bytes result = Picture_Of(decoder), text(1024);
  text.resize((size_t)JDEC_read_watermark_string(decoder, text.data(), (int32_t)text.size()));
  result.insert(result.end(), text.begin(), text.end());
  result.push_back((uint8_t)status);
  JDEC_Free(decoder);
  return result;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input = {data, size};
  const uint32_t mask = Draw_Level(&input);
  const uint8_t flags = input.Byte();
  const int32_t most = (flags & 0xE1) == 0xE1 ? 2048 : 48;
  const int32_t width = input.Word() % most + 1, height = std::min(input.Word() % most + 1, 2500 / width);
  const int32_t quality = (int16_t)input.Word();
  Around around = {{}, (flags & 2) != 0, input.Byte()};
  if (flags & 4) around.before = Next_Frame(&input);
  const Bytes body = input.Some(input.left);
  if (body.size() > 60000) return 0;
  const FrameForm form = (FrameForm)((flags >> 3) % 3);
  const Bytes frame = Make_Frame(form, width, height, quality, body);
  Bytes both = around.before;
  both.insert(both.end(), frame.begin(), frame.end());
  if (Announced_Pixels(both.data(), both.size()) > MostAnnounced) return 0;  // A body may contain another header.
  const Bytes picture = Decode(mask, around, frame);
  if (mask != KernelPlain && body.size() % 4 == 0) REQUIRE(picture == Decode(KernelPlain, around, frame));
  // With fewer bytes no search begins; among the remaining bytes of another frame it may start elsewhere.
  if (form == FrameForm::Prefixed && around.before.empty() && body.size() >= LeastSearchBytes - CompactHeaderSize) {
    REQUIRE(picture == Decode(mask, around, Make_Frame(FrameForm::Compact, width, height, quality, body)));
  }
  return 0;
}
