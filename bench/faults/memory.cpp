// Failing allocations: in each kind of work every allocation fails in turn, alone or with all that follow. After that the next
// good frame must be shown as usual, and no object may be left alive. Prints a line for each kind of work: its name, its
// allocations, its runs, and how many runs succeeded in spite of the failure.
#include "platform/portable/rig.h"
#include "tests/support/window.h"
#include "velarto.h"

#include <cstdio>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
constexpr int32_t SmallWidth = 64, SmallHeight = 48, Width = 320, Height = 240;

/** A picture compressed at that size. */
Bytes Good_Frame(int32_t width, int32_t height, int32_t withMarkers) {
  Bytes pixels(static_cast<size_t>(width) * static_cast<size_t>(height) * 3), frame(512000);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * i / 512 + i % 3 * 50);
  JdecDecoder* const encoder = JDEC_New(width, height);
  JDEC_Draw_Init(encoder, nullptr);
  const int32_t length =
      JDEC_Compress_RGB888(encoder, 75, pixels.data(), 0, frame.data(), static_cast<int32_t>(frame.size()), withMarkers, 0);
  JDEC_Free(encoder);
  frame.resize(static_cast<size_t>(length));
  return frame;
}

/** Frames, the window that shows them, if any, and the pixels that are seen without a failure. */
struct Ground {
  Bytes small = Good_Frame(SmallWidth, SmallHeight, 0), large = Good_Frame(Width, Height, 1);
  Bytes pixels = Bytes(static_cast<size_t>(Width) * static_cast<size_t>(Height) * 3);
  HWND window = nullptr;
  Bytes seen;
};

void Push(JdecDecoder* decoder, const Bytes& frame) {
  JDEC_Receive_Data(decoder, static_cast<int32_t>(frame.size()), frame.data(), nullptr);
}

/** The picture as a BMP file, then the pixels of the window; empty for a picture of another size. */
Bytes Seen(JdecDecoder* decoder, HWND window) {
  int32_t width = 0, height = 0, pitch = 0;
  JDEC_get_size(decoder, &width, &height);
  if (width != Width || height != Height) return {};
  Bytes seen(static_cast<size_t>(Width) * static_cast<size_t>(Height) * 3 + 54);
  JDEC_get_decompressed_bitmap_ex2(decoder, seen.data(), static_cast<int32_t>(seen.size()));
  const uint8_t* const pixels = window ? Rig_Window_Pixels(window, &width, &height, &pitch) : nullptr;
  if (pixels) seen.insert(seen.end(), pixels, pixels + static_cast<ptrdiff_t>(pitch) * height);
  return seen;
}

JdecDecoder* Start(const Ground& ground) {
  JdecDecoder* const decoder = JDEC_New(SmallWidth, SmallHeight);
  if (decoder) JDEC_Draw_Init(decoder, ground.window);
  return decoder;
}

/* The kinds of work. Each makes and returns a decoder, null on failure, and says whether it succeeded. */

JdecDecoder* Receive(Ground* ground, bool* done) {
  JdecDecoder* const decoder = Start(*ground);
  if (!decoder) return nullptr;
  Bytes frame(512000);
  uint32_t length = 0;
  JDEC_Receive_Data_2(decoder, ground->large.data(), static_cast<uint32_t>(ground->large.size()));
  const int32_t result =
      JDEC_Check_Decode_Frame(decoder, 1, frame.data(), static_cast<int32_t>(frame.size()), &length, 0, 1, nullptr);
  *done = result == 1 && length == ground->large.size() && Seen(decoder, nullptr).size() == ground->seen.size();
  return decoder;
}

JdecDecoder* Decode(Ground* ground, bool* done) {
  JdecDecoder* const decoder = Start(*ground);
  if (!decoder) return nullptr;
  Push(decoder, ground->small);
  Push(decoder, ground->large);
  const int32_t whole[4] = {0, 0, Width, Height};
  if (ground->window) JDEC_Access_SrcRect(decoder, whole);
  *done = Seen(decoder, ground->window) == ground->seen;
  return decoder;
}

