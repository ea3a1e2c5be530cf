#include "kernels/entropy_body.h"

void Overlay_Entropy_Sse2(Kernels* record) { record->decodeStrip = Decode_Strip; }
