#include "apps/velarto/jpeg.h"
#include "decode/frame_header.h"

bool Jpeg_Read(std::span<const uint8_t> /*bytes*/, Picture* /*picture*/, std::string* error) {
  *error = "JPEG images can't be read on this platform, only BMP and PPM";
  return false;
}

bool Jpeg_Sound(std::span<const uint8_t> bytes) {
  int32_t width = 0, height = 0, quality = 0;
  return bytes.size() >= LeastJfifBytes && Parse_JFIF_Header(bytes.data(), &width, &height, &quality) && width % 16 == 0 &&
         height % 16 == 0;
}

bool Jpeg_Write(const Picture& /*picture*/, int32_t /*quality*/, std::vector<uint8_t>* /*bytes*/, std::string* error) {
  *error = "its size is not a multiple of 16, and on this platform pictures can't be compressed as JPEG";
  return false;
}
