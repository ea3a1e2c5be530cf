#include "kernels/kernels.h"
#include "kernels/vector_avx2_body.h"
// Uses the verbs above.
#include "kernels/dither_body.h"

void Use_Dither_Avx2(Kernels* record) { record->ditherRow = Dither_Row; }
