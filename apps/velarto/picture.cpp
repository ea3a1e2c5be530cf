#include "apps/velarto/picture.h"

#include "apps/velarto/output.h"
#include "decode/framing.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <vector>

static constexpr size_t BmpHeadSize = 54, BmpFileSizeAt = 2;

bool Picture_Push(JdecDecoder* decoder, const WalkedFrame& frame) {
  if (!Frame_Decodable(frame)) return false;
  const size_t least = frame.form == FrameForm::Jfif ? LeastJfifBytes : LeastSearchBytes;
  if (frame.bytes.size() >= least) {
    JDEC_Receive_Data(decoder, static_cast<int32_t>(frame.bytes.size()), frame.bytes.data(), nullptr);
    return true;
  }
  // The decoder doesn't look at so few bytes; with zeros behind them it does, and passes over those.
  std::vector<uint8_t> padded(frame.bytes.begin(), frame.bytes.end());
  padded.resize(least);
  JDEC_Receive_Data(decoder, static_cast<int32_t>(padded.size()), padded.data(), nullptr);
  return true;
}

/** The library's image has rows of exactly 3 * width bytes; a BMP file wants them at multiples of 4. */
static std::vector<uint8_t> Aligned_Rows(const std::vector<uint8_t>& image, size_t width, size_t height) {
  const size_t row = width * 3, pitch = (row + 3) / 4 * 4;
  std::vector<uint8_t> aligned(BmpHeadSize + pitch * height);
  std::copy_n(image.begin(), BmpHeadSize, aligned.begin());
  for (size_t y = 0; y < height; ++y) std::memcpy(&aligned[BmpHeadSize + y * pitch], &image[BmpHeadSize + y * row], row);
  for (size_t i = 0; i < 4; ++i) aligned[BmpFileSizeAt + i] = static_cast<uint8_t>(aligned.size() >> (8 * i));
  return aligned;
}

static std::vector<uint8_t> Picture_Image(JdecDecoder* decoder) {
  int32_t width = 0, height = 0;
  JDEC_get_size(decoder, &width, &height);
  // Zeroed: the last column and row of odd sizes are not written.
  std::vector<uint8_t> image(BmpHeadSize + size_t{3} * static_cast<size_t>(width) * static_cast<size_t>(height));
  JDEC_get_decompressed_bitmap_ex2(decoder, image.data(), static_cast<int32_t>(image.size()));
  if (width % 4 == 0) return image;
  return Aligned_Rows(image, static_cast<size_t>(width), static_cast<size_t>(height));
}

static bool Write_File(const std::string& path, const std::vector<uint8_t>& bytes, std::string* error) {
  FILE* const file = std::fopen(path.c_str(), "wb");
  if (!file) {
    *error = Error_Text();
    return false;
  }
  bool good = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  if (!good) *error = Error_Text();
  if (std::fclose(file) != 0 && good) {
    *error = Error_Text();
    good = false;
  }
  return good;
}

bool Picture_Save(JdecDecoder* decoder, const std::string& path, std::string* error) {
  const std::string temporary = path + ".part";
  std::error_code failure;
  std::string reason;
  if (Write_File(temporary, Picture_Image(decoder), &reason)) {
    std::filesystem::rename(temporary, path, failure);
    if (!failure) return true;
    reason = failure.message();
  }
  std::filesystem::remove(temporary, failure);
  *error = "can't write " + path + ": " + reason;
  return false;
}
