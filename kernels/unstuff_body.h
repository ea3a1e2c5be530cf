/* Removes stuffing. The file that includes this defines Wide, the bytes of a vector, Copy_Wide, which copies that many and gives
 * a mask of those that are FF, and Copy_Rest, which copies those that the mask does not name, a zero behind FF as FF. Most
 * vectors hold no FF, but data may be made of nothing else: that too has to cost little. */

static const uint32_t AllFound = 0xFFFFFFFF >> (32 - Wide);

static size_t Unstuff(const uint8_t** data, const uint8_t* end, uint8_t* out, size_t wanted) {
  const uint8_t* from = *data;
  const uint8_t* const enough = out + wanted;
  uint8_t* next = out;
  while (from < end && next < enough) {
    if ((size_t)(end - from) >= Wide) {
      const uint32_t found = Copy_Wide(from, next);
      if (found == 0) {
        next += Wide;
      } else if (found != AllFound) {
        next = Copy_Rest(from, found, next);
      }
      // An FF that ends the vector goes with what follows: of a run, the last FF says as much as all of them.
      from += Wide - (found >> (Wide - 1));
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
