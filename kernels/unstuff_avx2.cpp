#include "kernels/kernels.h"
#include "kernels/vector_avx2_body.h"

/** By mask of eight bytes: the places of those to keep, which the mask does not name. */
struct KeptBytes {
  uint8_t places[256][8];
};

static constexpr KeptBytes Kept_Bytes() {
  KeptBytes kept = {};
  for (int32_t mask = 0; mask < 256; ++mask) {
    int32_t count = 0;
    for (int32_t i = 0; i < 8; ++i) {
      if (!(mask >> i & 1)) kept.places[mask][count++] = (uint8_t)i;
    }
  }
  return kept;
}

static constexpr KeptBytes keptBytes = Kept_Bytes();

static uint8_t* Copy_Kept(const uint8_t* data, uint32_t found, uint8_t* out) {
  const Vector bytes = Load(data), full = Equal_8(bytes, Broadcast_8(-1));
  const Vector before = _mm256_alignr_epi8(full, _mm256_permute2x128_si256(full, full, 0x08), 15);
  uint8_t made[32];
  Store(made, bytes | (before & Equal_8(bytes, Broadcast_8(0))));
  for (int32_t i = 0; i < 32; i += 8) {
    const uint32_t mask = found >> i & 0xFF;
    Store_Low_Half(out, _mm_shuffle_epi8(Load_Half_Lane(made + i), Load_Half_Lane(keptBytes.places[mask])));
    out += 8 - __builtin_popcount(mask);
  }
  return out;
}

#include "kernels/unstuff_body.h"

void Use_Unstuff_Avx2(Kernels* record) { record->unstuff = Unstuff; }
