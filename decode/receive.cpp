#include "decode/receive.h"

#include "decode/frame.h"
#include "decode/framing.h"
#include "decode/watermark_text.h"
#include "display/statistics.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

/** Milliseconds between two bit-rate texts. */
static constexpr uint32_t StatsPeriod = 3000;

void Count_Bits(JdecDecoder* decoder, int32_t length) {
  const uint32_t now = GetTickCount();
  if (decoder->statsTick == 0 || decoder->statsTick > now) decoder->statsTick = decoder->statsBaseTick = now;
  if (now - decoder->statsTick > StatsPeriod) {
    const double bits = decoder->statsBits[decoder->statsSlot];
    const double rate = bits / (now - decoder->statsBaseTick);
    char text[400];  // A double has at most 309 digits before the decimal point.
    std::snprintf(text, sizeof text, bits / 5.0 > 10000.0 ? "%.2f Kb\n" : "%.2f bps\n", rate);
    if (decoder->display) Set_OSD_Text(decoder->display, text);
    decoder->statsTick = now;
    decoder->statsSlot ^= 1;
  }
  decoder->statsBits[decoder->statsSlot] += length * 8.0;
}

/** Record_Chunk with the lock held. */
static void Write_Chunk(JdecDecoder* decoder, int32_t length, const uint8_t* data) {
  if (!decoder->recordFile || decoder->recordState == RecordOff) return;
  if (decoder->recordState == RecordWaiting) {
    int32_t isJfif = 0, hasPrefix = 0;
    const int32_t start = Frame_Sync(data, length, &isJfif, &hasPrefix);
    if (start < 0) return;
    decoder->recordState = RecordWriting;
    data += start;
    length -= start;
  }
  // Both flags are those of the last frame start found, so that a chunk is written or skipped as a whole.
  if (decoder->extendedHeader && decoder->skipRecording) return;
  DWORD written = 0;
  if (WriteFile(decoder->recordFile, data, static_cast<DWORD>(length), &written, nullptr) &&
      written >= static_cast<DWORD>(length))
    return;
  CloseHandle(decoder->recordFile);
  decoder->recordFile = nullptr;
  decoder->recordState = RecordOff;
}

void Record_Chunk(JdecDecoder* decoder, int32_t length, const uint8_t* data) {
  WaitForSingleObject(decoder->lock, INFINITE);
  Write_Chunk(decoder, length, data);
  ReleaseMutex(decoder->lock);
}

/** The bytes of assemblyBuffer that are not yet processed. */
struct Assembly {
  uint8_t* cursor;
  int32_t fill;         ///< Bytes from the cursor on.
  int32_t endSearched;  ///< Bytes from the cursor on that are known to hold no end marker.
};

static Assembly Open_Assembly(const JdecDecoder* decoder) {
  return {decoder->assemblyBuffer, decoder->assemblyFill, decoder->endSearched};
}

static void Advance_Assembly(Assembly* assembly, int32_t count) {
  assembly->cursor += count;
  assembly->fill -= count;
  assembly->endSearched = std::max(assembly->endSearched - count, 0);
}

/** Moves the bytes from the cursor on to the buffer's start. */
static void Close_Assembly(JdecDecoder* decoder, const Assembly& assembly) {
  if (assembly.cursor != decoder->assemblyBuffer && assembly.fill != 0) {
    std::memmove(decoder->assemblyBuffer, assembly.cursor, static_cast<size_t>(assembly.fill));
  }
  decoder->assemblyFill = assembly.fill;
  decoder->endSearched = assembly.endSearched;
}

static void Close_Frame(JdecDecoder* decoder) {
  decoder->frameLength = 0;
  decoder->frameOpen = 0;
}

static void Open_Frame(JdecDecoder* decoder, Assembly* assembly, int32_t start) {
  Advance_Assembly(assembly, start);
  decoder->frameOpen = 1;
}

/** Length of the JFIF frame at the cursor, or -1 while its end isn't there. No byte is searched twice, even if this start is
 *  given up and another one follows. */
static int32_t JFIF_Length(Assembly* assembly) {
  const int32_t count = std::min(assembly->fill, FrameStoreSize);
  // The last byte searched may be the first of the marker.
  const int32_t from = std::clamp(assembly->endSearched - 1, 0, count);
  const int32_t end = Find_EOI(assembly->cursor + from, count - from);
  assembly->endSearched = std::max(assembly->endSearched, end < 0 ? count : from + end);
  return end < 0 ? -1 : from + end + 2;
}

/** Length of the frame at the cursor; -1 for a JFIF frame whose end isn't there. */
static int64_t Frame_Length(const JdecDecoder* decoder, Assembly* assembly, bool isJfif) {
  if (isJfif) return JFIF_Length(assembly);
  return decoder->extendedHeader ? Prefixed_Length(assembly->cursor) : Compact_Length(assembly->cursor);
}

