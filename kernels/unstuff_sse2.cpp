#include "kernels/kernels.h"
#include "kernels/vector_sse2_body.h"

static uint8_t* Copy_Kept(const uint8_t* data, uint32_t found, uint8_t* out) {
  const Vector bytes = Load(data), full = Equal_8(bytes, Broadcast_8(-1));
  const Vector escaped = _mm_slli_si128(full, 1) & Equal_8(bytes, Broadcast_8(0));
  uint8_t made[16];
  Store(made, bytes | escaped);
  for (int32_t i = 0; i < 16; ++i) {
    *out = made[i];
    out += ~found >> i & 1;
  }
  return out;
}

#include "kernels/unstuff_body.h"

void Use_Unstuff_Sse2(Kernels* record) { record->unstuff = Unstuff; }
