/* Entropy decoding, the rule: baseline JPEG blocks with fixed tables, no markers inside the data. */
#include "kernels/kernels.h"

/** Coefficients of a block, and the last scan position. */
static const int32_t BlockSize = 64, LastPosition = 63;

/** A byte of the data: a run of FF counts as one, and FF 00 is FF; any other byte after FF stands for itself. */
static uint32_t Take_Byte(HuffReader* reader) {
  if (reader->next >= reader->end) return 0;
  uint32_t byte = *reader->next++;
  if (byte != 0xFF) return byte;
  do {
    byte = reader->next < reader->end ? *reader->next++ : 0;
  } while (byte == 0xFF);
  return byte == 0 ? 0xFF : byte;
}

/** Fills the buffer to at least 25 bits: enough for any code and for any value. */
static void Huff_Fill_Bits(HuffReader* reader) {
  if (reader->bitCount >= 25) return;
  const int32_t bytes = (32 - reader->bitCount) / 8;
  for (int32_t i = 0; i < bytes; ++i) reader->bitBuffer = reader->bitBuffer << 8 | Take_Byte(reader);
  reader->bitCount += 8 * bytes;
}

static uint32_t Next_Eight_Bits(HuffReader* reader) {
  if (reader->bitCount < 8) Huff_Fill_Bits(reader);
  return reader->bitBuffer >> (reader->bitCount - 8) & 0xFF;
}

/** The next symbol; 0 for bits that are no code. Of those nothing is taken, or their first 8 bits if a code starts like them. */
static int32_t Huff_Decode_Symbol(HuffReader* reader, const JdecHuffLookup* lookup) {
  const uint32_t first = Next_Eight_Bits(reader);
  const int32_t length = lookup->lengths[first];
  if (length != 0) {
    reader->bitCount -= length;
    return lookup->values[first];
  }
  const int32_t slot = lookup->values[first];
  if (slot == 0) return 0;
  reader->bitCount -= 8;
  const uint32_t second = Next_Eight_Bits(reader);
  const int32_t fullLength = lookup->secondLengths[slot][second];
  if (fullLength == 0) return 0;
  reader->bitCount -= fullLength - 8;
  return lookup->secondValues[slot][second];
}

/** A value of 1 to 15 bits; the lower half of the range stands for negative numbers. */
static int32_t Take_Value(HuffReader* reader, int32_t size) {
  if (reader->bitCount < size) Huff_Fill_Bits(reader);
  reader->bitCount -= size;
  const int32_t value = (int32_t)(reader->bitBuffer >> reader->bitCount & ((1u << size) - 1));
  const int32_t half = 1 << (size - 1);
  return value < half ? value + 1 - (1 << size) : value;
}

/** Decodes one block, already zero; gives its DC value. scan receives the coefficients in scan order. */
static int32_t Huff_Decode_Block(HuffReader* reader, int32_t* block, int32_t predictor, const JdecHuffLookup* dc,
                                 const JdecHuffLookup* ac, const int32_t* zigzagOrder, int32_t* scan) {
  const int32_t dcSize = Huff_Decode_Symbol(reader, dc);
  const int32_t difference = dcSize == 0 ? 0 : Take_Value(reader, dcSize);
  block[0] = (int32_t)((uint32_t)predictor + (uint32_t)difference);
  int32_t k = 1;
  while (k < BlockSize) {
    const int32_t symbol = Huff_Decode_Symbol(reader, ac);
    const int32_t run = symbol / 16;
    const int32_t size = symbol % 16;
    if (size == 0) {
      if (run < 15) break;
      k += 16;
      continue;
    }
    k += run;
    const int32_t value = Take_Value(reader, size);
    scan[k < LastPosition ? k : LastPosition] = value;
    block[zigzagOrder[k]] = value;
    ++k;
  }
  return block[0];
}

void Decode_Row_Plain(HuffReader* reader, const HuffTables* tables, int32_t* upper, int32_t* lower, int32_t* cb, int32_t* cr,
                      int32_t columns, int32_t* predictors, ScanHook hook, void* hookUser) {
  for (int32_t column = 0; column < columns; ++column) {
    int32_t* const luma[4] = {upper, upper + BlockSize, lower, lower + BlockSize};
    for (int32_t i = 0; i < 4; ++i) {
      int32_t scan[BlockSize] = {0};
      predictors[0] =
          Huff_Decode_Block(reader, luma[i], predictors[0], tables->dcLuma, tables->acLuma, tables->zigzagOrder, scan);
      if (hook) hook(hookUser, scan);
    }
    int32_t unused[BlockSize];
    predictors[1] = Huff_Decode_Block(reader, cb, predictors[1], tables->dcChroma, tables->acChroma, tables->zigzagOrder, unused);
    predictors[2] = Huff_Decode_Block(reader, cr, predictors[2], tables->dcChroma, tables->acChroma, tables->zigzagOrder, unused);
    upper += 2 * BlockSize;
    lower += 2 * BlockSize;
    cb += BlockSize;
    cr += BlockSize;
  }
}
