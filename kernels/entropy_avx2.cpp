#include "kernels/entropy_body.h"

void Use_Entropy_Avx2(Kernels* record) { record->decodeStrip = Decode_Strip; }
