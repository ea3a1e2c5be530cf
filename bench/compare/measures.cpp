#include "bench/compare/measures.h"

#include "bench/picture_size.h"
#include "decode/decoder.h"
#include "display/context.h"
#include "tests/support/window.h"

#include <numeric>
#include <thread>

using Bytes = std::vector<uint8_t>;

/** A camera's usual quality, and how many frames are used in turn. */
static constexpr int32_t UsualQuality = 50;
static constexpr size_t FrameCount = 4;

static std::string Size_Text(const PictureSize& size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

static constexpr PictureSize growthSizes[] = {{160, 112}, {320, 240}, {640, 480}, {960, 544}, {1280, 720}, {1920, 1072}};

static const std::string& First_Name(const Gallery& gallery, std::vector<std::string>* names) {
  *names = Subject_Names(gallery);
  return names->front();
}

bool Measure_Growth(const Results& results, const Gallery& gallery, double seconds, std::string* error) {
  std::vector<std::string> names;
  const std::string& name = First_Name(gallery, &names);
  const MatchOptions options = {{results.levels.back()}, seconds, false};
  std::fprintf(results.text, "\nNanoseconds a pixel, %s at quality %d\n%9s %17s %17s\n%9s %8s %8s %8s %8s\n", name.c_str(),
               UsualQuality, "", "decode", "encode", "", "velarto", "turbo", "velarto", "turbo");
  for (const PictureSize& size : growthSizes) {
    const Subject subject = Subject_Make(gallery, name, size.width, size.height, FrameCount);
    const double pixels = static_cast<double>(size.width) * size.height;
    std::fprintf(results.text, "%9s", Size_Text(size).c_str());
    for (const Work work : {Work::Decode, Work::Encode}) {
      Match match;
      if (Match_Hold(work, subject, UsualQuality, options, &match, error) != MatchEnd::Held) return false;
      const double own = Median(match.times[0]) * 1e9 / pixels, turbo = Median(match.times[1]) * 1e9 / pixels;
      std::fprintf(results.text, " %8.3f %8.3f", own, turbo);
      if (!results.lines) continue;
      std::fprintf(results.lines,
                   R"({"type":"growth","work":"%s","width":%d,"height":%d,"nsPerPixel":%.4f,"libjpeg-turbo":%.4f})",
                   Work_Name(work), size.width, size.height, own, turbo);
      std::fputc('\n', results.lines);
    }
    std::fprintf(results.text, "\n");
  }
  return true;
}

/** Frames that all threads decode in a second, and in a second of processor time. */
struct Throughput {
  double frames, framesOfProcessor;
};

static Throughput Decode_On_Threads(const std::vector<Bytes>& frames, const PictureSize& size, size_t threads, double seconds) {
  std::vector<DecoderHolder> decoders(threads);
  std::vector<double> decoded(threads), used(threads);
  for (DecoderHolder& decoder : decoders) {
    decoder.reset(JDEC_New(size.width, size.height));
    JDEC_Draw_Init(decoder.get(), nullptr);
  }
  const double start = Wall_Seconds(), end = start + seconds;
  std::vector<std::thread> running;
  for (size_t i = 0; i < threads; ++i) {
    running.emplace_back([&, i] {
      size_t count = 0;
      for (; Wall_Seconds() < end; ++count) {
        const Bytes& frame = frames[count % frames.size()];
        JDEC_Receive_Data(decoders[i].get(), static_cast<int32_t>(frame.size()), frame.data(), nullptr);
      }
      decoded[i] = static_cast<double>(count);
      used[i] = Processor_Seconds();
    });
  }
  for (std::thread& thread : running) thread.join();
  const double sum = std::accumulate(decoded.begin(), decoded.end(), 0.0);
  return {sum / (Wall_Seconds() - start), sum / std::accumulate(used.begin(), used.end(), 0.0)};
}

bool Measure_Threads(const Results& results, const Gallery& gallery, double seconds, std::string* error) {
  static constexpr int Turns = 7;
  std::vector<std::string> names;
  const std::string& name = First_Name(gallery, &names);
  kernels = Kernels_Select(results.levels.back().mask);
  std::fprintf(results.text, "\nTwo threads with a decoder each, compared with one, at quality %d, on %u processors\n",
               UsualQuality, std::thread::hardware_concurrency());
  for (const PictureSize& size : {PictureSize{640, 480}, {1920, 1072}}) {
    std::vector<Bytes> frames;
    const Subject subject = Subject_Make(gallery, name, size.width, size.height, FrameCount);
    if (Frames_Make(subject, UsualQuality, &frames, error) != MatchEnd::Held) return false;
    Times one, two, oneOfProcessor, twoOfProcessor;
    for (int turn = 0; turn < Turns; ++turn) {
      const Throughput single = Decode_On_Threads(frames, size, 1, seconds), both = Decode_On_Threads(frames, size, 2, seconds);
      one.push_back(single.frames);
      two.push_back(both.frames);
      oneOfProcessor.push_back(single.framesOfProcessor);
      twoOfProcessor.push_back(both.framesOfProcessor);
    }
    const double ratio = Median_Ratio(two, one), ofProcessor = 2 * Median_Ratio(twoOfProcessor, oneOfProcessor);
    std::fprintf(results.text, "%9s: %.0f and %.0f frames a second, ratio %.2f; of processor time %.2f\n",
                 Size_Text(size).c_str(), Median(two), Median(one), ratio, ofProcessor);
    if (!results.lines) continue;
    std::fprintf(results.lines,
                 R"({"type":"threads","width":%d,"height":%d,"one":%.1f,"two":%.1f,"ratio":%.3f,"ofProcessor":%.3f})", size.width,
                 size.height, Median(one), Median(two), ratio, ofProcessor);
    std::fputc('\n', results.lines);
  }
  return true;
}

/** The colours that the window shows. */
static std::vector<uint32_t> Window_Colors(HWND window) {
  RECT client = {};
  GetClientRect(window, &client);
  std::vector<uint32_t> colors(static_cast<size_t>(client.right) * static_cast<size_t>(client.bottom));
  Screen_Copy_Colors(window, client, colors.data(), ptrdiff_t{4} * client.right);
  return colors;
}

/** Gives the decoder all of the frame but its last byte. */
static void Push_Ahead(JdecDecoder* decoder, const Bytes& frame) {
  JDEC_Receive_Data(decoder, static_cast<int32_t>(frame.size()) - 1, frame.data(), nullptr);
}

static bool Push_Last(JdecDecoder* decoder, const Bytes& frame) {
  return JDEC_Receive_Data(decoder, 1, &frame.back(), nullptr) == 1;
}

/** True if the window has each frame's pixels as soon as the call with its last byte returns. */
static bool Shown_At_Once(JdecDecoder* decoder, HWND window, const std::vector<Bytes>& frames) {
  std::vector<uint32_t> before = Window_Colors(window);
  for (const Bytes& frame : frames) {
    Push_Ahead(decoder, frame);
    if (Window_Colors(window) != before || !Push_Last(decoder, frame)) return false;
    std::vector<uint32_t> after = Window_Colors(window);
    if (after == before) return false;
    before = std::move(after);
  }
  return true;
}

bool Measure_Delay(const Results& results, const Gallery& gallery, double seconds, std::string* error) {
  static constexpr PictureSize size = {640, 480};
  std::vector<std::string> names;
  std::vector<Bytes> frames;
  const Subject subject = Subject_Make(gallery, First_Name(gallery, &names), size.width, size.height, FrameCount);
  if (Frames_Make(subject, UsualQuality, &frames, error) != MatchEnd::Held) return false;
  kernels = Kernels_Select(results.levels.back().mask);
  const TestWindow window(32, size.width, size.height);
  const DecoderHolder shown(JDEC_New(size.width, size.height)), headless(JDEC_New(size.width, size.height));
  JDEC_Draw_Init(headless.get(), nullptr);
  if (!JDEC_Draw_Init(shown.get(), window.handle) || !shown->display->useDirectDraw ||
      !Shown_At_Once(shown.get(), window.handle, frames)) {
    *error = "the window doesn't show a frame with its last byte";
    return false;
  }
  const auto contestant = [&frames](const char* name, JdecDecoder* decoder) {
    return Contestant{name, [=, &frames](size_t i) { return Push_Last(decoder, frames[i]); },
                      [=, &frames](size_t i) { Push_Ahead(decoder, frames[i]); }};
  };
  std::vector<Times> times;
  if (!Contest_Run({contestant("window", shown.get()), contestant("headless", headless.get())}, frames.size(), seconds,
                   Wall_Seconds, &times, error)) {
    return false;
  }
  const double delay = Median(times[0]) * 1e3, decoding = Median(times[1]) * 1e3, ratio = Median_Ratio(times[0], times[1]);
  std::fprintf(results.text, "\nFrom the last byte to the window %.3f ms, decoding alone %.3f ms, ratio %.2f\n", delay, decoding,
               ratio);
  if (!results.lines) return true;
  std::fprintf(results.lines, R"({"type":"delay","width":%d,"height":%d,"ms":%.4f,"decodingMs":%.4f,"ratio":%.3f})", size.width,
               size.height, delay, decoding, ratio);
  std::fputc('\n', results.lines);
  return true;
}
