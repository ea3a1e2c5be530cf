#include "kernels/kernels.h"
// Uses no vectors: the flags of the level make the difference.
#include "kernels/entropy_body.h"

void Use_Entropy_Avx2(Kernels* record) { record->decodeStrip = Decode_Strip; }
