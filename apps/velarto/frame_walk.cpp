#include "apps/velarto/frame_walk.h"

#include "decode/decoder.h"
#include "decode/framing.h"

#include <algorithm>

const char* Form_Name(FrameForm form) {
  if (form == FrameForm::Jfif) return "jfif";
  return form == FrameForm::Prefixed ? "prefixed" : "compact";
}

static size_t Held(const FrameWalk& walk) { return walk.held.size() - walk.begin; }
static const uint8_t* Bytes_Of(const FrameWalk& walk) { return walk.held.data() + walk.begin; }

/** Skips so many bytes; the search starts again after them. */
static void Pass(FrameWalk* walk, size_t count) {
  walk->begin += count;
  walk->taken += static_cast<int64_t>(count);
  walk->open = false;
  walk->wanted = 0;
  walk->endSearched = 0;
}

void Walk_Add(FrameWalk* walk, std::span<const uint8_t> bytes) {
  if (walk->begin > 0) {
    walk->held.erase(walk->held.begin(), walk->held.begin() + static_cast<std::ptrdiff_t>(walk->begin));
    walk->begin = 0;
  }
  walk->held.insert(walk->held.end(), bytes.begin(), bytes.end());
}

void Walk_End(FrameWalk* walk) {
  walk->ended = true;
  walk->wanted = 0;
}

void Walk_Resume(FrameWalk* walk) {
  Pass(walk, Held(*walk));
  walk->resumed = walk->taken;
  walk->ended = false;
}

/** Skips the bytes searched up to `reached`, except those in which a prefix may begin. In a run of FF the search looks at every
 *  second byte only: it must continue at one of those. */
static void Pass_Searched(FrameWalk* walk, size_t reached) {
  if (reached <= PrefixSize) return;
  const uint8_t* const bytes = Bytes_Of(*walk);
  const size_t place = reached - PrefixSize;
  size_t run = place;
  while (run > 0 && bytes[run - 1] == 0xFF) --run;
  Pass(walk, place - (place - run) % 2);
}

/** Finds a frame start and goes there. False when there is none yet; `wanted` is set then. */
static bool Find_Start(FrameWalk* walk) {
  while (Held(*walk) >= LeastSearchBytes) {
    const auto count = static_cast<int32_t>(Held(*walk));
    int32_t isJfif = 0, wanted = 0;
    const int32_t start = Frame_Sync_Strict(Bytes_Of(*walk), count, &isJfif, &wanted);
    if (start >= 0) {
      Pass(walk, static_cast<size_t>(start));
      const uint8_t* const bytes = Bytes_Of(*walk);
      const bool compact = bytes[0] == 0xFF && bytes[1] == 0xD8;
      walk->form = isJfif ? FrameForm::Jfif : compact ? FrameForm::Compact : FrameForm::Prefixed;
      walk->open = true;
      return true;
    }
    if (wanted == 0) {
      Pass_Searched(walk, static_cast<size_t>(count - (CompactHeaderSize - 1)));
      walk->wanted = Held(*walk) + 1;
      return false;
    }
    const auto candidate = static_cast<size_t>(count - (LeastJfifBytes - wanted));
    if (!walk->ended) {
      Pass_Searched(walk, candidate);
      walk->wanted = Held(*walk) + static_cast<size_t>(wanted);
      return false;
    }
    Pass(walk, candidate + 1);
  }
  return false;
}

/** Length of the open frame: 0 while it is not known, -1 for one longer than the store, which is no frame. */
static int64_t Open_Length(FrameWalk* walk) {
  const uint8_t* const bytes = Bytes_Of(*walk);
  if (walk->form != FrameForm::Jfif) {
    const int64_t length = walk->form == FrameForm::Prefixed ? Prefixed_Length(bytes) : Compact_Length(bytes);
    return length > FrameStoreSize ? -1 : length;
  }
  const auto count = static_cast<int32_t>(std::min<size_t>(Held(*walk), FrameStoreSize));
  const int32_t end = Find_EOI(bytes + walk->endSearched, count - walk->endSearched);
  if (end >= 0) return walk->endSearched + end + 2;
  walk->endSearched = std::max(count - 1, 0);
  return count == FrameStoreSize ? -1 : 0;
}

static void Read_Fields(const FrameWalk& walk, WalkedFrame* frame) {
  const uint8_t* const header = frame->bytes.data();
  const auto length = static_cast<int32_t>(frame->bytes.size());
  frame->width = frame->height = frame->quality = 0;
  if (walk.form == FrameForm::Jfif) {
    if (length >= LeastJfifBytes) Parse_JFIF_Header(header, &frame->width, &frame->height, &frame->quality);
    return;
  }
  const int32_t prefix = walk.form == FrameForm::Prefixed ? PrefixSize : 0;
  if (length >= prefix + CompactHeaderSize) Parse_Compact_Header(header + prefix, &frame->width, &frame->height, &frame->quality);
}

bool Walk_Next(FrameWalk* walk, WalkedFrame* frame) {
  while (Held(*walk) >= walk->wanted) {
    if (!walk->open && !Find_Start(walk)) return false;
    const int64_t length = Open_Length(walk);
    if (length < 0) {
      Pass(walk, walk->form == FrameForm::Prefixed ? PrefixSize + 2 : 2);
      continue;
    }
    if (length == 0 || length > static_cast<int64_t>(Held(*walk))) {
      walk->wanted = length == 0 ? Held(*walk) + 1 : static_cast<size_t>(length);
      return false;
    }
    frame->number = walk->frames++;
    frame->offset = walk->taken;
    frame->form = walk->form;
    frame->bytes = {Bytes_Of(*walk), static_cast<size_t>(length)};
    Read_Fields(*walk, frame);
    walk->frameBytes += length;
    Pass(walk, static_cast<size_t>(length));
    return true;
  }
  return false;
}

int64_t Walk_Bytes(const FrameWalk& walk) { return walk.taken + static_cast<int64_t>(Held(walk)); }

int64_t Walk_Skipped(const FrameWalk& walk) { return (walk.ended ? Walk_Bytes(walk) : walk.taken) - walk.frameBytes; }

bool Frame_Decodable(const WalkedFrame& frame) { return Picture_Size_Allowed(frame.width, frame.height) != 0; }
