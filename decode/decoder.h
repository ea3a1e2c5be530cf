/* The records of a decoder, and a decoder's life. All other parts of the library work on these records.
 *
 * A decoder is driven by one thread at a time. Its `lock` guards the ring, the recording fields, and display and draw callback
 * against the registering of a callback, which other threads may do; nothing is decoded or drawn with it held. */
#pragma once

#include "decode/codec.h"
#include "velarto.h"

#include "platform/win32.h"

#include <cstdint>

struct JdecDisplay;      // display/context.h
struct JdecSpeedHolder;  // decode/speed.h
struct NPStream;         // the browser's records
struct NPInstance;

/** Bytes of a decoder's assembly buffer and of its ring. */
constexpr int32_t StreamBufferSize = 0x80000;
/** Quality of a new decoder. */
constexpr int32_t StartQuality = 50;

/** A camera stream and its picture: receive path, codec, and the window it may show in. */
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
/** Brings decoder and codec to another picture size, display included; the display's draw callback comes along. Gives 1; or 0
 *  with nothing changed when the buffers can't be had. width and height must be allowed ones. `hidden` stays. */
int32_t Decoder_Change_Size(JdecDecoder* decoder, int32_t width, int32_t height);
