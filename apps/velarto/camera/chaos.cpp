#include "apps/velarto/camera/chaos.h"

#include "decode/framing.h"
#include "decode/quant.h"

#include <algorithm>

static constexpr size_t MostGarbage = 4096;
static constexpr size_t MostFlips = 16;

Chaos Chaos_Start(const ChaosOptions& options) { return {options, std::mt19937(options.seed)}; }

static size_t Between(Chaos* chaos, size_t least, size_t most) {
  return least + static_cast<size_t>(chaos->generator()) % (most - least + 1);
}

static bool Happens(Chaos* chaos, double probability) {
  return static_cast<double>(chaos->generator()) / 4294967296.0 < probability;
}

/** Changes bytes of the entropy-coded data. */
static void Corrupt(Chaos* chaos, FrameForm form, std::vector<uint8_t>* bytes) {
  const bool jfif = form == FrameForm::Jfif;
  const size_t first = jfif ? JfifHeaderSize : form == FrameForm::Prefixed ? LeastSearchBytes : CompactHeaderSize;
  const size_t end = bytes->size() - std::min<size_t>(bytes->size(), jfif ? 2 : 0);
  if (end <= first) return;
  for (size_t i = Between(chaos, 1, MostFlips); i > 0; --i) {
    (*bytes)[Between(chaos, first, end - 1)] ^= static_cast<uint8_t>(Between(chaos, 1, 255));
  }
}

/** A header that announces `length` bytes after it, at most 65535. */
static std::vector<uint8_t> False_Compact(size_t length) {
  std::vector<uint8_t> header(CompactHeaderSize);
  Compact_Put_Header(header.data(), static_cast<int32_t>(std::min<size_t>(length, 65535)), 320, 240, 50);
  return header;
}

/** The beginnings of frames of all kinds. `room`: bytes up to the end of the frame that follows. */
static std::vector<uint8_t> False_Start(Chaos* chaos, size_t room) {
  std::vector<uint8_t> start;
  switch (chaos->generator() % 5) {
    case 0:
      return {0xFF, 0xD8};
    case 1:
      return {0xFF, 0xD8, 0xFF, 0xE0, 0, 0x10, 'J', 'F', 'I', 'F', 0};
    case 2: {
      uint16_t luma[64], chroma[64];
      Quant_Build(50, luma, chroma);
      start.resize(JfifHeaderSize);
      JfifCursor cursor = {start.data(), 0};
      JFIF_Write_Header(&cursor, 320, 240, luma, chroma);
      return start;
    }
    case 3:
      start.resize(PrefixSize);
      Prefix_Write(start.data(), 0);
      [[fallthrough]];
    default:
      const auto header = False_Compact(Between(chaos, 0, room));
      start.insert(start.end(), header.begin(), header.end());
      return start;
  }
}

/** Puts random bytes before the frame, every second time with something like a frame start among them. */
static void Add_Garbage(Chaos* chaos, std::vector<uint8_t>* bytes) {
  std::vector<uint8_t> garbage(Between(chaos, 1, MostGarbage));
  for (uint8_t& byte : garbage) byte = static_cast<uint8_t>(chaos->generator());
  if (Happens(chaos, 0.5)) {
    const size_t place = Between(chaos, 0, garbage.size() - 1);
    const size_t room = garbage.size() - place;
    auto start = False_Start(chaos, room > JfifHeaderSize ? room - JfifHeaderSize + bytes->size() : 0);
    start.resize(std::min(start.size(), room));
    std::copy(start.begin(), start.end(), garbage.begin() + static_cast<std::ptrdiff_t>(place));
  }
  bytes->insert(bytes->begin(), garbage.begin(), garbage.end());
}

ChaosHit Chaos_Apply(Chaos* chaos, FrameForm form, std::vector<uint8_t>* bytes) {
  const ChaosOptions& options = chaos->options;
  const ChaosHit hit = {Happens(chaos, options.cut), Happens(chaos, options.garbage), Happens(chaos, options.corrupt)};
  if (hit.corrupt) Corrupt(chaos, form, bytes);
  if (hit.cut && bytes->size() > 1) bytes->resize(Between(chaos, 1, bytes->size() - 1));
  if (hit.garbage) Add_Garbage(chaos, bytes);
  return hit;
}
