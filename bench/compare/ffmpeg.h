/* FFmpeg's codec for such frames and its pixel conversion, on one thread. */
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

/** A decoder for frames of that size. Null on failure; the encoder too. */
FfmpegDecoderHolder Ffmpeg_Decoder_New(int32_t width, int32_t height);

/** The frame in a packet, which the decoder takes without another copy. */
PacketHolder Ffmpeg_Packet(std::span<const uint8_t> jpeg);

/** Decodes to planes and converts them into *picture, which has the frame's size. */
bool Ffmpeg_Decode(FfmpegDecoder* decoder, const AVPacket* packet, Picture* picture);

/** scale: its quality scale, 1 (best) to 31. It uses the fixed codes of our frames, not optimised ones. */
FfmpegEncoderHolder Ffmpeg_Encoder_New(int32_t width, int32_t height, int32_t scale);

/** Converts the picture to planes and compresses them. Returns the bytes of the frame, 0 on failure. */
size_t Ffmpeg_Encode(FfmpegEncoder* encoder, const Picture& picture);

/** The scale at which the frame's size comes nearest to `bytes`; 0 on failure. */
int32_t Ffmpeg_Scale_For(const Picture& picture, size_t bytes);
