#include "pixel/jfif.h"

#include "decode/huffman_tables.h"

#include <span>

static void JFIF_Put_Byte(JfifCursor* cursor, int32_t value) {
  *cursor->next++ = static_cast<uint8_t>(value);
  ++cursor->count;
}

static void JFIF_Put_Word(JfifCursor* cursor, int32_t value) {
  JFIF_Put_Byte(cursor, value >> 8);
  JFIF_Put_Byte(cursor, value);
}

static void JFIF_Put_Marker(JfifCursor* cursor, int32_t code) {
  JFIF_Put_Byte(cursor, 0xFF);
  JFIF_Put_Byte(cursor, code);
}

static void Put_Bytes(JfifCursor* cursor, std::span<const uint8_t> bytes) {
  for (const uint8_t byte : bytes) JFIF_Put_Byte(cursor, byte);
}

static void JFIF_Write_APP0(JfifCursor* cursor) {
  static constexpr uint8_t body[] = {'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0};
  JFIF_Put_Marker(cursor, 0xE0);
  JFIF_Put_Word(cursor, 2 + sizeof body);
  Put_Bytes(cursor, body);
}

static void JFIF_Write_DQT(JfifCursor* cursor, int32_t id, const uint16_t* table) {
  JFIF_Put_Marker(cursor, 0xDB);
  JFIF_Put_Word(cursor, 67);
  JFIF_Put_Byte(cursor, id);
  for (int32_t k = 0; k < 64; ++k) JFIF_Put_Byte(cursor, table[zigzagOrder[k]]);
}

static void JFIF_Write_SOF(JfifCursor* cursor, int32_t width, int32_t height) {
  static constexpr uint8_t components[] = {3, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1};
  JFIF_Put_Marker(cursor, 0xC0);
  JFIF_Put_Word(cursor, 17);
  JFIF_Put_Byte(cursor, 8);
  JFIF_Put_Word(cursor, height);
  JFIF_Put_Word(cursor, width);
  Put_Bytes(cursor, components);
}

static void JFIF_Write_DHT(JfifCursor* cursor, int32_t classAndId, const HuffCode& code) {
  JFIF_Put_Marker(cursor, 0xC4);
  JFIF_Put_Word(cursor, 19 + static_cast<int32_t>(code.values.size()));
  JFIF_Put_Byte(cursor, classAndId);
  Put_Bytes(cursor, code.bits);
  Put_Bytes(cursor, code.values);
}

static void JFIF_Write_SOS(JfifCursor* cursor) {
  static constexpr uint8_t body[] = {3, 1, 0x00, 2, 0x11, 3, 0x11, 0x00, 0x3F, 0x00};
  JFIF_Put_Marker(cursor, 0xDA);
  JFIF_Put_Word(cursor, 2 + sizeof body);
  Put_Bytes(cursor, body);
}

void JFIF_Write_Header(JfifCursor* cursor, int32_t width, int32_t height, const uint16_t* luma, const uint16_t* chroma) {
  JFIF_Put_Marker(cursor, 0xD8);
  JFIF_Write_APP0(cursor);
  JFIF_Write_DQT(cursor, 0, luma);
  JFIF_Write_DQT(cursor, 1, chroma);
  JFIF_Write_SOF(cursor, width, height);
  JFIF_Write_DHT(cursor, 0x00, dcLumaCode);
  JFIF_Write_DHT(cursor, 0x10, acLumaCode);
  JFIF_Write_DHT(cursor, 0x01, dcChromaCode);
  JFIF_Write_DHT(cursor, 0x11, acChromaCode);
  JFIF_Write_SOS(cursor);
}

void JFIF_Write_EOI(JfifCursor* cursor) { JFIF_Put_Marker(cursor, 0xD9); }

static uint8_t* Put_Little_Word(uint8_t* p, int32_t value) {
  p[0] = static_cast<uint8_t>(value);
  p[1] = static_cast<uint8_t>(value >> 8);
  return p + 2;
}

void Compact_Write_Head(uint8_t* data, int32_t bodyLength, int32_t width, int32_t height, int32_t quality) {
  data = Put_Little_Word(data, 0xD8FF);
  data = Put_Little_Word(data, bodyLength);
  data = Put_Little_Word(data, width);
  data = Put_Little_Word(data, height);
  data = Put_Little_Word(data, quality & 0xFF);
  Put_Little_Word(data, 0xD9FF);
}
