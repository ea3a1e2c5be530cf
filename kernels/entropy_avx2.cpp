#include "kernels/entropy_body.h"

void Overlay_Entropy_Avx2(Kernels* record) { record->decodeStrip = Decode_Strip; }
