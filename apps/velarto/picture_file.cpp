#include "apps/velarto/picture_file.h"

#include "apps/velarto/jpeg.h"
#include "apps/velarto/sources/source.h"

#include <cstring>

/** Longest file that is read: a picture of the largest size at 4 bytes a pixel, and its head. */
static constexpr size_t MostFileBytes = (size_t{128} << 20) + 65536;
static constexpr size_t ReadChunk = 65536;

static bool Fail(std::string* error, const std::string& text) {
  *error = text;
  return false;
}

static bool Fail_Cut(std::string* error) { return Fail(error, "the file ends inside the picture"); }

// ---- BMP ----------------------------------------------------------------------------------------------------------------

static constexpr size_t BmpFileHead = 14, BmpInfoHead = 40, BmpMasks = 12;
enum : uint32_t { BmpPlain = 0, BmpBitFields = 3 };

static uint32_t Little(std::span<const uint8_t> bytes, size_t at, size_t count) {
  uint32_t value = 0;
  for (size_t i = 0; i < count; ++i) value |= static_cast<uint32_t>(bytes[at + i]) << (8 * i);
  return value;
}

struct BmpHead {
  uint32_t pixelsAt = 0;
  uint32_t infoSize = 0;
  int64_t width = 0, height = 0;  ///< A negative height: top row first.
  uint32_t bits = 0, compression = 0, colors = 0;
};

static BmpHead Bmp_Head(std::span<const uint8_t> bytes) {
  return {Little(bytes, 10, 4),
          Little(bytes, 14, 4),
          static_cast<int32_t>(Little(bytes, 18, 4)),
          static_cast<int32_t>(Little(bytes, 22, 4)),
          Little(bytes, 28, 2),
          Little(bytes, 30, 4),
          Little(bytes, 46, 4)};
}

/** 32 bits may also come with masks, if these say what plain ones mean. */
static bool Bmp_Readable(std::span<const uint8_t> bytes, const BmpHead& head) {
  if (head.compression == BmpPlain) return head.bits == 8 || head.bits == 24 || head.bits == 32;
  constexpr size_t at = BmpFileHead + BmpInfoHead;
  return head.compression == BmpBitFields && head.bits == 32 && bytes.size() >= at + BmpMasks &&
         Little(bytes, at, 4) == 0xFF0000 && Little(bytes, at + 4, 4) == 0xFF00 && Little(bytes, at + 8, 4) == 0xFF;
}

/** The palette's 256 entries of 4 bytes; those that the file doesn't have are black. */
static bool Bmp_Palette(std::span<const uint8_t> bytes, const BmpHead& head, std::vector<uint8_t>* palette) {
  const size_t at = BmpFileHead + size_t{head.infoSize}, count = head.colors == 0 || head.colors > 256 ? 256 : head.colors;
  palette->assign(size_t{4} * 256, 0);
  if (at > bytes.size() || bytes.size() - at < 4 * count) return false;
  std::memcpy(palette->data(), &bytes[at], 4 * count);
  return true;
}

static void Bmp_Row(const uint8_t* from, const uint8_t* palette, uint32_t bits, size_t width, uint8_t* to) {
  if (bits == 24) {
    std::memcpy(to, from, 3 * width);
    return;
  }
  for (size_t x = 0; x < width; ++x) std::memcpy(to + 3 * x, bits == 8 ? palette + size_t{4} * from[x] : from + 4 * x, 3);
}

static bool Bmp_Parse(std::span<const uint8_t> bytes, Picture* picture, std::string* error) {
  if (bytes.size() < BmpFileHead + BmpInfoHead) return Fail_Cut(error);
  const BmpHead head = Bmp_Head(bytes);
  if (head.infoSize < BmpInfoHead || !Bmp_Readable(bytes, head)) {
    return Fail(error, "a BMP file of this kind can't be read, only uncompressed ones of 8, 24 or 32 bits");
  }
  const bool topDown = head.height < 0;
  const int64_t rows = topDown ? -head.height : head.height, bytesPerPixel = head.bits / 8;
  const int64_t row = head.width * bytesPerPixel, pitch = (row + 3) / 4 * 4;
  // The size is judged first: it may be absurd, and then the file is cut as well.
  if (!Picture_Size_Check(head.width, rows, error)) return false;
  std::vector<uint8_t> palette;
  if (head.bits == 8 && !Bmp_Palette(bytes, head, &palette)) return Fail_Cut(error);
  const auto available = static_cast<int64_t>(bytes.size()) - head.pixelsAt;
  if (available < pitch * (rows - 1) + row) return Fail_Cut(error);
  Picture_Allot(picture, head.width, rows);
  for (int64_t y = 0; y < rows; ++y) {
    const uint8_t* const from = &bytes[head.pixelsAt + static_cast<size_t>(pitch * (topDown ? rows - 1 - y : y))];
    Bmp_Row(from, palette.data(), head.bits, static_cast<size_t>(head.width), Picture_Row(picture, y));
  }
  return true;
}

