#include "decode/ring.h"

#include <algorithm>
#include <cstring>

/** Milliseconds that the producer waits while little room is left. */
static constexpr DWORD NearlyFullPause = 150, FillingPause = 50;

/** Of `count` bytes from a position, those before the end of the store, where a copy is split. */
static int32_t Ring_First_Part(const JdecDecoder* decoder, const uint8_t* position, int32_t count) {
  return std::min(count, static_cast<int32_t>(decoder->ringEnd - position));
}

static uint8_t* Ring_Advance(const JdecDecoder* decoder, uint8_t* position, int32_t count) {
  position += count;
  return position >= decoder->ringEnd ? position - decoder->ringSize : position;
}

int32_t VELARTO_CDECL JDEC_query_decode_buffer_count(JdecDecoder* decoder) {
  if (!decoder) return 0;
  WaitForSingleObject(decoder->lock, INFINITE);
  const int32_t free = decoder->ringSize - decoder->ringFill;
  const int32_t size = decoder->ringSize;
  ReleaseMutex(decoder->lock);
  // Without the lock, so that the consumer can make room.
  if (free < size / 8) {
    Sleep(NearlyFullPause);
  } else if (free < size / 5) {
    Sleep(FillingPause);
  }
  return free;
}

int32_t VELARTO_CDECL JDEC_write_decode_buffer(JdecDecoder* decoder, const uint8_t* data, int32_t length) {
  if (!decoder || !data || length <= 0) return 0;
  WaitForSingleObject(decoder->lock, INFINITE);
  const int32_t count = std::min(length, decoder->ringSize - decoder->ringFill);
  const int32_t first = Ring_First_Part(decoder, decoder->ringWrite, count);
  std::memcpy(decoder->ringWrite, data, static_cast<size_t>(first));
  std::memcpy(decoder->ringStart, data + first, static_cast<size_t>(count - first));
  decoder->ringWrite = Ring_Advance(decoder, decoder->ringWrite, count);
  decoder->ringFill += count;
  ReleaseMutex(decoder->lock);
  return count;
}

int32_t Ring_Read(JdecDecoder* decoder, uint8_t* buffer, int32_t length) {
  WaitForSingleObject(decoder->lock, INFINITE);
  decoder->hidden = decoder->ringFill > decoder->ringSize * 3 / 4;
  const int32_t count = std::clamp(length, 0, decoder->ringFill);
  if (count > 0) {
    const int32_t first = Ring_First_Part(decoder, decoder->ringRead, count);
    std::memcpy(buffer, decoder->ringRead, static_cast<size_t>(first));
    std::memcpy(buffer + first, decoder->ringStart, static_cast<size_t>(count - first));
    decoder->ringRead = Ring_Advance(decoder, decoder->ringRead, count);
    decoder->ringFill -= count;
  }
  ReleaseMutex(decoder->lock);
  return count;
}
