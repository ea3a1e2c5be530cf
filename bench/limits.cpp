// What a stream can cost: the memory of the largest pictures that a head can announce, and the time of frames made to be slow
// beside a good frame of the same size. SECURITY.md has the bounds.
#include "decode/huffman_codes.h"
#include "decode/rows.h"
#include "tests/support/levels.h"
#include "tests/support/resident.h"
#include "tests/support/window.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <string_view>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

/** A prefixed frame, which can be longer than 64 KB. */
Bytes Frame(int32_t width, int32_t height, int32_t quality, const Bytes& body) {
  const auto low = [](auto value) { return static_cast<uint8_t>(value); };
  const size_t length = body.size() + 12;
  const uint8_t head[26] = {0xF6,
                            low(length >> 24),
                            0xFF,
                            low(length >> 16),
                            0xF9,
                            0x11,
                            0xDD,
                            0x22,
                            0,
                            0x33,
                            0x44,
                            0x55,
                            0xC5,
                            0x66,
                            0xFF,
                            0xD8,
                            low(body.size()),
                            low(body.size() >> 8),
                            low(width),
                            low(width >> 8),
                            low(height),
                            low(height >> 8),
                            low(quality),
                            0,
                            0xFF,
                            0xD9};
  Bytes frame(sizeof head + body.size());
  std::copy(std::begin(head), std::end(head), frame.begin());
  std::copy(body.begin(), body.end(), frame.begin() + sizeof head);
  return frame;
}

constexpr size_t LongestBody = FrameStoreSize - 26 - 4;

Bytes Random_Body(size_t count) {
  uint32_t state = 7;
  Bytes body(count);
  for (uint8_t& octet : body) octet = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 20);
  return body;
}

/** Writes bits with stuffing. */
struct BitWriter {
  Bytes bytes;
  uint32_t held = 0;
  int32_t count = 0;
  void Put(uint32_t value, int32_t bits) {
    for (int32_t i = bits - 1; i >= 0; --i) {
      held = held << 1 | (value >> i & 1);
      if (++count % 8 != 0) continue;
      bytes.push_back(static_cast<uint8_t>(held));
      if (bytes.back() == 0xFF) bytes.push_back(0);
    }
  }
  void Put_Symbol(const HuffCode& code, uint8_t symbol) {
    uint32_t value = 0;
    const uint8_t* at = code.values.data();
    for (int32_t length = 1; length <= 16; ++length, value <<= 1) {
      for (int32_t i = 0; i < code.bits[length - 1]; ++i, ++value) {
        if (*at++ == symbol) return Put(value, length);
      }
    }
  }
};

/** Every block full of codes of the greatest length, each with the most bits behind it. */
Bytes Long_Codes_Body(size_t most) {
  BitWriter writer;
  for (uint32_t block = 0; writer.bytes.size() < most; ++block) {
    const bool luma = block % 6 < 4;
    writer.Put_Symbol(luma ? dcLumaCode : dcChromaCode, 11);
    writer.Put(block % 2 == 0 ? 0x7FF : 0, 11);
    for (int32_t i = 0; i < 63; ++i) {
      writer.Put_Symbol(luma ? acLumaCode : acChromaCode, 0x0A);
      writer.Put(i % 2 == 0 ? 0x2AA : 0x155, 10);
    }
  }
  writer.bytes.resize(std::min(writer.bytes.size(), most));
  return writer.bytes;
}

/** A good frame: what the encoder makes of slopes with noise on them, at the highest quality whose frame is short enough. */
Bytes Good_Frame(int32_t width, int32_t height, int32_t noise) {
  const int32_t pitch = 3 * width;
  Bytes pixels(static_cast<size_t>(pitch) * static_cast<size_t>(height)), out(FrameStoreSize);
  const Bytes random = Random_Body(1 << 20);
  for (size_t i = 0; i < pixels.size(); ++i) {
    const auto x = static_cast<int32_t>(i) % pitch, y = static_cast<int32_t>(i) / pitch;
    const int32_t grain = random[(i * 2654435761u >> 7) % random.size()] * noise / 256;
    pixels[i] = static_cast<uint8_t>((x / 7 + y / 3) % (256 - noise) + grain);
  }
  JdecDecoder* const encoder = JDEC_New(width, height);
  JDEC_Draw_Init(encoder, nullptr);
  int32_t length = 0;
  for (int32_t quality = 100; quality >= 0 && length == 0; quality -= 10) {
    length = JDEC_Compress_RGB888(encoder, quality, pixels.data(), 0, out.data(), FrameStoreSize, 1, 0);
  }
  JDEC_Free(encoder);
  out.resize(static_cast<size_t>(length));
  return out;
}

