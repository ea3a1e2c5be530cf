/* Pictures of another decoder, and how far ours differ from them. */
#pragma once

#include "support/streams.h"

#include <array>
#include <cmath>
#include <cstdio>

/** A JPEG file decoded by djpeg: a BMP file of 24 bits. Empty if djpeg is missing or gives a warning. */
inline Bytes Decoded_By_Djpeg(const std::string& path) {
  FILE* const pipe = popen(("djpeg -strict -dct fast -nosmooth -bmp '" + path + "'").c_str(), "r");
  Bytes bmp;
  for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) bmp.push_back((uint8_t)c);
  return pclose(pipe) == 0 ? bmp : Bytes();
}

/** Peak signal to noise ratio of blue, green and red in decibels. */
inline std::array<double, 3> Psnr(const Bytes& a, const Bytes& b) {
  std::array<double, 3> sums{};
  for (size_t i = 54; i < a.size(); ++i) sums[i % 3] += std::pow(a[i] - b[i], 2);
  for (double& sum : sums) sum = 10 * std::log10(255.0 * 255 / std::max(sum / ((double)(a.size() - 54) / 3), 1e-9));
  return sums;
}