/** Gives up a start whose frame can't fit the store: the search continues after its FF D8. True if it did. */
static bool Give_Up_Start(JdecDecoder* decoder, Assembly* assembly, int64_t length) {
  if (length <= FrameStoreSize && !(length < 0 && assembly->fill >= FrameStoreSize)) return false;
  Advance_Assembly(assembly, decoder->extendedHeader ? PrefixSize + 2 : 2);
  Close_Frame(decoder);
  return true;
}

/** Moves the frame at the cursor into the frame store. */
static void Take_Frame(JdecDecoder* decoder, Assembly* assembly) {
  JdecFrameBuffer* const frame = decoder->codec->frame;
  std::memcpy(frame->data, assembly->cursor, static_cast<size_t>(decoder->frameLength));
  Advance_Assembly(assembly, decoder->frameLength);
  frame->length = decoder->frameLength;
  frame->position = 0;
}

/** Decodes the frame in the store, or without `decode` skips it. A status word that is not 0 is set to the check's result. */
static void Decode_And_Check(JdecDecoder* decoder, int32_t isJfif, bool decode, int32_t draw, int32_t* status) {
  if (!decode) {
    Watermark_Reset();
    return;
  }
  Decode_Frame(decoder, isJfif, draw);
  if (*status != 0) *status = Watermark_Check();
}

/** What happened to the bytes at the cursor. */
enum class Step { NeedBytes, NoStart, Unfinished, Taken, GivenUp };

/** Finds the next frame start for the pushing path. Step::Taken if one is at the cursor then. */
static Step Find_Start_For_Push(JdecDecoder* decoder, Assembly* assembly) {
  if (assembly->fill < LeastSearchBytes) return Step::NeedBytes;
  int32_t isJfif = 0, hasPrefix = 0;
  const int32_t start = Frame_Sync(assembly->cursor, assembly->fill, &isJfif, &hasPrefix);
  if (start < 0) {
    Advance_Assembly(assembly, assembly->fill);
    return Step::NoStart;
  }
  Open_Frame(decoder, assembly, start);
  decoder->extendedHeader = hasPrefix;
  if (hasPrefix) decoder->skipRecording = Prefix_Skips_Recording(assembly->cursor);
  return Step::Taken;
}

static Step Push_One_Frame(JdecDecoder* decoder, Assembly* assembly, int32_t* status) {
  if (!decoder->frameOpen) {
    const Step found = Find_Start_For_Push(decoder, assembly);
    if (found != Step::Taken) return found;
  }
  int32_t isJfif = 0, hasPrefix = 0;
  Frame_Sync(assembly->cursor, assembly->fill, &isJfif, &hasPrefix);
  const int64_t length = Frame_Length(decoder, assembly, isJfif != 0);
  if (Give_Up_Start(decoder, assembly, length)) return Step::GivenUp;
  decoder->frameLength = length < 0 ? assembly->fill + 1 : static_cast<int32_t>(length);
  if (decoder->frameLength > assembly->fill) return Step::Unfinished;
  Take_Frame(decoder, assembly);
  Decode_And_Check(decoder, isJfif, decoder->hidden == 0, 1, status);
  Close_Frame(decoder);
  return Step::Taken;
}

int32_t VELARTO_CDECL JDEC_Receive_Data(JdecDecoder* decoder, int32_t length, const uint8_t* data, int32_t* status) {
  if (!decoder || !data || length <= 0) return -1;
  int32_t noStatus = 0;
  if (!status) status = &noStatus;
  Count_Bits(decoder, length);
  Record_Chunk(decoder, length, data);

  bool taken = false;
  int32_t result = length;
  // The frame loop leaves room for more than a header each time, so each slice is at least one byte.
  for (int32_t remaining = length; remaining > 0;) {
    const int32_t slice = Uncut_Length(data, remaining, StreamBufferSize - decoder->assemblyFill);
    std::memcpy(decoder->assemblyBuffer + decoder->assemblyFill, data, static_cast<size_t>(slice));
    decoder->assemblyFill += slice;
    data += slice;
    remaining -= slice;

    Assembly assembly = Open_Assembly(decoder);
    Step step = Step::Taken;
    while (step == Step::Taken || step == Step::GivenUp) {
      step = Push_One_Frame(decoder, &assembly, status);
      taken |= step == Step::Taken;
    }
    result = step == Step::Unfinished ? decoder->frameLength : length;
    Close_Assembly(decoder, assembly);
  }
  return taken ? result : -1;
}

/** Offset of the JFIF start for which a poll waits because bytes of its header are missing, or -1. */
static int32_t Waiting_Start(const Assembly& assembly) {
  int32_t isJfif = 0, wanted = 0;
  if (assembly.fill < LeastSearchBytes) return -1;
  Frame_Sync_Strict(assembly.cursor, assembly.fill, &isJfif, &wanted);
  return wanted == 0 ? -1 : assembly.fill - (LeastJfifBytes - wanted);
}

