/* FFmpeg's codec for such frames and its conversion of pixels, one thread each. */
#pragma once

#include "apps/velarto/picture.h"

struct AVPacket;

/** Its version. */
const char* Ffmpeg_Version();

struct FfmpegDecoder;
struct FfmpegEncoder;
struct FfmpegRelease {
  void operator()(FfmpegDecoder* decoder) const;
  void operator()(FfmpegEncoder* encoder) const;
  void operator()(AVPacket* packet) const;
};
using FfmpegDecoderHolder = std::unique_ptr<FfmpegDecoder, FfmpegRelease>;
using FfmpegEncoderHolder = std::unique_ptr<FfmpegEncoder, FfmpegRelease>;
using PacketHolder = std::unique_ptr<AVPacket, FfmpegRelease>;

/** A decoder for frames of that size. Null on failure, as with the encoder. */
FfmpegDecoderHolder Ffmpeg_Decoder_New(int32_t width, int32_t height);

/** The frame as the decoder takes it without copying it once more. */
PacketHolder Ffmpeg_Packet(std::span<const uint8_t> jpeg);

/** Decodes to planes and converts those into *picture, which has the frame's size. */
bool Ffmpeg_Decode(FfmpegDecoder* decoder, const AVPacket* packet, Picture* picture);

/** scale: what it calls the quality, 1 (best) to 31; the codes are the fixed ones of our frames, not made for each picture. */
FfmpegEncoderHolder Ffmpeg_Encoder_New(int32_t width, int32_t height, int32_t scale);

/** Converts the picture into planes and compresses those. Gives the bytes of the frame, 0 on failure. */
size_t Ffmpeg_Encode(FfmpegEncoder* encoder, const Picture& picture);

/** The scale at which the frame's size comes nearest to `bytes`; 0 on failure. */
int32_t Ffmpeg_Scale_For(const Picture& picture, size_t bytes);
