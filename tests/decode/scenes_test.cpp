// Pictures of another encoder, decoded here and by djpeg.
#include "support/streams.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace {

/** The file as djpeg decodes it: the pixels of a BMP of 24 bits. */
Bytes Decoded_By_Djpeg(const std::string& name) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(
      popen(("djpeg -dct fast -nosmooth -bmp '" + Data_Path(name) + "'").c_str(), "r"), pclose);
  Bytes bmp;
  for (int c = fgetc(pipe.get()); c != EOF; c = fgetc(pipe.get())) bmp.push_back((uint8_t)c);
  return bmp;
}

/** Peak signal to noise ratio of blue, green and red in decibels. */
std::array<double, 3> Psnr(const Bytes& a, const Bytes& b) {
  std::array<double, 3> sums{};
  for (size_t i = 54; i < a.size(); ++i) sums[i % 3] += std::pow(a[i] - b[i], 2);
  for (double& sum : sums) sum = 10 * std::log10(255.0 * 255 / std::max(sum / ((double)(a.size() - 54) / 3), 1e-9));
  return sums;
}

TEST_F(LibraryTest, ScenesLookAsAnotherDecoderShowsThem) {
  // Of blue, green and red; green is one brighter here where chroma is neutral.
  const struct {
    const char* name;
    int32_t quality;
    std::array<double, 3> least;
  } scenes[] = {{"scene-q25.jpg", 25, {57, 51, 59}}, {"scene-q50.jpg", 50, {57, 50, 58}}, {"scene-q75.jpg", 75, {54, 49, 55}}};
  for (const auto& [name, quality, least] : scenes) {
    const TestFrame frame = Load_Frame(name, quality);
    const DecoderPtr decoder = Headless_Decoder(16, 16);
    EXPECT_EQ(Push(decoder.get(), frame.jfif), (int32_t)frame.jfif.size());
    EXPECT_EQ(JDEC_Get_Quality(decoder.get()), quality);
    const Bytes ours = Picture(decoder.get()), theirs = Decoded_By_Djpeg(name);
    ASSERT_EQ(ours.size(), theirs.size()) << "needs djpeg";
    const std::array<double, 3> psnr = Psnr(ours, theirs);
    for (size_t i = 0; i < 3; ++i) EXPECT_GT(psnr[i], least[i]) << name << ", channel " << i;
    EXPECT_EQ(Picture_Of(frame), ours) << "compact and JFIF form differ";
  }
}

}  // namespace
