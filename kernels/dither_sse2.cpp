#include "kernels/kernels.h"
#include "kernels/vector_sse2_body.h"
// Uses the verbs above.
#include "kernels/dither_body.h"

void Use_Dither_Sse2(Kernels* record) { record->ditherRow = Dither_Row; }
