#include "apps/velarto/stages.h"

#include "decode/decoder.h"
#include "decode/frame_header.h"
#include "decode/huffman_decode.h"
#include "decode/idct.h"
#include "decode/rows.h"
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
  return frame.form == FrameForm::Prefixed ? PrefixSize + CompactHeaderSize : CompactHeaderSize;
}

static void Time_Rows(JdecCodec* codec, StageTimes* times) {
  auto mark = Clock::now();
  RowsRun run;
  Rows_Open(&run, codec);
  while (Rows_Decode_Strip(&run)) {
    times->entropy += Lap(&mark);
    Rows_Transform_Strip(&run);
    times->transform += Lap(&mark);
  }
  Rows_Close(&run);
  times->transform += Lap(&mark);
}

static void Time_Planes(JdecCodec* codec, StageTimes* times) {
  auto mark = Clock::now();
  const JdecPlanes* const planes = codec->planes;
  const int32_t width = codec->width, height = codec->height;
  Huff_Decode_Frame(codec, codec->coefY, codec->coefCb, codec->coefCr, width, height, codec->frame);
  times->entropy += Lap(&mark);
  IDCT_Plane(planes->yRows, codec->coefY, width, height, codec->lumaInverse);
  IDCT_Plane(planes->crRows, codec->coefCr, width / 2, height / 2, codec->chromaInverse);
  IDCT_Plane(planes->cbRows, codec->coefCb, width / 2, height / 2, codec->chromaInverse);
  times->transform += Lap(&mark);
}

void Stages_Time(JdecDecoder* decoder, const WalkedFrame& frame, StageTimes* times) {
  JdecCodec* const codec = decoder->codec;
  const int32_t offset = Data_Offset(frame);
  Codec_Set_Quality(codec, frame.quality);

  // A hidden decoder takes frames out of the stream and leaves it at that.
  auto mark = Clock::now();
  JDEC_show(decoder, 0);
  Picture_Push(decoder, frame);
  JDEC_show(decoder, 1);
  times->search += Lap(&mark);

  codec->frame->position = offset;
  Rows_Available() ? Time_Rows(codec, times) : Time_Planes(codec, times);
  mark = Clock::now();
  YCC_To_RGB24(codec->planes, codec->raster);
  times->color += Lap(&mark);
}
