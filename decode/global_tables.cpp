#include "decode/global_tables.h"

#include "decode/huffman_tables.h"
#include "kernels/cpu.h"
#include "pixel/color_tables.h"
#include "pixel/encode_tables.h"

#include <array>

const uint32_t* bitMasks = nullptr;

static constexpr auto bitMaskStore = [] {
  std::array<uint32_t, 32> store{};
  for (uint32_t i = 0; i < 32; ++i) store[i] = (1u << i) - 1;
  return store;
}();

void Init_Bit_Masks() { bitMasks = bitMaskStore.data(); }

void Init_Global_Tables() {
  rangeLimit = Init_Range_Limit();
  Init_RGB_YCC_Table();
  Init_YCC_RGB_Table();
  Huff_Init_Encode_Tables();
  Huff_Init_Decode_Tables();
  Init_Bit_Masks();
  kernels = Kernels_Select(Cpu_Levels() & kernelsAllowed);
}

void Free_Global_Tables() {
  Free_YCC_RGB_Table();
  Free_RGB_YCC_Table();
  if (rangeLimit) Free_Range_Limit(rangeLimit);
  Huff_Free_Encode_Tables();
  Huff_Free_Decode_Tables();
}
