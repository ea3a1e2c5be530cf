#include "apps/velarto/stages.h"

#include "decode/frame.h"
#include "decode/framing.h"
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

/** What a decoder does to find the frame in its bytes and to store it. */
static void Find_And_Store(JdecCodec* codec, const WalkedFrame& frame) {
  const auto count = static_cast<int32_t>(frame.bytes.size());
  int32_t isJfif = 0, hasPrefix = 0;
  Frame_Sync(frame.bytes.data(), count, &isJfif, &hasPrefix);
  if (isJfif) Find_EOI(frame.bytes.data(), count);
  Store_Frame(codec, frame.bytes);
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
  FrameHeader header = {};
  Read_Frame_Header(frame.bytes.data(), static_cast<int32_t>(frame.bytes.size()), frame.form, &header);
  Codec_Set_Quality(codec, header.quality);

  auto mark = Clock::now();
  Find_And_Store(codec, frame);
  times->search += Lap(&mark);

  codec->frame->position = header.dataOffset;
  Rows_Available() ? Time_Rows(codec, times) : Time_Planes(codec, times);
  mark = Clock::now();
  YCC_To_RGB24(codec->planes, codec->raster);
  times->color += Lap(&mark);
}
