/* Cuts a byte stream into frames without decoding them. A frame is what the library takes for one; how the bytes arrive in pieces
 * makes no difference. */
#pragma once

#include "decode/frame_header.h"

#include <cstdint>
#include <span>
#include <vector>

/** "compact", "prefixed" or "jfif". */
const char* Form_Name(FrameForm form);

struct WalkedFrame {
  int64_t number = 0;  ///< Counted from 0.
  int64_t offset = 0;  ///< Of its first byte in the stream.
  FrameForm form = FrameForm::Compact;
  int32_t width = 0, height = 0, quality = 0;  ///< All 0 for a frame shorter than its own header.
  std::span<const uint8_t> bytes;              ///< Valid until bytes are added to the walk.
};

/** A walk holds at most one frame store of bytes and the chunk added last, if all frames are taken before more is added. */
struct FrameWalk {
  std::vector<uint8_t> held;  ///< Bytes not used up, from `begin` on.
  size_t begin = 0;
  int64_t taken = 0;        ///< Bytes of the stream before `begin`.
  size_t wanted = 0;        ///< With fewer held bytes there is nothing new to find.
  int32_t endSearched = 0;  ///< Bytes of the open JFIF frame known to hold no end.
  bool open = false;        ///< A frame starts at `begin`.
  FrameForm form = FrameForm::Compact;
  bool ended = false;
  int64_t resumed = 0;  ///< Offset in the stream at which the current connection began.
  int64_t frames = 0;   ///< Frames given, and their bytes.
  int64_t frameBytes = 0;
};

/** Adds the next bytes of the stream. */
void Walk_Add(FrameWalk* walk, std::span<const uint8_t> bytes);

/** No more bytes will come: Walk_Next no longer waits for the missing bytes of a header. */
void Walk_End(FrameWalk* walk);

/** Continues after Walk_End with the bytes of a new connection. An incomplete frame is dropped; numbers and offsets continue. */
void Walk_Resume(FrameWalk* walk);

/** Gives the next complete frame; false when more bytes are needed. */
bool Walk_Next(FrameWalk* walk, WalkedFrame* frame);

/** Bytes added so far. */
int64_t Walk_Bytes(const FrameWalk& walk);

/** Bytes skipped as belonging to no frame; after Walk_End also those of an incomplete frame. */
int64_t Walk_Skipped(const FrameWalk& walk);

/** The frame has a header and a size that the decoder accepts. */
bool Frame_Decodable(const WalkedFrame& frame);
