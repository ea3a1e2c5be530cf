// Converters of every vector level against the plain ones, for every colour there is. Lengths and addresses are tried on
// pictures, in pixel/convert_test.cpp.
#include "pixel/color_tables.h"
#include "support/inputs.h"
#include "support/level_test.h"

namespace {

struct ConverterKernels : LevelTest<CodecTest> {};
TEST_AT_VECTOR_LEVELS(ConverterKernels);

TEST_P(ConverterKernels, AgreeOnEveryColour) {
  const struct {
    ConvertRowsKernel Kernels::*kernel;
    size_t bytes;
  } converters[] = {{&Kernels::toRgb24, 3},       {&Kernels::toRgb32, 4},  {&Kernels::toRgb24Stream, 3},
                    {&Kernels::toRgb32Stream, 4}, {&Kernels::toRgb565, 2}, {&Kernels::toRgb555, 2}};
  constexpr size_t Pairs = 65536;
  const ColorTables tables = {rangeLimit, yccRgbTable};
  Bytes cb(Pairs), cr(Pairs), upper(2 * Pairs), lower(2 * Pairs);
  for (size_t i = 0; i < Pairs; ++i) cb[i] = (uint8_t)i, cr[i] = (uint8_t)(i >> 8);
  for (int32_t luma = 0; luma < 256; luma += 4) {
    for (size_t i = 0; i < 2 * Pairs; ++i) upper[i] = (uint8_t)(luma + (int32_t)i % 2), lower[i] = (uint8_t)(upper[i] + 2);
    for (const auto& [kernel, bytes] : converters) {
      Bytes expected(4 * Pairs * bytes), converted(expected.size());
      const auto convert = [&, row = 2 * Pairs * bytes](ConvertRowsKernel convertRows, Bytes* out) {
        convertRows(&tables, upper.data(), lower.data(), cb.data(), cr.data(), out->data(), out->data() + row, Pairs);
      };
      convert(Kernels_Select(KernelPlain).*kernel, &expected);
      convert(record.*kernel, &converted);
      ASSERT_TRUE(converted == expected) << "luma " << luma << ", " << bytes << " bytes";
    }
  }
}

}  // namespace
