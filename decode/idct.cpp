#include "decode/idct.h"

#include "kernels/kernels.h"
#include "pixel/color_tables.h"

int32_t useMmxIdct = 0;

void IDCT_Plane(uint8_t** rows, int32_t* const* plane, int32_t width, int32_t height, const int16_t* table) {
  const IdctRowKernel transform = useMmxIdct ? kernels.idctRowPacked : kernels.idctRow;
  for (int32_t r = 0; r < height / 8; ++r)
    transform(plane[r], width / 8, table, rangeLimit, rows + static_cast<size_t>(8) * static_cast<size_t>(r));
}
