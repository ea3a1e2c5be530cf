#include "apps/velarto/picture_file.h"

#include "apps/velarto/jpeg.h"
#include "apps/velarto/sources/source.h"

#include <cstring>

/** Longest file that is read: a picture of the largest size at 4 bytes a pixel, and its header. */
static constexpr size_t MostFileBytes = (size_t{128} << 20) + 65536;
static constexpr size_t ReadChunk = 65536;

static bool Fail(std::string* error, const std::string& text) {
  *error = text;
  return false;
}

static bool Fail_Incomplete(std::string* error) { return Fail(error, "the file ends inside the picture"); }

// ---- BMP ----------------------------------------------------------------------------------------------------------------

static constexpr size_t BmpFileHeader = 14, BmpInfoHeader = 40, BmpMasks = 12;
enum : uint32_t { BmpPlain = 0, BmpBitFields = 3 };

static uint32_t Little(std::span<const uint8_t> bytes, size_t at, size_t count) {
  uint32_t value = 0;
  for (size_t i = 0; i < count; ++i) value |= static_cast<uint32_t>(bytes[at + i]) << (8 * i);
  return value;
}

struct BmpHeader {
  uint32_t pixelsAt = 0;
  uint32_t infoSize = 0;
  int64_t width = 0, height = 0;  ///< A negative height: top row first.
  uint32_t bits = 0, compression = 0, colors = 0;
};

static BmpHeader Bmp_Header(std::span<const uint8_t> bytes) {
  return {Little(bytes, 10, 4),
          Little(bytes, 14, 4),
          static_cast<int32_t>(Little(bytes, 18, 4)),
          static_cast<int32_t>(Little(bytes, 22, 4)),
          Little(bytes, 28, 2),
          Little(bytes, 30, 4),
          Little(bytes, 46, 4)};
}

/** 32 bits may also come with masks, if these are the usual ones. */
static bool Bmp_Readable(std::span<const uint8_t> bytes, const BmpHeader& header) {
  if (header.compression == BmpPlain) return header.bits == 8 || header.bits == 24 || header.bits == 32;
  constexpr size_t at = BmpFileHeader + BmpInfoHeader;
  return header.compression == BmpBitFields && header.bits == 32 && bytes.size() >= at + BmpMasks &&
         Little(bytes, at, 4) == 0xFF0000 && Little(bytes, at + 4, 4) == 0xFF00 && Little(bytes, at + 8, 4) == 0xFF;
}

/** The palette's 256 entries of 4 bytes; missing ones are black. */
static bool Bmp_Palette(std::span<const uint8_t> bytes, const BmpHeader& header, std::vector<uint8_t>* palette) {
  const size_t at = BmpFileHeader + size_t{header.infoSize},
               count = header.colors == 0 || header.colors > 256 ? 256 : header.colors;
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
  if (bytes.size() < BmpFileHeader + BmpInfoHeader) return Fail_Incomplete(error);
  const BmpHeader header = Bmp_Header(bytes);
  if (header.infoSize < BmpInfoHeader || !Bmp_Readable(bytes, header)) {
    return Fail(error, "unsupported BMP file: only uncompressed ones of 8, 24 or 32 bits can be read");
  }
  const bool topDown = header.height < 0;
  const int64_t rows = topDown ? -header.height : header.height, bytesPerPixel = header.bits / 8;
  const int64_t row = header.width * bytesPerPixel, pitch = (row + 3) / 4 * 4;
  // The size is checked first: with an absurd one the file is incomplete as well.
  if (!Picture_Size_Check(header.width, rows, error)) return false;
  std::vector<uint8_t> palette;
  if (header.bits == 8 && !Bmp_Palette(bytes, header, &palette)) return Fail_Incomplete(error);
  const auto available = static_cast<int64_t>(bytes.size()) - header.pixelsAt;
  if (available < pitch * (rows - 1) + row) return Fail_Incomplete(error);
  Picture_Allot(picture, header.width, rows);
  for (int64_t y = 0; y < rows; ++y) {
    const uint8_t* const from = &bytes[header.pixelsAt + static_cast<size_t>(pitch * (topDown ? rows - 1 - y : y))];
    Bmp_Row(from, palette.data(), header.bits, static_cast<size_t>(header.width), Picture_Row(picture, y));
  }
  return true;
}

// ---- PPM ----------------------------------------------------------------------------------------------------------------

static bool Blank(uint8_t c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/** Skips blanks and comments, at least one, and reads the number after them, limited to INT32_MAX. */
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
    return Fail(error, "the header of the PPM file is damaged or incomplete");
  }
  if (most != 255) return Fail(error, "unsupported PPM file: only samples of 0 to 255 can be read");
  if (!Picture_Size_Check(width, height, error)) return false;
  const size_t row = samples * static_cast<size_t>(width);
  if ((bytes.size() - at) / row < static_cast<size_t>(height)) return Fail_Incomplete(error);
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
  return Fail(error, bytes.empty() ? "the file is empty" : "not a BMP, PPM or JPEG picture");
}

/** Reads to the end. False, with *error, for more than MostFileBytes or a failure. */
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
  if (name.find("://") != std::string::npos) return Fail(error, name + ": pictures are read from files or standard input");
  if (!Source_Open(name, &stop, &source, error)) return false;
  std::vector<uint8_t> bytes;
  const bool read = Read_All(&source, &bytes, error);
  Source_Close(&source);
  if (read && Picture_Parse(bytes, picture, error)) return true;
  *error = name + ": " + *error;
  return false;
}
