/* libjpeg-turbo through its TurboJPEG interface, with the flags that make it fastest. */
#pragma once

#include "apps/velarto/picture.h"

#include <turbojpeg.h>

struct Turbo {
  tjhandle decoder = tjInitDecompress(), encoder = tjInitCompress();
  Turbo() = default;
  Turbo(const Turbo&) = delete;
  Turbo& operator=(const Turbo&) = delete;
  ~Turbo() {
    tjDestroy(decoder);
    tjDestroy(encoder);
  }
};

/** Its version. */
const char* Turbo_Version();

/** Decodes into *picture, which has the image's size. */
bool Turbo_Decode(const Turbo& turbo, std::span<const uint8_t> jpeg, Picture* picture);

/** Compresses into *jpeg, which must have the size that Turbo_Room gives. Returns the bytes written, 0 on failure. */
size_t Turbo_Encode(const Turbo& turbo, const Picture& picture, int32_t quality, std::vector<uint8_t>* jpeg);
size_t Turbo_Room(const Picture& picture);

/** A frame of the fixed JFIF form, as cameras send it, made by libjpeg's accurate transform. Empty on failure. */
std::vector<uint8_t> Turbo_Frame(const Turbo& turbo, const Picture& picture, int32_t quality);
