#include "decode/watermark_text.h"

#include "platform/lock.h"
#include "velarto.h"

#include <cstring>
#include <string_view>

/** The text that Watermark_Check compares with. Nothing sets another one. */
static constexpr char watermarkPattern[] = "";

static ModuleLock watermarkLock;
static uint8_t watermarkText[WatermarkRoom];
static int32_t watermarkLength = 0;

void Watermark_Publish(const WatermarkCollector& collector) {
  const LockHold hold(watermarkLock);
  std::memcpy(watermarkText, collector.text, static_cast<size_t>(collector.length));
  watermarkLength = collector.length;
}

void Watermark_Reset() {
  const LockHold hold(watermarkLock);
  watermarkLength = 0;
}

int32_t Watermark_Read(uint8_t* buffer, int32_t capacity) {
  const LockHold hold(watermarkLock);
  if (buffer && capacity >= watermarkLength) std::memcpy(buffer, watermarkText, static_cast<size_t>(watermarkLength));
  return watermarkLength;
}

int32_t Watermark_Check() {
  const LockHold hold(watermarkLock);
  const auto held = static_cast<size_t>(watermarkLength);
  std::string_view text(reinterpret_cast<const char*>(watermarkText), held);
  text = text.substr(0, text.find('\0'));
  if (text.empty()) return 0;
  for (const size_t from : {size_t{0}, held / 2}) {
    const size_t at = text.find(watermarkPattern, from);
    if (at != std::string_view::npos && at % text.size() == 0) return 0;
  }
  return 1;
}

int32_t VELARTO_CDECL JDEC_read_watermark_string(JdecDecoder* /*decoder*/, uint8_t* buffer, int32_t capacity) {
  return Watermark_Read(buffer, capacity);
}
