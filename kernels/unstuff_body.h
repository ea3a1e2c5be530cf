/* Removes stuffing, at every vector level. Before this file a level defines Copy_Kept, which copies a vector's bytes but for
 * those in a mask, and a zero after FF as FF. Most vectors hold no FF; but data may consist of nothing else, and must not take
 * long then either. */

static const size_t VectorSize = sizeof(Vector);
static const uint32_t AllFound = 0xFFFFFFFF >> (32 - VectorSize);

static size_t Unstuff(const uint8_t** data, const uint8_t* end, uint8_t* out, size_t wanted) {
  const uint8_t* from = *data;
  const uint8_t* const enough = out + wanted;
  uint8_t* next = out;
  while (from < end && next < enough) {
    if ((size_t)(end - from) >= VectorSize) {
      const uint32_t found = Copy_And_Find(from, next);
      if (found == 0) {
        next += VectorSize;
      } else if (found != AllFound) {
        next = Copy_Kept(from, found, next);
      }
      // An FF that ends the vector is left to the next one: of a run, the last FF says as much as all of them.
      from += VectorSize - (found >> (VectorSize - 1));
      continue;
    }
    if (*from != 0xFF) {
      *next++ = *from++;
      continue;
    }
    while (from < end && *from == 0xFF) ++from;
    const uint8_t byte = from < end ? *from++ : 0;
    *next++ = byte == 0 ? 0xFF : byte;
  }
  for (int32_t i = 0; i < StripPadding; ++i) next[i] = 0;
  *data = from;
  return (size_t)(next - out);
}
