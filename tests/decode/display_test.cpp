// A decoder and its window: depth of the raster, what outlives a size change, frames that find no display.
#include "display/context.h"
#include "pixel/convert.h"
#include "support/streams.h"
#include "support/window.h"

namespace {

struct DisplayedDecoder : LibraryTest {
  TestFrame small = Load_Frame("tile-48x48-q50.jpg", 50), large = Load_Frame("tile-96x64-q40.jpg", 40);
};

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
      const uint8_t* const raster = JDEC_get_decompressed_bitmap_ex(decoder.get(), &code, nullptr);
      EXPECT_EQ(code, format);
      const Bytes bmp = Picture(decoder.get());
      ASSERT_EQ(bmp, Picture_Of(*frame)) << screen;
      for (int32_t i = 0; i < frame->width * frame->height; ++i) {
        const uint8_t* const bgr = &bmp[54 + 3 * (size_t)i];
        const int32_t word =
            screen == 15 ? bgr[2] / 8 << 10 | bgr[1] / 8 << 5 | bgr[0] / 8 : bgr[2] / 8 << 11 | bgr[1] / 4 << 5 | bgr[0] / 8;
        Bytes expected = {bgr[0], bgr[1], bgr[2], 0};
        if (bits == 16) expected = {(uint8_t)word, (uint8_t)(word >> 8)};
        expected.resize((size_t)bits / 8);
        ASSERT_EQ(memcmp(raster + i * bits / 8, expected.data(), expected.size()), 0) << screen << ", pixel " << i;
      }
    }
  }
}

TEST_F(DisplayedDecoder, SecondWindowIsRefused) {
  const TestWindow window(32);
  const DecoderPtr decoder(JDEC_New(48, 48));
  EXPECT_EQ(JDEC_Draw_Init(decoder.get(), window.handle), 1);
  JdecDisplay* const display = decoder->display;
  EXPECT_EQ(JDEC_Draw_Init(decoder.get(), nullptr), 0);
  EXPECT_EQ(decoder->window, window.handle);
  EXPECT_EQ(decoder->display, display);
}

struct Shown {
  JdecDecoder* decoder;
  std::vector<Bytes> pictures;
};
void Keep_Picture(HWND, uintptr_t user) {
  Shown* const shown = reinterpret_cast<Shown*>(user);
  shown->pictures.push_back(Picture(shown->decoder));
}

TEST_F(DisplayedDecoder, CallbackAndHiddenOutliveASizeChange) {
  const TestWindow window(32);
  const DecoderPtr decoder(JDEC_New(48, 48));
  JDEC_Draw_Init(decoder.get(), window.handle);
  Shown shown = {decoder.get(), {}};
  decoder->display->drawCallback = Keep_Picture;
  decoder->display->drawCallbackUser = reinterpret_cast<uintptr_t>(&shown);
  EXPECT_EQ(Push(decoder.get(), Joined({small.jfif, large.compact, small.prefixed, large.jfif})),
            (int32_t)(small.jfif.size() + large.compact.size() + small.prefixed.size() + large.jfif.size()));
  EXPECT_TRUE(shown.pictures == (std::vector<Bytes>{Picture_Of(small), Picture_Of(large), Picture_Of(small), Picture_Of(large)}));
  EXPECT_EQ(decoder->hidden, 0);

  JDEC_show(decoder.get(), 0);  // The polling path decodes all the same.
  JDEC_Receive_Data_2(decoder.get(), small.compact.data(), (uint32_t)small.compact.size());
  Bytes out(small.compact.size());
  EXPECT_EQ(JDEC_Check_Decode_Frame(decoder.get(), 1, out.data(), (int32_t)out.size(), nullptr, 0, 1, nullptr), 1);
  EXPECT_EQ(decoder->hidden, 1);
  EXPECT_EQ(shown.pictures.size(), 5u);
  int32_t status = 77;
  EXPECT_EQ(Push(decoder.get(), large.jfif, &status), (int32_t)large.jfif.size());
  EXPECT_EQ(status, 77);
  EXPECT_EQ(Picture(decoder.get()), Picture_Of(small));
}

TEST_F(DisplayedDecoder, DrawExitHidesAndShowAloneFindsNoDisplay) {
  const TestWindow window(32);
  const DecoderPtr decoder(JDEC_New(48, 48));
  JDEC_Draw_Init(decoder.get(), window.handle);
  JDEC_Draw_Exit(decoder.get());
  EXPECT_EQ(decoder->display, nullptr);
  const Bytes dark = Picture(decoder.get());
  EXPECT_EQ(Push(decoder.get(), small.compact), (int32_t)small.compact.size());
  EXPECT_EQ(Picture(decoder.get()), dark);
  Screen_Take_Debug_Output();
  JDEC_show(decoder.get(), 2);
  Push(decoder.get(), small.compact);
  EXPECT_EQ(Screen_Take_Debug_Output(), std::vector<std::string>{"jdec, decompress, DDRAW=NULL!!\n"});
  EXPECT_EQ(Picture(decoder.get()), Picture_Of(small));
}

}  // namespace
