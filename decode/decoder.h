/* The records of a decoder, and how one changes its size. All other parts of the library work on these records.
 *
 * A decoder is used by one thread at a time. Its `lock` guards the ring and the recording fields, which other threads use as
 * well, and `display` and the draw callback while another thread registers a callback. Nothing is decoded or drawn while it is
 * held. */
#pragma once

#include "decode/codec.h"
#include "velarto.h"

#include "platform/win32.h"

#include <cstdint>

struct JdecDisplay;      // display/context.h
struct JdecSpeedHolder;  // decode/speed.h
struct NPStream;         // plugin/npapi.h
struct NPInstance;

/** Bytes of a decoder's assembly buffer and of its ring. */
constexpr int32_t StreamBufferSize = 0x80000;
/** Quality of a new decoder. */
constexpr int32_t StartQuality = 50;

/** A camera stream and its picture: receive path, codec, and the window it may show in. */
struct JdecDecoder {
  HWND window;    ///< Window drawn in, or null. The caller's.
  RECT srcRect;   ///< The window's client area, or what JDEC_Access_SrcRect was given last.
  RECT dstRect;   ///< (0, 0, width, height) at creation.
  int32_t width;  ///< Current picture size.
  int32_t height;
  JdecCodec* codec;         ///< Owned.
  int32_t frameOpen;        ///< 1 while assemblyBuffer begins with a frame start.
  int32_t extendedHeader;   ///< 1 if that frame has a prefix.
  int32_t frameLength;      ///< Expected bytes of that frame, prefix included; 0 while unknown.
  int32_t assemblyFill;     ///< Bytes held in assemblyBuffer.
  uint8_t* assemblyBuffer;  ///< StreamBufferSize bytes, owned.
  HANDLE lock;              ///< Recursive mutex.
  uint8_t* ringStart;       ///< Store of the ring, owned.
  uint8_t* ringEnd;         ///< One past its last byte.
  uint8_t* ringRead;        ///< The next byte to read.
  uint8_t* ringWrite;       ///< Where the next byte is written.
  int32_t ringFill;         ///< Bytes held.
  int32_t ringSize;
  int32_t hidden;        ///< 1: frames are taken out of the stream and neither decoded nor drawn.
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
  uint32_t statsTick;                ///< Milliseconds: the last report of the bit rate.
  uint32_t statsBaseTick;            ///< Milliseconds: the first data.
  int32_t statsSlot;                 ///< Entry of statsBits that counts now.
  double statsBits[2];               ///< Bits received.
  int32_t endSearched;               ///< Bytes at the start of assemblyBuffer known to hold no end marker.
  int32_t rasterFormat;              ///< The PixelFormat that the raster was filled with last, or NoPixels.
  int32_t pumpState;                 ///< Plug-in: whether the pump is waiting, asked for or running (plugin/pump).
  int32_t sizeChanging;              ///< 1 from the end of one size's display until the next one is made.
  VelartoDrawCallback keptCallback;  ///< The draw callback during that time,
  uintptr_t keptCallbackUser;        ///< and the value it is called with.
};

/** States of a recording, in recordState. */
enum : int32_t { RecordOff = 0, RecordWriting = 1, RecordWaiting = 2 };

/** Calls of JDEC_Init minus calls of JDEC_Exit. */
extern LONG jdecInitCount;

/** Changes decoder, codec and display to another picture size, which must be an allowed one. The draw callback stays registered
 *  and `hidden` stays as it is. Gives false, with nothing changed, without memory for the buffers. Without memory for the display
 *  the new size stands and the display is null. */
bool Decoder_Change_Size(JdecDecoder* decoder, int32_t width, int32_t height);
