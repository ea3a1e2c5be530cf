// What a stream can cost: the memory of the largest pictures that a header can announce, and the time of frames made to be slow,
// compared with the slowest good frame of the same size. SECURITY.md has the bounds. Exit code 1 if one is broken.
#include "bench/hostile_bodies.h"
#include "bench/picture_size.h"
#include "decode/decoder.h"
#include "decode/framing.h"
#include "kernels/kernels.h"
#include "pixel/compress.h"
#include "tests/support/levels.h"
#include "tests/support/resident.h"
#include "tests/support/window.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

namespace {

/** The time that a hostile frame may take, as a multiple of a good frame's. */
constexpr double MostTimes = 2;
/** Bytes that a decoder may take: for each pixel of the largest picture, and besides. */
constexpr double MostBytesAPixel = 16, MostBytesBeside = 4e6;

/** A frame above this share of the bound is measured again, with more rounds. */
constexpr double WorthALook = 0.6;
constexpr int32_t FewRounds = 3, ManyRounds = 9;
/** Pictures of more pixels are measured with fewer rounds. */
constexpr int32_t ManyPixels = 1 << 20;

struct NamedFrame {
  std::string name;
  Bytes bytes;
};

/** A picture of slopes with noise in the upper rows; the remaining rows are grey. */
Bytes Picture(PictureSize size, int32_t noise, int32_t noisyRows) {
  const int32_t pitch = 3 * size.width;
  Bytes pixels(static_cast<size_t>(pitch) * static_cast<size_t>(size.height), 128);
  const Bytes random = Random_Bytes(1 << 20, 7);
  for (size_t i = 0; i < static_cast<size_t>(pitch) * static_cast<size_t>(noisyRows); ++i) {
    const auto x = static_cast<int32_t>(i % static_cast<size_t>(pitch)), y = static_cast<int32_t>(i / static_cast<size_t>(pitch));
    const int32_t grain = random[(i * 2654435761u >> 7) % random.size()] * noise / 256;
    pixels[i] = static_cast<uint8_t>((x / 7 + y / 3) % (257 - noise) + grain);
  }
  return pixels;
}

/** The picture as a JPEG image at the highest quality whose frame is short enough; empty if there is none. */
Bytes Encoded(JdecDecoder* encoder, const Bytes& pixels) {
  Bytes out(FrameStoreSize);
  int32_t length = 0;
  for (int32_t quality = 100; quality >= 0 && length == 0; quality -= 10) {
    length = JDEC_Compress_RGB888(encoder, quality, pixels.data(), 0, out.data(), FrameStoreSize, 1, 0);
  }
  out.resize(static_cast<size_t>(length));
  return out;
}

/** The same at qualities above our encoder's best, which a camera may use. */
Bytes Encoded_Finely(JdecDecoder* encoder, const Bytes& pixels) {
  JdecCodec* const codec = encoder->codec;
  for (int32_t quality = 100; quality > 90; --quality) {
    Codec_Set_Quality(codec, quality);
    codec->quality = 90;  // So that the encoder, which sets its best quality, keeps these tables.
    if (!Codec_Transform_RGB888(codec, 100, pixels.data(), false) || Codec_Encode_Store(codec, true) == 0) continue;
    return {codec->frame->data, codec->frame->data + codec->frame->length};
  }
  return {};
}

/** No whole frame of the largest picture fits: adds one of fewer rows, with the full size in its header. */
void Add_Short_Frame(PictureSize size, std::vector<NamedFrame>* frames) {
  const int32_t rows = size.height - 32;
  JdecDecoder* const encoder = JDEC_New(size.width, rows);
  Bytes frame =
      Encoded(encoder, Bytes(static_cast<size_t>(3) * static_cast<size_t>(size.width) * static_cast<size_t>(rows), 128));
  JDEC_Free(encoder);
  if (frame.empty()) return;
  constexpr size_t heightAt = 163;
  frame[heightAt] = static_cast<uint8_t>(size.height >> 8);
  frame[heightAt + 1] = static_cast<uint8_t>(size.height);
  frames->push_back({"grey, its end missing", frame});
}

/** Good frames, as slow as they can be: the strongest noise, all over the picture or in as many rows as a frame has bytes for. */
std::vector<NamedFrame> Good_Frames(PictureSize size) {
  std::vector<NamedFrame> frames;
  JdecDecoder* const encoder = JDEC_New(size.width, size.height);
  JDEC_Draw_Init(encoder, nullptr);
  for (const int32_t noise : {256, 64, 16}) {
    // A large picture has room for little noise.
    if (noise > 16 && size.width * size.height > 4 * ManyPixels) continue;
    frames.push_back({"noise of " + std::to_string(noise), Encoded(encoder, Picture(size, noise, size.height))});
  }
  // A byte for each pixel is more than noise takes at the highest quality.
  const int32_t rows = std::min(size.height, FrameStoreSize / size.width) & ~15;
  if (rows < size.height) frames.push_back({"noise above", Encoded(encoder, Picture(size, 256, rows))});
  if (size.width * size.height < ManyPixels) {
    frames.push_back({"noise, above quality 90", Encoded_Finely(encoder, Picture(size, 256, size.height))});
  }
  JDEC_Free(encoder);
  std::erase_if(frames, [](const NamedFrame& frame) { return frame.bytes.empty(); });
  if (frames.empty()) Add_Short_Frame(size, &frames);
  return frames;
}

/** The same with fill bytes before the end marker, as JPEG allows. */
Bytes Filled(const Bytes& jfif, size_t length) {
  Bytes filled(jfif.begin(), jfif.end() - 2);
  filled.resize(std::max(length, jfif.size()) - 1, 0xFF);
  filled.push_back(0xD9);
  return filled;
}

double Thread_Seconds() {
  timespec now = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/** Seconds of a frame that follows the same frame. */
double Seconds_Of(JdecDecoder* decoder, const Bytes& frame) {
  const int32_t times = decoder->width * decoder->height < 100000 ? 4 : 1;
  const auto push = [&] { return JDEC_Receive_Data(decoder, static_cast<int32_t>(frame.size()), frame.data(), nullptr); };
  push();
  const double start = Thread_Seconds();
  for (int32_t i = 0; i < times; ++i) push();
  return (Thread_Seconds() - start) / times;
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<ptrdiff_t>(values.size() / 2), values.end());
  return values[values.size() / 2];
}

double Median_Seconds(JdecDecoder* decoder, const Bytes& frame, int32_t rounds) {
  std::vector<double> seconds;
  for (int32_t i = 0; i < rounds; ++i) seconds.push_back(Seconds_Of(decoder, frame));
  return Median(seconds);
}

/** Median of the ratios of two frames that are decoded in turn. */
double Ratio(JdecDecoder* decoder, const Bytes& frame, const Bytes& good, int32_t rounds) {
  std::vector<double> ratios;
  for (int32_t i = 0; i < rounds; ++i) {
    const double seconds = Seconds_Of(decoder, good);
    ratios.push_back(Seconds_Of(decoder, frame) / seconds);
  }
  return Median(ratios);
}

/** The hostile frames of a size, each in one of the forms that can carry it. */
std::vector<NamedFrame> Hostile_Frames(PictureSize size, const Bytes& good) {
  const Bytes goodBody(good.begin() + JfifHeaderSize, good.end() - 2);
  constexpr size_t longestPrefixed = FrameStoreSize - LeastSearchBytes, longestJfif = FrameStoreSize - LeastJfifBytes;
  std::vector<NamedFrame> frames = {{"no data", Compact_Frame(size.width, size.height, 50, {})}};
  for (const size_t count : {size_t{700}, size_t{60000}, longestPrefixed}) {
    int32_t form = 0;
    for (HostileBody& body : Hostile_Bodies(count, goodBody)) {
      const bool compact = count < 65536 && form++ % 2 == 0;
      frames.push_back({body.name, compact ? Compact_Frame(size.width, size.height, body.quality, body.bytes)
                                           : Prefixed_Frame(size.width, size.height, body.quality, body.bytes)});
      body.bytes.resize(std::min(body.bytes.size(), longestJfif));
      frames.push_back({body.name + ", JFIF", Jfif_Frame(size.width, size.height, body.quality, body.bytes)});
    }
  }
  return frames;
}

struct Measured {
  const NamedFrame* frame;
  double ratio, filledRatio;  ///< To the slowest good frame; to that frame filled to as many bytes.
};

void Print(PictureSize size, const NamedFrame& frame, double seconds) {
  std::printf("  %5dx%-5d %-28s %6zu bytes %9.4f ms", size.width, size.height, frame.name.c_str(), frame.bytes.size(),
              seconds * 1e3);
}

/** Prints the good frames and returns the slowest. */
const NamedFrame* Slowest(JdecDecoder* decoder, PictureSize size, const std::vector<NamedFrame>& good, double* most) {
  const NamedFrame* slowest = nullptr;
  for (const NamedFrame& frame : good) {
    const double seconds = Median_Seconds(decoder, frame.bytes, ManyRounds);
    Print(size, frame, seconds);
    std::printf("  good\n");
    if (seconds > *most) slowest = &frame, *most = seconds;
  }
  return slowest;
}

/** A frame with more bytes than the good one may also take the time to handle those bytes. */
Measured Measure(JdecDecoder* decoder, const NamedFrame& frame, const Bytes& good, double goodSeconds) {
  double ratio =
      Median_Seconds(decoder, frame.bytes, decoder->width * decoder->height < ManyPixels ? FewRounds : 1) / goodSeconds;
  if (ratio > WorthALook * MostTimes) ratio = Ratio(decoder, frame.bytes, good, ManyRounds);
  if (ratio <= MostTimes) return {&frame, ratio, ratio};
  return {&frame, ratio, Ratio(decoder, frame.bytes, Filled(good, frame.bytes.size()), ManyRounds)};
}

/** Prints the slowest hostile frames; false if one breaks the bound. */
bool Compare_Times(PictureSize size, size_t shown) {
  const std::vector<NamedFrame> good = Good_Frames(size);
  JdecDecoder* const decoder = JDEC_New(size.width, size.height);
  JDEC_Draw_Init(decoder, nullptr);
  double goodSeconds = 0;
  const Bytes& slowest = Slowest(decoder, size, good, &goodSeconds)->bytes;
  const std::vector<NamedFrame> hostile = Hostile_Frames(size, slowest);
  std::vector<Measured> measured;
  for (const NamedFrame& frame : hostile) measured.push_back(Measure(decoder, frame, slowest, goodSeconds));
  std::stable_sort(measured.begin(), measured.end(), [](const Measured& a, const Measured& b) { return a.ratio > b.ratio; });
  bool held = true;
  for (size_t i = 0; i < measured.size(); ++i) {
    const Measured& row = measured[i];
    const bool broken = row.filledRatio > MostTimes;
    held &= !broken;
    if (i >= shown && !broken) continue;
    Print(size, *row.frame, Median_Seconds(decoder, row.frame->bytes, FewRounds));
    std::printf(" %6.2f of the slowest good one", row.ratio);
    if (row.filledRatio != row.ratio) std::printf(", %.2f of it with as many bytes", row.filledRatio);
    std::printf("%s\n", broken ? "  BROKEN" : "");
  }
  JDEC_Free(decoder);
  std::fflush(stdout);
  return held;
}

/** Measures the memory of a decoder after a short frame has set its size; false if it breaks the bound. */
bool Measure_Memory(PictureSize size, HWND window) {
  const int64_t before = Resident_Bytes();
  JdecDecoder* const decoder = JDEC_New(16, 16);
  JDEC_Draw_Init(decoder, window);
  const bool displayed = !decoder->window || decoder->display;
  const Bytes frame = Prefixed_Frame(size.width, size.height, 90, Random_Bytes(2000, 7));
  JDEC_Receive_Data(decoder, static_cast<int32_t>(frame.size()), frame.data(), nullptr);
  const auto resident = static_cast<double>(Resident_Bytes() - before);
  const bool taken = decoder->width == size.width && decoder->height == size.height;
  const double pixels = static_cast<double>(size.width) * size.height;
  const bool held = displayed && taken && resident <= MostBytesAPixel * MaxMacroblocks * 256 + MostBytesBeside;
  std::printf("  %5dx%-5d %-8s %7.1f MB %6.2f bytes/pixel%s\n", size.width, size.height, window ? "32 bits" : "headless",
              resident / 1e6, resident / pixels, held ? "" : "  BROKEN");
  JDEC_Free(decoder);
  return held;
}

bool Measure_Level(const NamedKernelLevel& level, HWND window, size_t shown) {
  kernels = Kernels_Select(level.mask);
  bool held = true;
  std::printf("%s: memory\n", level.name);
  for (const HWND display : {HWND{nullptr}, window}) {
    for (const PictureSize size : {PictureSize{8192, 4000}, {65535, 500}, {500, 65535}, {640, 51200}, {65535, 1}, {1, 65535}}) {
      held &= Measure_Memory(size, display);
    }
  }
  std::printf("%s: time\n", level.name);
  for (const PictureSize size :
       {PictureSize{16, 16}, {160, 120}, {320, 240}, {640, 480}, {1920, 1080}, {4096, 4096}, {8192, 4000}, {65520, 256}}) {
    held &= Compare_Times(size, shown);
  }
  return held;
}

}  // namespace

/** limits [LEVEL] [ROWS]: measures the best level of the processor, the given one, or "all"; prints so many of the slowest frames
 *  of each size. */
int main(int count, char** words) {
  JDEC_Init();
  const TestWindow window(32);
  const auto levels = Test_Levels();
  bool held = true;
  const std::string_view wanted = count > 1 ? words[1] : levels.back().name;
  for (const NamedKernelLevel& level : levels) {
    if (wanted == level.name || wanted == "all")
      held &= Measure_Level(level, window.handle, count > 2 ? std::stoul(words[2]) : 4);
  }
  std::printf(held ? "All bounds hold.\n" : "A bound is broken.\n");
  JDEC_Exit();
  return held ? 0 : 1;
}