double Thread_Seconds() {
  timespec now = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double Seconds_Of(JdecDecoder* decoder, const Bytes& frame) {
  const double start = Thread_Seconds();
  JDEC_Receive_Data(decoder, static_cast<int32_t>(frame.size()), frame.data(), nullptr);
  return Thread_Seconds() - start;
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<ptrdiff_t>(values.size() / 2), values.end());
  return values[values.size() / 2];
}

struct NamedFrame {
  const char* name;
  Bytes bytes;
};

/** One frame after the other in turns, and the median of the ratios to the first. */
void Compare_Times(int32_t width, int32_t height) {
  const Bytes random = Random_Body(LongestBody);
  std::vector<NamedFrame> frames = {
      {"good, noisy", Good_Frame(width, height, 200)},
      {"good, smooth", Good_Frame(width, height, 8)},
      {"no data", Frame(width, height, 50, {})},
      {"20 bytes", Frame(width, height, 90, Bytes(20, 0x28))},
      {"random, 60 KB", Frame(width, height, 90, Bytes(random.begin(), random.begin() + 60000))},
      {"random, longest", Frame(width, height, 90, random)},
      {"long codes, 60 KB", Frame(width, height, 90, Long_Codes_Body(60000))},
      {"long codes, longest", Frame(width, height, 90, Long_Codes_Body(LongestBody))},
      {"FF 00", Frame(width, height, 90,
                      [] {
                        Bytes body(LongestBody, 0);
                        for (size_t i = 0; i < body.size(); i += 2) body[i] = 0xFF;
                        return body;
                      }())},
  };
  // Of a large picture there is no noisy frame.
  std::erase_if(frames, [](const NamedFrame& frame) { return frame.bytes.empty(); });
  JdecDecoder* const decoder = JDEC_New(width, height);
  JDEC_Draw_Init(decoder, nullptr);
  const int32_t rounds = std::max(5, 10000000 / (width * height));
  std::vector<std::vector<double>> seconds(frames.size()), ratios(frames.size());
  for (int32_t round = 0; round < rounds; ++round) {
    for (size_t i = 0; i < frames.size(); ++i) {
      seconds[i].push_back(Seconds_Of(decoder, frames[i].bytes));
      ratios[i].push_back(seconds[i].back() / seconds[0].back());
    }
  }
  JDEC_Free(decoder);
  for (size_t i = 0; i < frames.size(); ++i) {
    const double median = Median(seconds[i]);
    std::printf("  %5dx%-5d %-20s %6zu bytes %9.3f ms %6.2f ns/pixel  %5.2f of the first\n", width, height, frames[i].name,
                frames[i].bytes.size(), median * 1e3, median * 1e9 / (static_cast<double>(width) * height), Median(ratios[i]));
  }
}

/** Memory of a decoder that a short frame has brought to that size. */
void Measure_Memory(int32_t width, int32_t height, HWND window) {
  const int64_t before = Resident_Bytes();
  JdecDecoder* const decoder = JDEC_New(16, 16);
  JDEC_Draw_Init(decoder, window);
  if (decoder->window && !decoder->display) std::printf("  no display: ");
  const Bytes frame = Frame(width, height, 90, Random_Body(2000));
  JDEC_Receive_Data(decoder, static_cast<int32_t>(frame.size()), frame.data(), nullptr);
  const int64_t resident = Resident_Bytes() - before;
  int32_t gotWidth = 0, gotHeight = 0;
  JDEC_get_size(decoder, &gotWidth, &gotHeight);
  if (gotWidth != width || gotHeight != height) std::printf("  not taken: ");
  std::printf("  %5dx%-5d %-8s %7.1f MB %6.2f bytes/pixel\n", width, height, window ? "32 bits" : "headless",
              static_cast<double>(resident) / 1e6, static_cast<double>(resident) / (static_cast<double>(width) * height));
  JDEC_Free(decoder);
}

}  // namespace

/** limits [LEVEL]: at all levels of the processor, or at one. */
int main(int count, char** words) {
  JDEC_Init();
  const TestWindow window(32);
  for (const NamedKernelLevel& level : Test_Levels()) {
    if (count > 1 && std::string_view(words[1]) != level.name) continue;
    kernels = Kernels_Select(level.mask);
    std::printf("%s: memory\n", level.name);
    for (const HWND shown : {HWND{nullptr}, window.handle}) {
      for (const auto& [width, height] :
           {std::pair{8192, 4000}, {65535, 500}, {500, 65535}, {640, 51200}, {65535, 1}, {1, 65535}}) {
        Measure_Memory(width, height, shown);
      }
    }
    std::printf("%s: time\n", level.name);
    for (const auto& [width, height] : {std::pair{320, 240}, {640, 480}, {1920, 1080}, {4096, 4096}, {65520, 256}}) {
      Compare_Times(width, height);
    }
  }
  JDEC_Exit();
  return 0;
}
