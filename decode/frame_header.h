/* The headers of a frame on the wire. No other code reads or writes their fields. There are three forms:
 *
 *   compact   a header of 12 bytes, FF D8 .. FF D9, little-endian fields, and the entropy-coded data
 *   prefixed  a prefix of 14 bytes with a signature and the high half of the length, then a compact frame
 *   JFIF      a JPEG image whose markers all have fixed offsets; it ends at the first FF D9 */
#pragma once

#include "decode/codec.h"

#include <cstdint>

enum class FrameForm { Compact, Prefixed, Jfif };

constexpr int32_t CompactHeaderSize = 12;
constexpr int32_t PrefixSize = 14;
constexpr int32_t JfifHeaderSize = 623;
/** The fixed header and the end marker. */
constexpr int32_t LeastJfifBytes = JfifHeaderSize + 2;

/** Size and quality of a frame, and the offset of its entropy-coded data from its first byte. */
struct FrameHeader {
  int32_t width, height, quality;
  int32_t dataOffset;
};

/** Reads the header of a frame of `length` bytes. The size is not checked. False, with *header undefined, for a frame shorter
 *  than its header, or a JFIF frame without its header's markers. */
bool Read_Frame_Header(const uint8_t* frame, int32_t length, FrameForm form, FrameHeader* header);

/* ---- Signatures. Each reads the stated number of bytes at data. ---------------------------------------------------------- */

/** The markers of a compact header, 12 bytes. */
bool Compact_Header_At(const uint8_t* data);
/** The signature of a prefix, 14 bytes. */
bool Prefix_At(const uint8_t* data);
/** The start of a JFIF image, 10 bytes. */
bool JFIF_Start_At(const uint8_t* data);
/** The markers DQT and SOF0 at their offsets in a fixed JFIF header, JfifHeaderSize bytes; with `scan` SOS as well. */
bool JFIF_Markers_At(const uint8_t* data, bool scan);

/* ---- Compact and prefixed frames ----------------------------------------------------------------------------------------- */

/** Bytes of the compact frame whose header is at data. */
int32_t Compact_Length(const uint8_t* data);

/** Bytes of the prefixed frame at data, prefix included. The sum of the low half wraps at 65536. */
int64_t Prefixed_Length(const uint8_t* data);

/** True if the prefix at data keeps its frame out of recordings. */
bool Prefix_Skips_Recording(const uint8_t* data);

/** Reads size and quality from the compact header at data. */
void Parse_Compact_Header(const uint8_t* data, int32_t* width, int32_t* height, int32_t* quality);

/** Writes a compact header, CompactHeaderSize bytes, with the low 16 bits of the body's length. */
void Compact_Put_Header(uint8_t* data, int32_t bodyLength, int32_t width, int32_t height, int32_t quality);

/** Writes a compact header of the codec's size and quality to the start of its frame store, with a body length of 0, and adds
 *  CompactHeaderSize to the frame's length. */
void Compact_Write_Head(JdecCodec* codec);

/** Stores the low 16 bits of the body's length in the compact header at data. */
void Compact_Set_Body_Length(uint8_t* data, int32_t bodyLength);

/** Writes the prefix of a compact frame of `length` bytes, PrefixSize bytes, all flags 0. */
void Prefix_Write(uint8_t* data, int64_t length);

/* ---- JFIF frames --------------------------------------------------------------------------------------------------------- */

/** Reads size and quality of a JFIF frame of at least LeastJfifBytes. Gives 1, or 0 if its markers are not at their offsets. */
int32_t Parse_JFIF_Header(const uint8_t* data, int32_t* width, int32_t* height, int32_t* quality);

/** Offset of the entropy-coded data of a JFIF frame of at least LeastJfifBytes; -1 without an SOS marker in its header. */
int32_t Find_Scan_Data(const uint8_t* data);

/** Where the next byte is written, and how many bytes were written so far. */
struct JfifCursor {
  uint8_t* next;
  int32_t count;
};

/** Writes the fixed header of a JFIF frame, JfifHeaderSize bytes. The quantisation tables are in natural order, entries 1 to
 *  255. */
void JFIF_Write_Header(JfifCursor* cursor, int32_t width, int32_t height, const uint16_t* luma, const uint16_t* chroma);

/** Writes the two bytes of the end marker. */
void JFIF_Write_EOI(JfifCursor* cursor);
