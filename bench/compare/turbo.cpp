#include "bench/compare/turbo.h"

#include <cstdio>
#include <jpeglib.h>

#define TEXT_OF(number) #number
#define VERSION_TEXT(number) TEXT_OF(number)

const char* Turbo_Version() { return VERSION_TEXT(LIBJPEG_TURBO_VERSION); }

bool Turbo_Decode(const Turbo& turbo, std::span<const uint8_t> jpeg, Picture* picture) {
  return tjDecompress2(turbo.decoder, jpeg.data(), jpeg.size(), picture->pixels.data(), picture->width, 0, picture->height,
                       TJPF_BGR, TJFLAG_FASTDCT | TJFLAG_FASTUPSAMPLE | TJFLAG_BOTTOMUP) == 0;
}

static size_t Compress(const Turbo& turbo, const Picture& picture, int32_t quality, int flags, std::vector<uint8_t>* jpeg) {
  unsigned char* bytes = jpeg->data();
  unsigned long size = jpeg->size();
  const int result = tjCompress2(turbo.encoder, picture.pixels.data(), picture.width, 0, picture.height, TJPF_BGR, &bytes, &size,
                                 TJSAMP_420, quality, flags | TJFLAG_NOREALLOC | TJFLAG_BOTTOMUP);
  return result == 0 ? size : 0;
}

size_t Turbo_Encode(const Turbo& turbo, const Picture& picture, int32_t quality, std::vector<uint8_t>* jpeg) {
  return Compress(turbo, picture, quality, TJFLAG_FASTDCT, jpeg);
}

size_t Turbo_Room(const Picture& picture) { return tjBufSize(picture.width, picture.height, TJSAMP_420); }

std::vector<uint8_t> Turbo_Frame(const Turbo& turbo, const Picture& picture, int32_t quality) {
  std::vector<uint8_t> jpeg(Turbo_Room(picture));
  jpeg.resize(Compress(turbo, picture, quality, TJFLAG_ACCURATEDCT, &jpeg));
  return jpeg;
}