// ---- PPM ----------------------------------------------------------------------------------------------------------------

static bool Blank(uint8_t c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/** Passes over blanks and comments, of which there must be some, and reads the number behind them; one that no size can be is cut
 *  short. */
static bool Ppm_Number(std::span<const uint8_t> bytes, size_t* at, int64_t* number) {
  const size_t start = *at;
  while (*at < bytes.size() && (Blank(bytes[*at]) || bytes[*at] == '#')) {
    if (bytes[*at] == '#') {
      while (*at < bytes.size() && bytes[*at] != '\n' && bytes[*at] != '\r') ++*at;
    } else {
      ++*at;
    }
  }
  const size_t digits = *at;
  for (*number = 0; *at < bytes.size() && bytes[*at] >= '0' && bytes[*at] <= '9'; ++*at) {
    *number = std::min<int64_t>(*number * 10 + bytes[*at] - '0', INT32_MAX);
  }
  return digits > start && *at > digits;
}

static bool Ppm_Parse(std::span<const uint8_t> bytes, Picture* picture, std::string* error) {
  const size_t samples = bytes[1] == '6' ? 3 : 1;
  size_t at = 2;
  int64_t width = 0, height = 0, most = 0;
  if (!Ppm_Number(bytes, &at, &width) || !Ppm_Number(bytes, &at, &height) || !Ppm_Number(bytes, &at, &most) ||
      at >= bytes.size() || !Blank(bytes[at++])) {
    return Fail(error, "the head of the PPM file is damaged or cut");
  }
  if (most != 255) return Fail(error, "of PPM files only those with samples of 0 to 255 can be read");
  if (!Picture_Size_Check(width, height, error)) return false;
  const size_t row = samples * static_cast<size_t>(width);
  if ((bytes.size() - at) / row < static_cast<size_t>(height)) return Fail_Cut(error);
  Picture_Allot(picture, width, height);
  const uint8_t* from = &bytes[at];
  for (int64_t y = height - 1; y >= 0; --y) {
    uint8_t* to = Picture_Row(picture, y);
    for (int64_t x = 0; x < width; ++x, from += samples, to += 3) {
      to[0] = from[samples - 1];
      to[1] = from[samples / 2];
      to[2] = from[0];
    }
  }
  return true;
}

// ---- Any ----------------------------------------------------------------------------------------------------------------

bool Picture_Parse(std::span<const uint8_t> bytes, Picture* picture, std::string* error) {
  const auto begins = [bytes](const std::string& text) {
    return bytes.size() >= text.size() && std::memcmp(bytes.data(), text.data(), text.size()) == 0;
  };
  if (begins("BM")) return Bmp_Parse(bytes, picture, error);
  if (begins("P6") || begins("P5")) return Ppm_Parse(bytes, picture, error);
  if (begins("\xFF\xD8\xFF")) return Jpeg_Read(bytes, picture, error);
  return Fail(error, bytes.empty() ? "the file is empty" : "neither a BMP, a PPM nor a JPEG picture");
}

/** Reads to the end, or until it is too much. */
static bool Read_All(Source* source, std::vector<uint8_t>* bytes, std::string* error) {
  int64_t count = 1;
  for (size_t held = 0; count > 0; held += static_cast<size_t>(count)) {
    if (held > MostFileBytes) return Fail(error, "the file is too large to be a picture");
    bytes->resize(held + ReadChunk);
    count = Source_Read(source, {bytes->data() + held, ReadChunk}, error);
    if (count < 0) return false;
    bytes->resize(held + static_cast<size_t>(count));
  }
  return true;
}

bool Picture_Read(const std::string& name, Picture* picture, std::string* error) {
  const std::atomic<bool> stop = false;
  Source source;
  if (name.find("://") != std::string::npos) return Fail(error, name + ": a picture comes from a file or standard input");
  if (!Source_Open(name, &stop, &source, error)) return false;
  std::vector<uint8_t> bytes;
  const bool read = Read_All(&source, &bytes, error);
  Source_Close(&source);
  if (read && Picture_Parse(bytes, picture, error)) return true;
  *error = name + ": " + *error;
  return false;
}
