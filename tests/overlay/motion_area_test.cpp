/* The motion-area layer against a model of it, which is drawn pixel by pixel, at each size of the template and each depth. */
#include "overlay/motion_area.h"

#include "display/test_display.h"
#include "overlay/color_key.h"
#include "overlay/motion_state.h"

#include <map>

namespace {

constexpr uint32_t DarkBlue = 0x000040;

struct LayerTest : LibraryTest {
  ~LayerTest() override { mdRectMode = 0; }
};

/** A decoder with a display of that size, and the layer that it should have. */
struct Motion : TestDisplay {
  const DecoderPtr owned;
  JdecDecoder* const decoder = owned.get();
  const int32_t width, height, across = width == 640 ? 2 : 1, down = width == 640 && height == 480 ? 2 : 1;
  std::vector<uint32_t> model;  ///< Colours.
  std::map<uint32_t, uint32_t> pixels;

  Motion(int32_t bits, int32_t pictureWidth, int32_t pictureHeight)
      : TestDisplay(Screen_With(bits), pictureWidth, pictureHeight),
        owned(Shown_Decoder(handle, pictureWidth, pictureHeight)),
        width(pictureWidth),
        height(pictureHeight) {
    for (const uint32_t color : {Black, Red, Blue, DarkBlue, White}) pixels[color] = Pixel(color);
    for (int32_t i = 0; i < width * height; ++i) model.push_back(Grid_Color(i % width / across, i / width / down));
  }

