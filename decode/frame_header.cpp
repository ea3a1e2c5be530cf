#include "decode/frame_header.h"

#include "decode/huffman_codes.h"

#include <cstring>
#include <span>

/* Offsets within a JFIF frame's fixed header. */
static constexpr int32_t JfifDqt = 20, JfifFirstQuantiser = 25, JfifSof = 158, JfifHeight = 163, JfifWidth = 165, JfifSos = 609;
/** The SOS marker and its segment. */
static constexpr int32_t SosSize = 14;

/* Offsets within a compact header. */
static constexpr int32_t CompactBodyLength = 2, CompactWidth = 4, CompactHeight = 6, CompactQuality = 8, CompactEoi = 10;

/* Offsets within a prefix. */
static constexpr int32_t PrefixLengthTop = 1, PrefixLengthHigh = 3, PrefixFlags = 8;
static constexpr int32_t PrefixSkipRecording = 0x08;
/** The bytes of a prefix that are its signature, by offset. */
static constexpr struct {
  int32_t offset;
  uint8_t value;
} prefixSignature[] = {{0, 0xF6}, {2, 0xFF}, {4, 0xF9}, {6, 0xDD}, {12, 0xC5}};

static int32_t Little_Word(const uint8_t* p) { return p[0] | p[1] << 8; }
static int32_t Big_Word(const uint8_t* p) { return p[0] << 8 | p[1]; }
static bool Marker_At(const uint8_t* p, uint8_t code) { return p[0] == 0xFF && p[1] == code; }

static void Put_Little_Word(uint8_t* p, int32_t value) {
  p[0] = static_cast<uint8_t>(value);
  p[1] = static_cast<uint8_t>(value >> 8);
}

bool Compact_Header_At(const uint8_t* data) { return Marker_At(data, 0xD8) && Marker_At(data + CompactEoi, 0xD9); }

bool Prefix_At(const uint8_t* data) {
  for (const auto& byte : prefixSignature) {
    if (data[byte.offset] != byte.value) return false;
  }
  return true;
}

bool JFIF_Start_At(const uint8_t* data) {
  static constexpr uint8_t start[10] = {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10, 'J', 'F', 'I', 'F'};
  return std::memcmp(data, start, sizeof start) == 0;
}

bool JFIF_Markers_At(const uint8_t* data, bool scan) {
  return Marker_At(data + JfifSof, 0xC0) && Marker_At(data + JfifDqt, 0xDB) && (!scan || Marker_At(data + JfifSos, 0xDA));
}

bool Read_Frame_Header(const uint8_t* frame, int32_t length, FrameForm form, FrameHeader* header) {
  if (form == FrameForm::Jfif) {
    if (length < LeastJfifBytes) return false;
    header->dataOffset = Find_Scan_Data(frame);
    return header->dataOffset >= 0 && Parse_JFIF_Header(frame, &header->width, &header->height, &header->quality);
  }
  const int32_t compact = form == FrameForm::Prefixed ? PrefixSize : 0;
  header->dataOffset = compact + CompactHeaderSize;
  if (length < header->dataOffset) return false;
  Parse_Compact_Header(frame + compact, &header->width, &header->height, &header->quality);
  return true;
}

int32_t Compact_Length(const uint8_t* data) { return Little_Word(data + CompactBodyLength) + CompactHeaderSize; }

int64_t Prefixed_Length(const uint8_t* data) {
  const int32_t low = Compact_Length(data + PrefixSize) & 0xFFFF;
  return int64_t{PrefixSize} + low + (int64_t{data[PrefixLengthHigh]} << 16) + (int64_t{data[PrefixLengthTop]} << 24);
}

void Parse_Compact_Header(const uint8_t* data, int32_t* width, int32_t* height, int32_t* quality) {
  *width = Little_Word(data + CompactWidth);
  *height = Little_Word(data + CompactHeight);
  *quality = data[CompactQuality];
}

bool Prefix_Skips_Recording(const uint8_t* data) { return (data[PrefixFlags] & PrefixSkipRecording) != 0; }

void Compact_Put_Header(uint8_t* data, int32_t bodyLength, int32_t width, int32_t height, int32_t quality) {
  Put_Little_Word(data, 0xD8FF);
  Compact_Set_Body_Length(data, bodyLength);
  Put_Little_Word(data + CompactWidth, width);
  Put_Little_Word(data + CompactHeight, height);
  Put_Little_Word(data + CompactQuality, quality & 0xFF);
  Put_Little_Word(data + CompactEoi, 0xD9FF);
}

void Compact_Write_Head(JdecCodec* codec) {
  Compact_Put_Header(codec->frame->data, 0, codec->width, codec->height, codec->quality);
  codec->frame->length += CompactHeaderSize;
}

void Compact_Set_Body_Length(uint8_t* data, int32_t bodyLength) { Put_Little_Word(data + CompactBodyLength, bodyLength); }

void Prefix_Write(uint8_t* data, int64_t length) {
  std::memset(data, 0, PrefixSize);
  for (const auto& byte : prefixSignature) data[byte.offset] = byte.value;
  data[PrefixLengthTop] = static_cast<uint8_t>(length >> 24);
  data[PrefixLengthHigh] = static_cast<uint8_t>(length >> 16);
}

int32_t Parse_JFIF_Header(const uint8_t* data, int32_t* width, int32_t* height, int32_t* quality) {
  if (!Marker_At(data + JfifSof, 0xC0) || !Marker_At(data + JfifDqt, 0xDB)) return 0;
  *height = Big_Word(data + JfifHeight);
  *width = Big_Word(data + JfifWidth);
  // Undoes the scaling of the first luma quantiser, which is 16 at quality 50. A quantiser of 0 is invalid; it gives quality 100.
  const int32_t scale = data[JfifFirstQuantiser] * 100 / 16;
  *quality = scale > 100 ? 5000 / scale : (200 - scale) / 2;
  return 1;
}

int32_t Find_Scan_Data(const uint8_t* data) {
  for (int32_t i = 0; i < JfifHeaderSize; ++i) {
    if (Marker_At(data + i, 0xDA)) return i + SosSize;
  }
  return -1;
}

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

static void JFIF_Put_Bytes(JfifCursor* cursor, std::span<const uint8_t> bytes) {
  for (const uint8_t byte : bytes) JFIF_Put_Byte(cursor, byte);
}

static void JFIF_Write_APP0(JfifCursor* cursor) {
  static constexpr uint8_t body[] = {'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0};
  JFIF_Put_Marker(cursor, 0xE0);
  JFIF_Put_Word(cursor, 2 + sizeof body);
  JFIF_Put_Bytes(cursor, body);
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
  JFIF_Put_Bytes(cursor, components);
}

static void JFIF_Write_DHT(JfifCursor* cursor, int32_t classAndId, const HuffCode& code) {
  JFIF_Put_Marker(cursor, 0xC4);
  JFIF_Put_Word(cursor, 19 + static_cast<int32_t>(code.values.size()));
  JFIF_Put_Byte(cursor, classAndId);
  JFIF_Put_Bytes(cursor, code.bits);
  JFIF_Put_Bytes(cursor, code.values);
}

static void JFIF_Write_SOS(JfifCursor* cursor) {
  static constexpr uint8_t body[] = {3, 1, 0x00, 2, 0x11, 3, 0x11, 0x00, 0x3F, 0x00};
  JFIF_Put_Marker(cursor, 0xDA);
  JFIF_Put_Word(cursor, 2 + sizeof body);
  JFIF_Put_Bytes(cursor, body);
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