JdecDecoder* Export(Ground* ground, bool* done) {
  JdecDecoder* const decoder = Start(*ground);
  if (!decoder) return nullptr;
  Push(decoder, ground->large);
  *done = Seen(decoder, nullptr) == ground->seen;
  return decoder;
}

JdecDecoder* Compress(Ground* ground, bool* done) {
  JdecDecoder* const decoder = Start(*ground);
  if (!decoder) return nullptr;
  Bytes frame(512000);
  Push(decoder, ground->large);
  *done = JDEC_Compress_RGB888(decoder, 75, ground->pixels.data(), 0, frame.data(), static_cast<int32_t>(frame.size()), 1, 0) > 0;
  return decoder;
}

struct FaultTask {
  const char* name;
  JdecDecoder* (*run)(Ground* ground, bool* done);
  int32_t screenBits;  ///< 0: no window.
};
constexpr FaultTask works[] = {{"receive", Receive, 0},         {"decode", Decode, 0},         {"show in 32 bits", Decode, 32},
                               {"show in 16 bits", Decode, 16}, {"show in 8 bits", Decode, 8}, {"export", Export, 0},
                               {"compress", Compress, 0}};

/** One run in which `times` allocations fail, from number `after` on. */
bool Run_Once(const FaultTask& work, Ground* ground, int32_t after, int32_t times, bool* done) {
  const int32_t alive = Rig_Objects_Alive();
  *done = false;
  Rig_Fail(RigStep::Memory, after, times);
  JdecDecoder* decoder = work.run(ground, done);
  Rig_Fail_Nothing();
  // A caller tries again what was refused.
  if (!decoder) decoder = JDEC_New(SmallWidth, SmallHeight);
  JDEC_Draw_Init(decoder, ground->window);
  Push(decoder, ground->large);
  const bool shows = Seen(decoder, ground->window) == ground->seen;
  JDEC_Free(decoder);
  const int32_t left = Rig_Objects_Alive() - alive;
  if (shows && left == 0) return true;
  std::printf("%s: allocation %d: the next frame %s, %d objects left alive\n", work.name, after, shows ? "shows" : "doesn't show",
              left);
  return false;
}

/** Stores what is seen without a failure, and returns the number of allocations. What happens once in a process happens here. */
int32_t Learn(const FaultTask& work, Ground* ground) {
  JdecDecoder* const decoder = Start(*ground);
  Push(decoder, ground->large);
  ground->seen = Seen(decoder, ground->window);
  JDEC_Free(decoder);
  bool done = false;
  const int32_t before = Rig_Calls(RigStep::Memory);
  JDEC_Free(work.run(ground, &done));
  return done ? Rig_Calls(RigStep::Memory) - before : 0;
}

bool Run_Work(const FaultTask& work, Ground* ground) {
  const int32_t sites = Learn(work, ground);
  int32_t runs = 0, results = 0;
  bool good = sites > 0;
  for (int32_t site = 0; site <= sites; ++site) {
    for (const int32_t times : {1, INT32_MAX}) {
      bool done = false;
      good &= Run_Once(work, ground, site, times, &done);
      good &= done || site < sites;  // After the last one nothing fails.
      ++runs;
      results += done;
    }
  }
  std::printf("%s\t%d\t%d\t%d\n", work.name, sites, runs, results);
  return good;
}

}  // namespace

int main() {
  JDEC_Init();
  bool good = true;
  for (const FaultTask& work : works) {
    const TestWindow window(work.screenBits == 0 ? 32 : work.screenBits, Width, Height);
    Ground ground;
    ground.window = work.screenBits == 0 ? nullptr : window.handle;
    good &= Run_Work(work, &ground);
  }
  JDEC_Exit();
  return good ? 0 : 1;
}