static bool Fits(int32_t fill, uint32_t length) { return length <= static_cast<uint32_t>(StreamBufferSize - fill); }

/** Makes room for a chunk while a poll waits for the frame of a start: drops the bytes before that start. If that isn't enough,
 *  a JFIF start whose end isn't held is given up, as the bytes that it waits for can't come. False if the chunk is refused. */
static bool Make_Room(JdecDecoder* decoder, uint32_t length) {
  if (Fits(decoder->assemblyFill, length)) return true;
  Assembly assembly = Open_Assembly(decoder);
  int32_t isJfif = 1, hasPrefix = 0;
  if (decoder->frameOpen) {
    Frame_Sync(assembly.cursor, assembly.fill, &isJfif, &hasPrefix);
  } else {
    const int32_t start = Waiting_Start(assembly);
    if (start < 0) return false;
    Advance_Assembly(&assembly, start);
  }
  const bool fits = Fits(assembly.fill, length);
  if (!fits && isJfif && JFIF_Length(&assembly) < 0) {
    Advance_Assembly(&assembly, 2);
    Close_Frame(decoder);
  }
  Close_Assembly(decoder, assembly);
  return fits;
}

int32_t VELARTO_CDECL JDEC_Receive_Data_2(JdecDecoder* decoder, const uint8_t* data, uint32_t length) {
  if (!decoder || !data || length == 0 || !Make_Room(decoder, length)) return 0;
  std::memcpy(decoder->assemblyBuffer + decoder->assemblyFill, data, length);
  decoder->assemblyFill += static_cast<int32_t>(length);
  return std::max(JfifHeaderSize - decoder->assemblyFill, 0);
}

/** Results of JDEC_Check_Decode_Frame. */
enum PollCode : int32_t { PollRefused = 0, PollTaken = 1, PollNeedsBytes = 2, PollNoStart = 3, PollTooLong = 4 };

/** Finds the next frame start for the polling path. PollTaken if one is at the cursor then. */
static PollCode Find_Start_For_Poll(JdecDecoder* decoder, Assembly* assembly) {
  if (assembly->fill < LeastSearchBytes) return PollNoStart;
  int32_t isJfif = 0, wanted = 0;
  const int32_t start = Frame_Sync_Strict(assembly->cursor, assembly->fill, &isJfif, &wanted);
  if (start >= 0) {
    Open_Frame(decoder, assembly, start);
    return PollTaken;
  }
  if (wanted == 0) {
    Advance_Assembly(assembly, assembly->fill);
    return PollNoStart;
  }
  // In a full buffer the bytes before an incomplete start would leave no room for its missing ones.
  const bool full = assembly->cursor + assembly->fill == decoder->assemblyBuffer + StreamBufferSize;
  if (full) Advance_Assembly(assembly, assembly->fill - (LeastJfifBytes - wanted));
  return PollNeedsBytes;
}

/** Finds the next frame and its length, and gives up starts that can't be frames. PollTaken if all of it is at the cursor. */
static PollCode Find_Whole_Frame(JdecDecoder* decoder, Assembly* assembly, int32_t* isJfif) {
  for (;;) {
    if (!decoder->frameOpen) {
      const PollCode found = Find_Start_For_Poll(decoder, assembly);
      if (found != PollTaken) return found;
    }
    *isJfif = 0;
    int32_t hasPrefix = 0;
    Frame_Sync(assembly->cursor, assembly->fill, isJfif, &hasPrefix);
    decoder->extendedHeader = hasPrefix;
    const int64_t length = Frame_Length(decoder, assembly, *isJfif != 0);
    if (Give_Up_Start(decoder, assembly, length)) continue;
    if (length < 0) return PollNeedsBytes;
    decoder->frameLength = static_cast<int32_t>(length);
    return decoder->frameLength > assembly->fill ? PollNeedsBytes : PollTaken;
  }
}

int32_t VELARTO_CDECL JDEC_Check_Decode_Frame(JdecDecoder* decoder, int32_t decode, uint8_t* buffer, int32_t capacity,
                                              uint32_t* outLength, int32_t /*reserved*/, int32_t draw, int32_t* status) {
  if (!decoder || !buffer || capacity == 0) return PollRefused;
  int32_t noStatus = 0;
  if (!status) status = &noStatus;
  Assembly assembly = Open_Assembly(decoder);
  int32_t isJfif = 0;
  PollCode result = Find_Whole_Frame(decoder, &assembly, &isJfif);
  if (result == PollTaken) {
    if (outLength) *outLength = static_cast<uint32_t>(decoder->frameLength);
    if (decoder->frameLength > capacity) result = PollTooLong;
  }
  if (result == PollTaken) {
    std::memcpy(buffer, assembly.cursor, static_cast<size_t>(decoder->frameLength));
    Take_Frame(decoder, &assembly);
    Decode_And_Check(decoder, isJfif, decode != 0, draw, status);
    Close_Frame(decoder);
  }
  Close_Assembly(decoder, assembly);
  return result;
}
