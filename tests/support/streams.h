/* Decoders that free themselves, and how tests feed them and look at their pictures. */
#pragma once

#include "decode/decoder.h"
#include "support/inputs.h"

using DecoderPtr = std::unique_ptr<JdecDecoder, Releaser<JDEC_Free>>;
inline DecoderPtr Shown_Decoder(HWND window, int32_t width, int32_t height) {
  DecoderPtr decoder(JDEC_New(width, height));
  if (decoder) JDEC_Draw_Init(decoder.get(), window);
  return decoder;
}

inline DecoderPtr Headless_Decoder(int32_t width, int32_t height) { return Shown_Decoder(nullptr, width, height); }

/** A path for a file that no other test uses, even one that runs at the same time. */
inline std::string Scratch_Path(const std::string& name) {
  return testing::TempDir() + "velarto-" + std::to_string(GetCurrentThreadId()) + "-" + name;
}

inline int32_t Push(JdecDecoder* decoder, const Bytes& bytes, int32_t* status = nullptr) {
  return JDEC_Receive_Data(decoder, (int32_t)bytes.size(), bytes.data(), status);
}

/** Gives bytes to the polling path. */
inline int32_t Store(JdecDecoder* decoder, const Bytes& bytes) {
  return JDEC_Receive_Data_2(decoder, bytes.data(), (uint32_t)bytes.size());
}

inline int32_t Poll(JdecDecoder* decoder, Bytes* frame = nullptr) {
  Bytes out(8192);
  uint32_t length = 0;
  const int32_t result = JDEC_Check_Decode_Frame(decoder, 1, out.data(), (int32_t)out.size(), &length, 0, 1, nullptr);
  if (frame) frame->assign(out.begin(), out.begin() + length);
  return result;
}

/** A picture of that decoder's size as a frame; empty if the encoder refuses. */
inline Bytes Compressed(JdecDecoder* encoder, int32_t quality, const Bytes& pixels, int32_t withMarkers, int32_t doubleRows = 0) {
  Bytes out(FrameStoreSize);
  out.resize(
      (size_t)JDEC_Compress_RGB888(encoder, quality, pixels.data(), 0, out.data(), FrameStoreSize, withMarkers, doubleRows));
  return out;
}

/** The current picture as a BMP file. */
inline Bytes Current_Picture(JdecDecoder* decoder) {
  uint8_t none = 0;
  Bytes bmp((size_t)JDEC_get_decompressed_bitmap_ex2(decoder, &none, 1));
  JDEC_get_decompressed_bitmap_ex2(decoder, bmp.data(), (int32_t)bmp.size());
  return bmp;
}

/** What a frame decodes to in a decoder of its own. */
inline Bytes Picture_Of(const TestFrame& frame) {
  const DecoderPtr decoder = Headless_Decoder(frame.width, frame.height);
  EXPECT_EQ(Push(decoder.get(), frame.compact), (int32_t)frame.compact.size());
  return Current_Picture(decoder.get());
}

/** Starts the library for each test. */
struct LibraryTest : testing::Test {
  LibraryTest() { JDEC_Init(); }
  ~LibraryTest() override { JDEC_Exit(); }
};

struct FramesTest : LibraryTest {
  const TestFrame small = Load_Frame("tile-48x48-q50.jpg", 50), middle = Load_Frame("tile-64x48-q75.jpg", 75),
                  large = Load_Frame("tile-96x64-q40.jpg", 40);
};
