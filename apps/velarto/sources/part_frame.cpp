#include "apps/velarto/sources/part_frame.h"

#include "apps/velarto/frame_maker.h"
#include "apps/velarto/jpeg.h"
#include "decode/decoder.h"
#include "decode/framing.h"
#include "decode/quant.h"

#include <algorithm>

/** Qualities to try in turn until the frame fits a frame store. */
static constexpr int32_t frameQualities[] = {90, 75, 60, 45, 30, 15, 0};

/** Version, density and thumbnail size in a JFIF header: they don't change the picture. */
static constexpr size_t JfifFreeBegin = 11, JfifFreeEnd = 20;

/** A reader derives the quality from one table entry and assumes the code tables. Is the whole header the one of that quality,
 * and the size one of whole macroblocks? */
static bool Jfif_As_Assumed(std::span<const uint8_t> part) {
  int32_t width = 0, height = 0, quality = 0;
  if (!Parse_JFIF_Header(part.data(), &width, &height, &quality)) return false;
  if (width % 16 != 0 || height % 16 != 0 || !Picture_Size_Allowed(width, height)) return false;
  uint16_t luma[64], chroma[64];
  Quant_Build(quality, luma, chroma);
  uint8_t header[JfifHeaderSize];
  JfifCursor cursor = {header, 0};
  JFIF_Write_Header(&cursor, width, height, luma, chroma);
  return std::equal(header, header + JfifFreeBegin, part.begin()) &&
         std::equal(header + JfifFreeEnd, header + JfifHeaderSize, part.begin() + JfifFreeEnd);
}

/** Length of the frame that the part starts with; 0 if it is incomplete. */
static size_t Frame_Length(std::span<const uint8_t> part, bool jfif) {
  const auto count = static_cast<int32_t>(std::min<size_t>(part.size(), FrameStoreSize));
  if (jfif) {
    const int32_t end = Jfif_As_Assumed(part) ? Find_EOI(part.data(), count) : -1;
    return end < 0 ? 0 : static_cast<size_t>(end) + 2;
  }
  const bool compact = part[0] == 0xFF;
  const int32_t prefix = compact ? 0 : PrefixSize;
  const uint8_t* const header = part.data() + prefix;
  int32_t width = 0, height = 0, quality = 0;
  Parse_Compact_Header(header, &width, &height, &quality);
  const int64_t length = compact ? Compact_Length(header) : Prefixed_Length(part.data());
  // The low half of a prefixed length wraps: the length may be less than the header's.
  const bool whole = length >= prefix + CompactHeaderSize && length <= count;
  return whole && Picture_Size_Allowed(width, height) ? static_cast<size_t>(length) : 0;
}

static bool Compress(PartConverter* converter, const Picture& picture, std::vector<uint8_t>* stream) {
  std::string ignored;
  if (!Decoder_Fit(&converter->decoder, picture.width, picture.height, &ignored)) return false;
  std::vector<uint8_t> frame;
  for (const int32_t quality : frameQualities) {
    if (!Frame_Make(converter->decoder.get(), picture, {FrameForm::Prefixed, quality, {}}, &frame, &ignored)) continue;
    stream->insert(stream->end(), frame.begin(), frame.end());
    return true;
  }
  return false;
}

bool Part_To_Frame(PartConverter* converter, std::span<const uint8_t> part, std::vector<uint8_t>* stream) {
  // Some servers send more than one blank line after a part's header.
  while (!part.empty() && (part[0] == '\r' || part[0] == '\n')) part = part.subspan(1);
  const auto searched = static_cast<int32_t>(std::min<size_t>(part.size(), LeastJfifBytes));
  int32_t jfif = 0, wanted = 0;
  if (Frame_Sync_Strict(part.data(), searched, &jfif, &wanted) == 0) {
    const size_t length = Frame_Length(part, jfif != 0);
    stream->insert(stream->end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(length));
    if (length > 0 || !jfif) return length > 0;
  }
  if (part.size() < 2 || part[0] != 0xFF || part[1] != 0xD8) return false;
  Picture picture;
  std::string ignored;
  return Jpeg_Read(part, &picture, &ignored) && Compress(converter, Picture_Coded_Part(std::move(picture)), stream);
}
