/* Cuts a byte stream into frames without decoding them. What counts as a frame is what the library takes for one; where the
 * frames lie doesn't depend on how the bytes arrive in pieces. */
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
  int32_t width = 0, height = 0, quality = 0;  ///< All 0 for a frame shorter than its own head.
  std::span<const uint8_t> bytes;              ///< Valid until bytes are added to the walk.
};

/** A walk holds one frame store of bytes and the chunk added last, no more, if all frames are taken before more is added. */
struct FrameWalk {
  std::vector<uint8_t> held;  ///< Bytes not used up, from `begin` on.
  size_t begin = 0;
  int64_t taken = 0;        ///< Bytes of the stream ahead of `begin`.
  size_t wanted = 0;        ///< Held bytes below which looking again is no use.
  int32_t endSearched = 0;  ///< Bytes of the open JFIF frame known to hold no end.
  bool open = false;        ///< A frame starts at `begin`.
  FrameForm form = FrameForm::Compact;
  bool ended = false;
  int64_t resumed = 0;  ///< Where in the stream the connection began that it comes from now.
  int64_t frames = 0;   ///< Frames given, and their bytes.
  int64_t frameBytes = 0;
};

/** Adds the next bytes of the stream. */
void Walk_Add(FrameWalk* walk, std::span<const uint8_t> bytes);

/** Says that no more bytes come: Walk_Next no longer waits for a head's missing bytes. */
void Walk_End(FrameWalk* walk);

/** Goes on after Walk_End with bytes that don't join those before them, those of a new connection. What was begun is dropped;
 * numbers and offsets go on. */
void Walk_Resume(FrameWalk* walk);

/** Gives the next complete frame; false when more bytes are needed. */
bool Walk_Next(FrameWalk* walk, WalkedFrame* frame);

/** Bytes added so far. */
int64_t Walk_Bytes(const FrameWalk& walk);

/** Bytes that were passed over as belonging to no frame; at the end also those of a frame not completed. */
int64_t Walk_Skipped(const FrameWalk& walk);

/** The frame has a head and a size that the decoder takes. */
bool Frame_Decodable(const WalkedFrame& frame);