  IDirectDrawSurface* Surface() const { return decoder->display->offscreenSurface; }
  uint32_t Pixel(uint32_t color) const {
    return Sample_Colors(Surface(), RGB(color >> 16, color >> 8 & 255, color & 255), decoder->display->keyRow);
  }
  static uint32_t Grid_Color(int32_t x, int32_t y) { return (x % 16 == 0 && x > 0) || (y % 16 == 0 && y > 0) ? Red : Black; }
  void Set(int32_t x, int32_t y, uint32_t color) {
    if (x < 0 || y < 0 || x >= width || y >= height) return;
    uint32_t& at = model[static_cast<size_t>(y * width + x)];
    if (mdRectMode == 0 || at != Red) at = color;
  }
  /** A line with no length is one pixel, but a horizontal one in 8 or 16 bits is none outside the rectangle mode. */
  void Outline(int32_t x, int32_t y, int32_t w, int32_t h, uint32_t color) {
    const bool noPixel = mdRectMode == 0 && decoder->display->displayBits <= 16;
    const int32_t columns = std::max(w, noPixel ? 0 : 1), lines = std::max(h, 1);
    for (int32_t thick = 0; thick < across; ++thick) {
      for (int32_t i = 0; i < columns; ++i) Set(x + i, y + thick, color), Set(x + i, y + h - 1 + thick, color);
      for (int32_t i = 0; i < lines; ++i) Set(x + thick, y + i, color), Set(x + w - 1 + thick, y + i, color);
    }
  }
  void Cell(int32_t column, int32_t row, bool marked) {
    for (int32_t y = down; y < 16 * down; ++y) {
      for (int32_t x = across == 2 ? 2 : 1; x < 16 * across; ++x) {
        const int32_t tileX = (x - (across == 2 ? 2 : 1)) / across, tileY = (y - down) / down;
        const bool hatch = marked && (tileX + tileY) % 4 == 2;
        model[static_cast<size_t>((row * 16 * down + y) * width + column * 16 * across + x)] = hatch ? Red : Black;
      }
    }
  }
  void Area(int32_t x, int32_t y, int32_t w, int32_t h, uint32_t color) {
    for (int32_t i = 0; i < width * height; ++i) {
      const int32_t tileX = i % width / across, tileY = i / width / down;
      model[static_cast<size_t>(i)] = tileX % 2 == tileY % 2 ? DarkBlue : Black;
    }
    for (int32_t i = 0; i < h; ++i)
      for (int32_t k = 0; k < w; ++k) Set(x + k, y + i, Black);
    Outline(x, y, w, h, color);
  }
  /** Fails at the first pixel that is not the expected one. first: the upper left pixel. */
  template <typename Expected>
  void Expect_Pixels(const std::string& what, const uint8_t* first, int32_t pitch, Expected expected) const {
    const int32_t bytes = decoder->display->displayBits / 8;
    for (int32_t i = 0; i < width * height; ++i) {
      const uint8_t* const at = first + i / width * pitch + i % width * bytes;
      if (std::memcmp(at, expected(i), static_cast<size_t>(bytes)) == 0) continue;
      ADD_FAILURE() << what << " at " << i % width << ", " << i / width;
      return;
    }
  }
  const uint8_t* Layer_Pixel(int32_t i) const {
    return reinterpret_cast<const uint8_t*>(&pixels.at(model[static_cast<size_t>(i)]));
  }
  /** Checks the layer on the surface. */
  void Expect_Layer(const std::string& what) const {
    int32_t surfaceWidth = 0, rows = 0, pitch = 0;
    const uint8_t* const picture = Rig_Surface_Pixels(Surface(), &surfaceWidth, &rows, &pitch);
    Expect_Pixels(what, picture + height * pitch, pitch, [&](int32_t i) { return Layer_Pixel(i); });
  }
  /** Checks it there, and in the window over a picture, which is visible where the layer is black. */
  void Expect_Model(const std::string& what) const {
    Expect_Layer(what);
    int32_t rows = 0, pitch = 0;
    const int32_t bytes = decoder->display->displayBits / 8;
    const RasterPtr raster = Noise_Raster(width, height, 8 * bytes);
    Display_Present(decoder->display, raster.get(), 0, 0, width, height, 1);
    int32_t windowWidth = 0;
    const uint8_t* const window = Rig_Window_Pixels(handle, &windowWidth, &rows, &pitch);
    ASSERT_EQ((std::vector{windowWidth, rows}), (std::vector{width, height}));
    Expect_Pixels(what + " in the window", window, pitch, [&](int32_t i) {
      const uint8_t* const below = raster->rows[i / width] + i % width * bytes;
      return model[static_cast<size_t>(i)] == Black ? below : Layer_Pixel(i);
    });
  }
};

TEST_F(LayerTest, EverySizeAndDepthAgreesWithTheModel) {
  for (const int32_t bits : {8, 15, 16, 24, 32}) {
    for (const auto& [width, height] : {std::pair{320, 240}, {640, 240}, {640, 480}}) {
      SCOPED_TRACE(testing::Message() << bits << " bits, " << width << " x " << height);
      Motion motion(bits, width, height);
      JdecDecoder* const decoder = motion.decoder;
      const int32_t across = motion.across, down = motion.down;
      motion.Expect_Model("the grid");
      EXPECT_EQ((std::vector<uint32_t>{mdColorFirst, mdColorSecond, mdColor}),
                (std::vector{motion.pixels[Red], motion.pixels[Blue], motion.pixels[Red]}));

      const auto fresh = motion.model;
      for (const bool marked : {true, false}) {
        JDEC_set_MD_area(decoder, 25, -3, marked);
        JDEC_set_MD_area(decoder, 0, 14, marked);
        motion.Cell(19, 0, marked);
        motion.Cell(0, 14, marked);
        motion.Expect_Model("cells");
        EXPECT_EQ(decoder->display->motionCells[19] + decoder->display->motionCells[14 * 20], 2 * marked);
      }
      EXPECT_EQ(motion.model, fresh) << "the grid again";

      JDEC_enable_MD(decoder, 3);
      JDEC_show_rectangle(decoder, 10, 20, 30, 40, 0);
      motion.Outline(10 * across, 20 * down, 30 * across, 40 * down, Blue);
      motion.Expect_Model("a rectangle over the grid");
      JDEC_show_rectangle(decoder, 300, 230, 100, 40, 0);
      motion.Outline(10 * across, 20 * down, 30 * across, 40 * down, Black);
      motion.Outline(220 * across, 200 * down, 100 * across, 40 * down, Blue);
      motion.Expect_Model("a rectangle moved inside");
      JDEC_show_rectangle(decoder, -9, -3, 30, 40, 0);
      motion.Outline(220 * across, 200 * down, 100 * across, 40 * down, Black);
      motion.Outline(0, 0, 30 * across, 40 * down, Blue);
      motion.Expect_Model("a rectangle moved inside from the left and the top");
      JDEC_show_rectangle(decoder, 220, 200, 100, 40, 0);
      motion.Outline(0, 0, 30 * across, 40 * down, Black);
      JDEC_show_rectangle(decoder, 0, 0, 320, 240, 1);
      motion.Outline(220 * across, 200 * down, 100 * across, 40 * down, Black);
      motion.Expect_Model("a rectangle taken away");
      EXPECT_EQ(Last_Rect().width, 320 * across);
      JDEC_show_rectangle(decoder, 50, 60, 0, 0, 0);
      motion.Outline(0, 0, 320 * across, 240 * down, Black);
      motion.Outline(50 * across, 60 * down, 0, 0, Blue);
      motion.Expect_Model("a rectangle of no size");

      JDEC_enable_MD(decoder, 1);
      JDEC_show_rectangle(decoder, 10, 20, 30, 40, 0);             // Not in this mode.
      const int32_t tall = width == 640 && height == 240 ? 2 : 1;  // There it counts in 480 rows.
      JDEC_set_MD_area_2(decoder, 30, 40 * tall, 0, 0, 0);
      motion.Area(30, 40, 0, 0, Red);
      motion.Expect_Model("an area of no size");
      JDEC_set_MD_area_2(decoder, width - 20, 50 * tall, 100, 101 * tall, 0);
      motion.Area(width - 100, 50, 100, 101, Red);
      motion.Expect_Model("an area");
      JDEC_set_MD_area_2(decoder, -40, INT32_MIN, 100, 101 * tall, 0);
      motion.Area(0, 0, 100, 101, Red);
      motion.Expect_Model("an area moved inside from the left and the top");
      JDEC_set_MD_color(1);
      JDEC_enable_MD(decoder, 2);
      JDEC_set_MD_area_2(decoder, 8, 8 * tall, 40, 40 * tall, 0);
      motion.Area(8, 8, 40, 40, Blue);
      JDEC_show_rectangle(decoder, 4, 4, 16, 16, 0);
      motion.Outline(8, 8, 40, 40, Black);
      motion.Outline(4 * across, 4 * down, 16 * across, 16 * down, Blue);
      motion.Expect_Model("a rectangle over an area");
      JDEC_enable_MD(decoder, 0);
      EXPECT_EQ(mdRectMode, 1) << "as it was";
    }
  }
}

TEST_F(LayerTest, AnyCallOnAnyPictureKeepsToTheSurface) {
  const std::pair<int32_t, int32_t> sizes[] = {{16, 16},   {352, 288},  {640, 960},   {640, 360}, {640, 16},
                                               {704, 480}, {1280, 720}, {1920, 1080}, {1, 300}};
  Noise noise{3};
  const auto any = [&] {
    constexpr int32_t corners[] = {INT32_MIN, INT32_MAX, INT32_MIN + 1, -1, 0, 1, 15, 16, 239, 240, 479, 480, 639, 640};
    return noise.Next() % 2 ? corners[noise.Next() % std::size(corners)] : noise.Between(-500, 1499);
  };
  for (const auto& [width, height] : sizes) {
    for (const int32_t bits : {8, 16, 24, 32}) {
      SCOPED_TRACE(testing::Message() << width << " x " << height << ", " << bits << " bits");
      Motion motion(bits, width, height);  // Ends with a look at all that lies around the surface's pixels.
      JdecDecoder* const decoder = motion.decoder;
      // A picture higher than its surface covers the row that the colours are taken from.
      EXPECT_TRUE(width == 1 || height == 960 || mdColorSecond == motion.pixels[Blue]);
      for (int32_t i = 0; i < 60; ++i) {
        JDEC_enable_MD(decoder, i % 2 ? 2 : 1);
        JDEC_set_MD_area(decoder, any(), any(), i % 3);
        JDEC_set_MD_area_2(decoder, any(), any(), any(), any(), any());
        JDEC_show_rectangle(decoder, any(), any(), any(), any(), i % 5 == 0);
      }
      EXPECT_TRUE(Rig_Guards_Whole(motion.Surface()));
    }
  }
  for (const int32_t narrow : {8, 16, 24, 31}) {
    Motion motion(32, narrow, 40);
    for (const int32_t marked : {1, 0}) JDEC_set_MD_area(motion.decoder, 0, 1, marked);
    motion.Expect_Layer("a cell marked and cleared, " + std::to_string(narrow) + " wide");
  }
  Motion motion(32, 352, 288);  // The part that fits is drawn: cells lie in their grid.
  JDEC_set_MD_area(motion.decoder, 19, 14, 1);
  int32_t width = 0, rows = 0, pitch = 0;
  const auto* const layer = Rig_Surface_Pixels(motion.Surface(), &width, &rows, &pitch) + 288 * pitch;
  const auto color = [&](int32_t x, int32_t y) {
    uint32_t pixel = 0;
    std::memcpy(&pixel, layer + y * pitch + 4 * x, 3);
    return pixel;
  };
  EXPECT_EQ((std::vector{color(304, 225), color(307, 225), color(306, 225), color(320, 225)}),
            (std::vector{Red, Red, Black, Black}));
}

TEST_F(LayerTest, FailuresLeaveThingsAsTheyWere) {
  Motion motion(32, 320, 240);
  JdecDecoder* const decoder = motion.decoder;
  JDEC_enable_MD(decoder, 2);
  const auto call_all = [&](JdecDecoder* on) {
    JDEC_set_MD_area(on, 3, 3, 1);
    JDEC_set_MD_area_2(on, 1, 2, 3, 4, 0);
    JDEC_show_rectangle(on, 5, 6, 7, 8, 0);
  };
  Set_Last_Rect({0, 0, 9, 9});
  Rig_Fail(RigStep::LockOffscreen);
  call_all(decoder);
  EXPECT_EQ(Last_Rect().width, 9);
  Rig_Fail_Nothing();
  Rig_Fail(RigStep::LockWithoutPixels);
  call_all(decoder);
  EXPECT_EQ(Last_Rect().width, 7);
  EXPECT_EQ(decoder->display->motionCells[3 * 20 + 3], 0);
  Rig_Fail_Nothing();
  motion.Expect_Model("untouched");
  Rig_Fail(RigStep::LockOffscreen, 0, 1, DDERR_WASSTILLDRAWING);
  JDEC_show_rectangle(decoder, 5, 6, 9, 8, 0);
  EXPECT_EQ(Last_Rect().width, 9) << "a busy blitter is waited for";
  JDEC_show_rectangle(decoder, 5, 6, 9, 8, 1);
  JDEC_enable_MD(nullptr, 1);
  call_all(nullptr);

  Rig_Take_Debug_Output();
  IDirectDrawSurface* const surface = motion.Surface();
  const auto load = [&] { return Load_Template_Bitmap(surface, 320, 240, 32, decoder->display->keyRow); };
  EXPECT_EQ(Load_Template_Bitmap(nullptr, 320, 240, 32, 0), E_FAIL);
  Rig_Fail(RigStep::LoadBitmap, 0, 1);
  EXPECT_EQ(load(), E_FAIL);
  Rig_Fail(RigStep::SurfaceGetDC, 0, 1, DDERR_UNSUPPORTED);
  EXPECT_EQ(load(), DDERR_UNSUPPORTED);
  Rig_Fail(RigStep::CreateCompatibleDC, 0, 1);
  EXPECT_EQ(load(), DD_OK);
  EXPECT_EQ(Rig_Take_Debug_Output(),
            (std::vector<std::string>{"bitmap handle is null\n", "ddcopybitmap failed\n", "createcompatible dc failed\n"}));
}

}  // namespace
