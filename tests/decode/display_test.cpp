// A decoder and its window: depth of the raster, what survives a change of size, frames without a display.
#include "display/context.h"
#include "pixel/convert.h"
#include "pixel/dither.h"
#include "platform/portable/rig.h"
#include "support/streams.h"
#include "support/window.h"

#include <atomic>
#include <cstring>
#include <thread>

namespace {

using DisplayedDecoder = FramesTest;

TEST_F(DisplayedDecoder, RasterHasTheDepthOfTheScreen) {
  const struct {
    int32_t screen, bits, format;
  } depths[] = {{15, 16, PixelRgb555}, {16, 16, PixelRgb565}, {24, 24, PixelRgb24}, {32, 32, PixelRgb32}};
  for (const auto& [screen, bits, format] : depths) {
    const TestWindow window(screen);
    const DecoderPtr decoder(JDEC_New(48, 48));
    EXPECT_EQ(decoder->codec->raster->bitsPerPixel, bits);
    JDEC_Draw_Init(decoder.get(), nullptr);  // Headless for a while; the window then brings the raster back to its depth.
    EXPECT_EQ(decoder->codec->raster->pitch, 48 * 3);
    ASSERT_EQ(JDEC_Draw_Init(decoder.get(), window.handle), 1);
    EXPECT_EQ(decoder->codec->raster->pitch, 48 * bits / 8);
    EXPECT_EQ(decoder->headless, 0);
    EXPECT_EQ(decoder->srcRect.right, 320);
    for (const TestFrame* frame : {&small, &large}) {
      Push(decoder.get(), frame->jfif);
      int32_t code = -1;
      EXPECT_NE(JDEC_get_decompressed_bitmap_ex(decoder.get(), &code, nullptr), nullptr);
      EXPECT_EQ(code, format);
      ASSERT_EQ(Current_Picture(decoder.get()), Picture_Of(*frame)) << screen;
    }
    EXPECT_EQ(JDEC_Draw_Init(decoder.get(), nullptr), 0);
    EXPECT_EQ(decoder->window, window.handle);
    EXPECT_NE(decoder->display, nullptr);

    // Without the display the raster is what it was; a new display shows the picture that was current.
    int32_t code = -1;
    JDEC_Draw_Exit(decoder.get());
    JDEC_get_decompressed_bitmap_ex(decoder.get(), &code, nullptr);
    EXPECT_EQ(code, format);
    for (const HWND next : {(HWND) nullptr, window.handle}) {
      JDEC_show(decoder.get(), 1);
      EXPECT_EQ(JDEC_Draw_Init(decoder.get(), next), 1);
      if (!next) Push(decoder.get(), small.jfif);
    }
    EXPECT_EQ(Current_Picture(decoder.get()), Picture_Of(small)) << screen;
    const RasterPtr whole(Raster_New(48, 48, bits));
    Convert_Planes(format, decoder->codec->planes, whole.get(), DitherNormal);
    EXPECT_TRUE(std::equal(whole->rows[47], whole->rows[0] + whole->pitch, decoder->codec->raster->rows[47])) << screen;
    EXPECT_EQ(decoder->display->lastRaster, decoder->codec->raster) << screen;
  }
}

TEST_F(DisplayedDecoder, HandlesThatAreNoWindowAreRefused) {
  const TestWindow window(32);
  const HWND ended = CreateWindowExA(0, "velarto-test", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
  DestroyWindow(ended);
  const DecoderPtr decoder = Headless_Decoder(48, 48);
  const JdecDecoder before = *decoder;
  for (const HWND none : {ended, reinterpret_cast<HWND>(uintptr_t{0x1234})}) {
    EXPECT_EQ(JDEC_Draw_Init(decoder.get(), none), 0);
    EXPECT_EQ(std::memcmp(&before, decoder.get(), sizeof before), 0) << "nothing has changed";
  }
  EXPECT_EQ(JDEC_Draw_Init(decoder.get(), window.handle), 1);
}

TEST_F(DisplayedDecoder, PaletteIndicesAreConvertedDownToAnOddLastRow) {
  for (const auto& [windowWidth, mode] : {std::pair{320, DitherNormal}, {20, DitherShrink}}) {
    const TestWindow window(8, windowWidth);
    const DecoderPtr decoder = Shown_Decoder(window.handle, 47, 33);
    Push(decoder.get(), Compact_Frame(47, 33, 50, Noise{5}.Some(900)));
    const RasterPtr whole(Raster_New(47, 33, 8));
    YCC_To_Palette8(decoder->codec->planes, whole.get(), mode);
    for (int32_t i = 0; i < 33; ++i) {
      ASSERT_TRUE(std::equal(whole->rows[i], whole->rows[i] + 47, decoder->codec->raster->rows[i])) << mode << " row " << i;
    }
  }
}

std::vector<Bytes> shown;
void Keep_Picture(HWND, uintptr_t user) { shown.push_back(Current_Picture(reinterpret_cast<JdecDecoder*>(user))); }

TEST_F(DisplayedDecoder, CallbackAndHiddenSurviveAChangeOfSize) {
  const TestWindow window(32);
  const DecoderPtr decoder = Shown_Decoder(window.handle, 48, 48);
  decoder->display->drawCallback = Keep_Picture;
  decoder->display->drawCallbackUser = reinterpret_cast<uintptr_t>(decoder.get());
  const Bytes stream = Joined({small.jfif, large.compact, small.prefixed, large.jfif});
  EXPECT_EQ(Push(decoder.get(), stream), (int32_t)stream.size());
  EXPECT_TRUE(shown == (std::vector{Picture_Of(small), Picture_Of(large), Picture_Of(small), Picture_Of(large)}));
  EXPECT_EQ(decoder->hidden, 0);

  JDEC_show(decoder.get(), 0);  // The polling path decodes anyway.
  Store(decoder.get(), small.compact);
  EXPECT_EQ(Poll(decoder.get()), 1);
  EXPECT_EQ(decoder->hidden, 1);
  EXPECT_EQ(shown.size(), 5u);
  int32_t status = 77;
  EXPECT_EQ(Push(decoder.get(), large.jfif, &status), (int32_t)large.jfif.size());
  EXPECT_EQ(status, 77);
  EXPECT_EQ(Current_Picture(decoder.get()), Picture_Of(small));
}

/** Any thread may register a callback while another one decodes, even while the display changes its size. A frame that is pushed
 *  after a registration calls that callback or a later one. */
TEST_F(DisplayedDecoder, CallbackIsRegisteredByAnotherThread) {
  const TestWindow window(32);
  const DecoderPtr decoder = Shown_Decoder(window.handle, 48, 48);
  static std::vector<uintptr_t> called;
  std::atomic<uintptr_t> registered = 0;
  std::atomic<bool> done = false;
  std::thread registering([&] {
    for (uintptr_t number = 1; !done; registered = number++) {
      JDEC_register_draw_callback(
          decoder.get(), [](HWND, uintptr_t user) { called.push_back(user); }, number);
      std::this_thread::yield();
    }
  });
  while (registered == 0) std::this_thread::yield();
  for (size_t i = 1; i <= 200; ++i) {
    const uintptr_t before = registered;
    Push(decoder.get(), i / 2 % 2 ? large.compact : small.jfif);
    if (called.size() != i || called.back() < before) ADD_FAILURE() << i << ": " << called.size() << " calls";
  }
  done = true;
  registering.join();
}

TEST_F(DisplayedDecoder, DrawExitHidesAndShowAloneFindsNoDisplay) {
  const TestWindow window(32);
  const DecoderPtr decoder = Shown_Decoder(window.handle, 48, 48);
  JDEC_Draw_Exit(decoder.get());
  EXPECT_EQ(decoder->display, nullptr);
  const Bytes dark = Current_Picture(decoder.get());
  EXPECT_EQ(Push(decoder.get(), small.compact), (int32_t)small.compact.size());
  EXPECT_EQ(Current_Picture(decoder.get()), dark);
  Rig_Take_Debug_Output();
  JDEC_show(decoder.get(), 2);
  Push(decoder.get(), small.compact);
  EXPECT_EQ(Rig_Take_Debug_Output(), std::vector<std::string>{"jdec, decompress, DDRAW=NULL!!\n"});
  EXPECT_EQ(Current_Picture(decoder.get()), Picture_Of(small));
}

}  // namespace
