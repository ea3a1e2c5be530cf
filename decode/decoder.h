/* The records of a decoder, and a decoder's life. All other parts of the library work on these records.
 *
 * A decoder is driven by one thread at a time. Its `lock` guards the ring, the recording fields, and display and draw callback
 * against the registering of a callback, which other threads may do; nothing is decoded or drawn with it held. */
#pragma once

#include "velarto.h"

#include "platform/win32.h"

#include <cstdint>

struct JdecDisplay;      // display/context.h
struct RowStore;         // decode/rows.h
struct JdecSpeedHolder;  // api/speed.h
struct NPStream;         // the browser's records
struct NPInstance;

/** Sides of a picture: 1 to this. */
constexpr int32_t MaxPictureSide = 65535;
/** Most macroblocks that a frame store can carry, at 4 bytes of entropy-coded data for each. */
constexpr int32_t MaxMacroblocks = 128000;
/** Bytes of a decoder's assembly buffer and of its ring. */
constexpr int32_t StreamBufferSize = 0x80000;
/** Bytes of the frame store; a longer frame is no frame. */
constexpr int32_t FrameStoreSize = 512000;
/** Quality of a new decoder. */
constexpr int32_t StartQuality = 50;

/** The compressed frame at hand. */
struct JdecFrameBuffer {
  uint8_t* data;     ///< FrameStoreSize bytes, owned.
  int32_t length;    ///< Bytes of the frame in data.
  int32_t position;  ///< Offset of the entropy-coded data.
};

/** Planar YCbCr picture, reached through tables of row pointers; row 0 is the top. Head, tables and samples are one block. */
struct JdecPlanes {
  int32_t lumaFactor;    ///< 4.
  int32_t chromaFactor;  ///< 4: chroma of full size. 1: chroma of half width and half height, rounded down.
  int32_t yWidth, yHeight;
  uint8_t** yRows;
  int32_t crWidth, crHeight;
  uint8_t** crRows;
  int32_t cbWidth, cbHeight;
  uint8_t** cbRows;
};

/** Packed picture. Head, row table and pixels are one block; the pixels lie bottom row first, rows[0] is the top of the
 *  picture all the same. */
struct JdecRaster {
  int32_t width, height;
  int32_t bitsPerPixel;
  int32_t pitch;   ///< Bytes a row, width times bytes a pixel, not aligned.
  uint8_t** rows;  ///< height pointers.
};

/** Buffers and tables behind a decoder. A coefficient plane is a table of height / 8 pointers to rows of width / 8 blocks,
 *  each of 64 coefficients in natural order. */
struct JdecCodec {
  int32_t width, height;  ///< Size that the buffers are built for.
  int32_t quality;        ///< Quality that the six tables are built for.
  JdecRaster* raster;     ///< Target of the converters.
  JdecPlanes* planes;     ///< Output of the inverse transform, 4:2:0.
  int32_t** coefY;        ///< Full size.
  int32_t** coefCb;       ///< Half width and half height, as coefCr.
  int32_t** coefCr;
  uint16_t* lumaQuant;  ///< This and the following five: 64 entries, natural order.
  uint16_t* chromaQuant;
  int16_t* lumaForward;
  int16_t* chromaForward;
  int16_t* lumaInverse;
  int16_t* chromaInverse;
  JdecFrameBuffer* frame;
  uint32_t bitBuffer;  ///< State of the entropy decoder at the end of the last frame.
  int32_t bitCount;
  uint32_t writeBuffer;  ///< Accumulator of the Huffman encoder.
  int32_t writeCount;
  uint8_t* streamPtr;   ///< Where the entropy decoder stands in frame->data.
  int32_t streamCount;  ///< Bytes taken from it.
  RowStore* rows;       ///< Work store of the fast road, owned.
};

