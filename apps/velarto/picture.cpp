#include "apps/velarto/picture.h"

#include "apps/velarto/frame_maker.h"
#include "apps/velarto/jpeg.h"
#include "apps/velarto/whole_file.h"
#include "decode/frame.h"
#include "decode/receive.h"

#include <algorithm>
#include <cstring>

static constexpr size_t BmpHeaderSize = 54, BmpFileSizeAt = 2;
static constexpr int32_t MacroblockSide = 16;
/** libjpeg quality of pictures that are compressed again. */
static constexpr int32_t SecondQuality = 90;

bool Decoder_Fit(DecoderHolder* decoder, int32_t width, int32_t height, std::string* error) {
  bool made = false;
  if (*decoder) {
    made = (decoder->get()->width == width && decoder->get()->height == height) ||
           Decoder_Change_Size(decoder->get(), width, height);
  } else {
    decoder->reset(JDEC_New(width, height));
    made = JDEC_Draw_Init(decoder->get(), nullptr) != 0;
  }
  if (!made) *error = "no memory for pictures of " + std::to_string(width) + "x" + std::to_string(height);
  return made;
}

bool Picture_Decode(JdecDecoder* decoder, const WalkedFrame& frame) {
  if (!Frame_Decodable(frame)) return false;
  Count_Bits(decoder, static_cast<int32_t>(frame.bytes.size()));
  Decode_Delimited_Frame(decoder, frame.bytes, frame.form, true);
  return true;
}

/** The library's image has rows of exactly 3 * width bytes; in a BMP file a row is a multiple of 4 bytes. */
static std::vector<uint8_t> Aligned_Rows(const std::vector<uint8_t>& image, size_t width, size_t height) {
  const size_t row = width * 3, pitch = (row + 3) / 4 * 4;
  std::vector<uint8_t> aligned(BmpHeaderSize + pitch * height);
  std::copy_n(image.begin(), BmpHeaderSize, aligned.begin());
  for (size_t y = 0; y < height; ++y) std::memcpy(&aligned[BmpHeaderSize + y * pitch], &image[BmpHeaderSize + y * row], row);
  for (size_t i = 0; i < 4; ++i) aligned[BmpFileSizeAt + i] = static_cast<uint8_t>(aligned.size() >> (8 * i));
  return aligned;
}

static std::vector<uint8_t> Picture_Image(JdecDecoder* decoder) {
  int32_t width = 0, height = 0;
  JDEC_get_size(decoder, &width, &height);
  // Zeroed: the last column and row of odd sizes are not written.
  std::vector<uint8_t> image(BmpHeaderSize + size_t{3} * static_cast<size_t>(width) * static_cast<size_t>(height));
  JDEC_get_decompressed_bitmap_ex2(decoder, image.data(), static_cast<int32_t>(image.size()));
  if (width % 4 == 0) return image;
  return Aligned_Rows(image, static_cast<size_t>(width), static_cast<size_t>(height));
}

bool Picture_Save(JdecDecoder* decoder, const std::string& path, std::string* error) {
  const std::vector<uint8_t> image = Picture_Image(decoder);
  return Write_Whole_File(
      path, [&image](FILE* file, std::string*) { return Put_Bytes(file, image); }, error);
}

static Picture Decoder_Picture(JdecDecoder* decoder) {
  Picture picture;
  JDEC_get_size(decoder, &picture.width, &picture.height);
  const uint8_t* const raster = JDEC_get_decompressed_bitmap(decoder);
  picture.pixels.assign(raster, raster + size_t{3} * static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height));
  return picture;
}

bool Picture_Save_Jpeg(JdecDecoder* decoder, const WalkedFrame& frame, const std::string& path, std::string* error) {
  const bool jfif = frame.form == FrameForm::Jfif;
  const bool sound = Jpeg_Sound(jfif ? frame.bytes : Frame_To_Jfif(frame.bytes, frame.form));
  if (sound && Store_Frame(decoder->codec, frame.bytes)) {
    const auto write = [decoder](FILE* file, std::string*) {
      return JDEC_Write_JFIF_File(decoder, file) == 2 && !std::ferror(file);
    };
    return Write_Whole_File(path, write, error);
  }
  std::vector<uint8_t> bytes;
  Picture_Decode(decoder, frame);
  if (!Jpeg_Write(Decoder_Picture(decoder), SecondQuality, &bytes, error)) {
    *error = "can't write " + path + ": " + *error;
    return false;
  }
  return Write_Whole_File(
      path, [&bytes](FILE* file, std::string*) { return Put_Bytes(file, bytes); }, error);
}

bool Picture_Size_Check(int64_t width, int64_t height, std::string* error) {
  const std::string size = std::to_string(width) + "x" + std::to_string(height);
  if (width < MacroblockSide || height < MacroblockSide) {
    *error = "a picture of " + size + " is too small: a frame has whole blocks of 16x16";
    return false;
  }
  if (width > MaxPictureSide || height > MaxPictureSide ||
      !Picture_Size_Allowed(static_cast<int32_t>(width), static_cast<int32_t>(height))) {
    *error = "a picture of " + size + " is too large: a frame has sides of at most " + std::to_string(MaxPictureSide) +
             " and at most " + std::to_string(MaxMacroblocks) + " blocks of 16x16";
    return false;
  }
  return true;
}

void Picture_Allot(Picture* picture, int64_t width, int64_t height) {
  picture->width = static_cast<int32_t>(width);
  picture->height = static_cast<int32_t>(height);
  picture->pixels.assign(static_cast<size_t>(width * height * 3), 0);
}

uint8_t* Picture_Row(Picture* picture, int64_t y) { return &picture->pixels[static_cast<size_t>(y * 3 * picture->width)]; }

Picture Picture_Coded_Part(Picture picture) {
  const int32_t width = picture.width / MacroblockSide * MacroblockSide,
                height = picture.height / MacroblockSide * MacroblockSide;
  if (width == picture.width && height == picture.height) return picture;
  Picture part;
  Picture_Allot(&part, width, height);
  for (int32_t y = 0; y < height; ++y) {
    std::memcpy(Picture_Row(&part, y), Picture_Row(&picture, picture.height - height + y), static_cast<size_t>(width) * 3);
  }
  return part;
}
