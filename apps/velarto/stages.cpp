#include "apps/velarto/stages.h"

#include "decode/framing.h"
#include "decode/huffman_decode.h"
#include "decode/idct.h"
#include "pixel/convert.h"

#include <chrono>

using Clock = std::chrono::steady_clock;

/** Seconds since *mark, which moves on to now. */
static double Lap(Clock::time_point* mark) {
  const Clock::time_point now = Clock::now();
  const double seconds = std::chrono::duration<double>(now - *mark).count();
  *mark = now;
  return seconds;
}

static int32_t Data_Offset(const WalkedFrame& frame) {
  if (frame.form == FrameForm::Jfif) return Find_Scan_Data(frame.bytes.data());
  return frame.form == FrameForm::Prefixed ? PrefixSize + CompactHeadSize : CompactHeadSize;
}

void Stages_Time(JdecDecoder* decoder, const WalkedFrame& frame, StageTimes* times) {
  JdecCodec* const codec = decoder->codec;
  const JdecPlanes* const planes = codec->planes;
  const int32_t offset = Data_Offset(frame);
  Codec_Set_Quality(codec, frame.quality);
  auto mark = Clock::now();

  // A hidden decoder takes frames out of the stream and leaves it at that.
  JDEC_show(decoder, 0);
  Picture_Push(decoder, frame);
  JDEC_show(decoder, 1);
  times->search += Lap(&mark);

  codec->frame->position = offset;
  Huff_Decode_Frame(codec, codec->coefY, codec->coefCb, codec->coefCr, frame.width, frame.height, codec->frame);
  times->entropy += Lap(&mark);

  IDCT_Plane(planes->yRows, codec->coefY, frame.width, frame.height, codec->lumaInverse);
  IDCT_Plane(planes->crRows, codec->coefCr, frame.width / 2, frame.height / 2, codec->chromaInverse);
  IDCT_Plane(planes->cbRows, codec->coefCb, frame.width / 2, frame.height / 2, codec->chromaInverse);
  times->transform += Lap(&mark);

  YCC_To_RGB24(planes, codec->raster);
  times->color += Lap(&mark);
}
