#include "kernels/entropy_body.h"

void Decode_Strip_Sse2(StripReader* reader, const StripTables* tables, int16_t* blocks, StripReach* reach, int32_t macroblocks) {
  Decode_Strip(reader, tables, blocks, reach, macroblocks);
}
