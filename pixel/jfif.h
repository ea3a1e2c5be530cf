/* Heads of the frames that we write. */
#pragma once

#include <cstdint>

/** Where the next byte goes, and how many were written. */
struct JfifCursor {
  uint8_t* next;
  int32_t count;
};

/** Writes the fixed head of a JFIF frame, JfifHeadSize bytes. The quantisation tables are in natural order, entries 1 to 255. */
void JFIF_Write_Header(JfifCursor* cursor, int32_t width, int32_t height, const uint16_t* luma, const uint16_t* chroma);

/** Writes the two bytes of the end marker. */
void JFIF_Write_EOI(JfifCursor* cursor);

/** Writes a compact head, CompactHeadSize bytes; of the body's length its low 16 bits. */
void Compact_Write_Head(uint8_t* data, int32_t bodyLength, int32_t width, int32_t height, int32_t quality);
