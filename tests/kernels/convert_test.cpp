// Row pairs through the converters of every level, against plain; what plain must give is in tests/pixel.
#include "pixel/color_tables.h"
#include "support/levels.h"
#include "support/streams.h"

namespace {

struct RowPair {
  Bytes yUpper, yLower, cb, cr;
};

/** Both output rows with the guards around them. */
Bytes Converted(ConvertRowsKernel kernel, const RowPair& in, size_t bytesPerPixel, size_t shift) {
  const size_t width = in.yUpper.size() * bytesPerPixel, pitch = width + 64;
  Bytes out(2 * pitch, 0xA7);
  const ColorTables tables = {rangeLimit, yccRgbTable};
  kernel(&tables, in.yUpper.data(), in.yLower.data(), in.cb.data(), in.cr.data(), &out[32 - shift], &out[pitch + 32 - shift],
         (int32_t)in.cb.size());
  for (const size_t row : {size_t{0}, pitch}) {
    EXPECT_EQ(Bytes(&out[row], &out[row] + 32 - shift), Bytes(32 - shift, 0xA7));
    EXPECT_EQ(Bytes(&out[row] + 32 - shift + width, &out[row] + pitch), Bytes(32 + shift, 0xA7));
  }
  return out;
}

TEST_F(LibraryTest, ConvertersOfEveryLevelAgreeWithPlain) {
  using Member = ConvertRowsKernel Kernels::*;
  const struct {
    Member member;
    ConvertRowsKernel plain;
    size_t bytesPerPixel;
  } converters[] = {{&Kernels::toRgb24, To_Rgb24_Plain, 3},
                    {&Kernels::toRgb32, To_Rgb32_Plain, 4},
                    {&Kernels::toRgb565, To_Rgb565_Plain, 2},
                    {&Kernels::toRgb555, To_Rgb555_Plain, 2}};
  Noise noise{8};
  for (const TestLevel& level : testLevels) {
    const Kernels tested = Kernels_Select(level.mask);
    for (int round = 0; round < 800; ++round) {
      const size_t pairs = (size_t)round % 80;
      RowPair in = {noise.Some(2 * pairs), noise.Some(2 * pairs), noise.Some(pairs), noise.Some(pairs)};
      if (round % 8 == 0) in = {Bytes(2 * pairs, 0), Bytes(2 * pairs, 255), Bytes(pairs, 0), Bytes(pairs, 255)};
      if (round % 8 == 1) in = {Bytes(2 * pairs, 255), Bytes(2 * pairs, 0), Bytes(pairs, 255), Bytes(pairs, 0)};
      if (round % 8 == 2) in.cb = in.cr = Bytes(pairs, 128);
      for (const auto& [member, plain, bytesPerPixel] : converters) {
        const size_t shift = (size_t)round % 16 * (bytesPerPixel == 3) + (size_t)round % 4 * 4 * (bytesPerPixel != 3);
        ASSERT_EQ(Converted(tested.*member, in, bytesPerPixel, shift), Converted(plain, in, bytesPerPixel, shift))
            << level.name << ", " << bytesPerPixel << " bytes, " << pairs << " pairs";
      }
    }
  }
}

}  // namespace