struct JdecDecoder {
  HWND window;    ///< Window drawn in, or null. The caller's.
  RECT srcRect;   ///< Client area; what JDEC_Access_SrcRect was given last.
  RECT dstRect;   ///< (0, 0, width, height) at creation.
  int32_t width;  ///< Current picture size.
  int32_t height;
  JdecCodec* codec;         ///< Owned.
  int32_t frameOpen;        ///< 1 while a frame start stands at the head of assemblyBuffer.
  int32_t extendedHeader;   ///< 1 when that frame has the prefix.
  int32_t frameLength;      ///< Expected bytes of that frame, prefix included; 0 while unknown.
  int32_t assemblyFill;     ///< Bytes held in assemblyBuffer.
  uint8_t* assemblyBuffer;  ///< StreamBufferSize bytes, owned.
  HANDLE lock;              ///< Mutex that lets its owner in again.
  uint8_t* ringStart;       ///< Store of the ring, owned; one past its end, read and write positions.
  uint8_t* ringEnd;
  uint8_t* ringRead;
  uint8_t* ringWrite;
  int32_t ringFill;
  int32_t ringSize;
  int32_t hidden;        ///< Frames are taken out of the stream and neither decoded nor drawn.
  char* urlBuffer;       ///< Plug-in: 1024 bytes, or null.
  WNDPROC prevWndProc;   ///< Plug-in: the window's own procedure, or null.
  JdecDisplay* display;  ///< Owned, or null.
  int32_t headless;      ///< 1: frames go to a raster of 24 bits and are not shown.
  HANDLE recordFile;     ///< Open recording, or null.
  int32_t recordState;   ///< RecordOff, RecordWriting or RecordWaiting.
  NPStream* npStream;    ///< Plug-in.
  NPInstance* npInstance;
  int32_t streamState;
  JdecSpeedHolder* speedState;       ///< Owned.
  int32_t skipRecording;             ///< Bit 3 of prefix byte 8 of the last prefixed frame.
  int32_t mdMode;                    ///< Not 0: the motion-area layer is shown.
  uint32_t statsTick;                ///< Milliseconds: last report of the bit rate,
  uint32_t statsBaseTick;            ///< first data.
  int32_t statsSlot;                 ///< Entry of statsBits being added to.
  double statsBits[2];               ///< Bits received.
  int32_t endSearched;               ///< Bytes at the head of assemblyBuffer known to hold no end marker.
  int32_t pumpState;                 ///< Plug-in: whether bytes are on their way from the ring (plugin/pump).
  int32_t sizeChanging;              ///< 1 while the display of one size is gone and that of the next not there;
  VelartoDrawCallback keptCallback;  ///< its draw callback meanwhile, and the callback's value.
  uintptr_t keptCallbackUser;
};

/** States of a recording, in recordState. */
enum : int32_t { RecordOff = 0, RecordWriting = 1, RecordWaiting = 2 };

/** Users of the library: JDEC_Init less JDEC_Exit. */
extern LONG jdecInitCount;
/** Entry i is 2^i - 1; shared by the entropy coder and decoder. */
extern const uint32_t* bitMasks;

/** Sets up all process-wide tables, which lie in static storage. */
void Init_Global_Tables();
/** Lets the tables go, in the opposite order. */
void Free_Global_Tables();
void Init_Bit_Masks();

/** 1 if a picture of that size can be decoded: sides 1 to MaxPictureSide, within the area limit; else 0. */
int32_t Picture_Size_Allowed(int32_t width, int32_t height);

/** Makes a codec for that size with quality 25, no tables built for it, and no raster and planes. Gives null, with
 *  nothing left allocated, when a buffer can't be had. */
JdecCodec* Codec_New(int32_t width, int32_t height);

/** Frees a codec with all it owns but raster and planes. Null is allowed. */
void Codec_Free(JdecCodec* codec);

/** Rebuilds the six tables for a quality other than the codec's own. */
void Codec_Set_Quality(JdecCodec* codec, int32_t quality);

/** Brings decoder and codec to another picture size, display included; the display's draw callback comes along. Gives 1; or 0
 *  with nothing changed when the buffers can't be had. width and height must be allowed ones. `hidden` stays. */
int32_t Decoder_Change_Size(JdecDecoder* decoder, int32_t width, int32_t height);
