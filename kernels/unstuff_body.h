/* Removes stuffing. The file that includes this defines Wide, the bytes of a vector, and Copy_Wide, which copies that many and
 * gives a mask of those that are FF. Most vectors hold none. */

static size_t Unstuff(const uint8_t* data, size_t count, uint8_t* out) {
  const uint8_t* const end = data + count;
  uint8_t* next = out;
  while (data < end) {
    if ((size_t)(end - data) >= Wide) {
      const uint32_t found = Copy_Wide(data, next);
      if (found == 0) {
        data += Wide;
        next += Wide;
        continue;
      }
      const int32_t whole = __builtin_ctz(found);
      data += whole;
      next += whole;
    } else if (*data != 0xFF) {
      *next++ = *data++;
      continue;
    }
    while (data < end && *data == 0xFF) ++data;
    const uint8_t byte = data < end ? *data++ : 0;
    *next++ = byte == 0 ? 0xFF : byte;
  }
  for (int32_t i = 0; i < StripPadding; ++i) next[i] = 0;
  return (size_t)(next - out);
}
