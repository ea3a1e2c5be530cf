#include "bench/compare/ffmpeg.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

#include <cstring>

/** What decoder and encoder both need. */
struct FfmpegParts {
  AVCodecContext* context = nullptr;
  AVFrame* frame = nullptr;
  SwsContext* scaler = nullptr;
};

struct FfmpegDecoder {
  FfmpegParts parts;
};

struct FfmpegEncoder {
  FfmpegParts parts;
  AVPacket* packet = nullptr;
};

static void Free_Parts(FfmpegParts* parts) {
  avcodec_free_context(&parts->context);
  av_frame_free(&parts->frame);
  sws_freeContext(parts->scaler);
}

void FfmpegRelease::operator()(FfmpegDecoder* decoder) const {
  Free_Parts(&decoder->parts);
  delete decoder;
}

void FfmpegRelease::operator()(FfmpegEncoder* encoder) const {
  Free_Parts(&encoder->parts);
  av_packet_free(&encoder->packet);
  delete encoder;
}

void FfmpegRelease::operator()(AVPacket* packet) const { av_packet_free(&packet); }

const char* Ffmpeg_Version() {
  av_log_set_level(AV_LOG_ERROR);  // It would warn of the pixel format that such frames have.
  return av_version_info();
}

static bool Make_Parts(FfmpegParts* parts, const AVCodec* codec, int32_t width, int32_t height, AVPixelFormat from,
                       AVPixelFormat to) {
  if (!codec) return false;
  parts->context = avcodec_alloc_context3(codec);
  parts->frame = av_frame_alloc();
  parts->scaler = sws_getContext(width, height, from, width, height, to, SWS_FAST_BILINEAR, nullptr, nullptr, nullptr);
  if (!parts->context || !parts->frame || !parts->scaler) return false;
  parts->context->width = width;
  parts->context->height = height;
  parts->context->thread_count = 1;
  parts->context->pix_fmt = AV_PIX_FMT_YUVJ420P;
  parts->context->time_base = {1, 25};
  parts->context->flags2 |= AV_CODEC_FLAG2_FAST;
  return true;
}

FfmpegDecoderHolder Ffmpeg_Decoder_New(int32_t width, int32_t height) {
  FfmpegDecoderHolder decoder(new FfmpegDecoder);
  const AVCodec* const codec = avcodec_find_decoder(AV_CODEC_ID_MJPEG);
  if (!Make_Parts(&decoder->parts, codec, width, height, AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_BGR24) ||
      avcodec_open2(decoder->parts.context, codec, nullptr) < 0) {
    return nullptr;
  }
  return decoder;
}

PacketHolder Ffmpeg_Packet(std::span<const uint8_t> jpeg) {
  PacketHolder packet(av_packet_alloc());
  if (!packet || av_new_packet(packet.get(), static_cast<int>(jpeg.size())) < 0) return nullptr;
  std::memcpy(packet->data, jpeg.data(), jpeg.size());
  return packet;
}

/** The picture's top row, the last one in memory, and the distance to the next. */
static uint8_t* Top_Row(const Picture& picture, int* pitch) {
  *pitch = -3 * picture.width;
  return const_cast<uint8_t*>(&picture.pixels[3 * static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height - 1)]);
}

bool Ffmpeg_Decode(FfmpegDecoder* decoder, const AVPacket* packet, Picture* picture) {
  AVFrame* const frame = decoder->parts.frame;
  if (avcodec_send_packet(decoder->parts.context, packet) < 0 || avcodec_receive_frame(decoder->parts.context, frame) < 0) {
    return false;
  }
  int pitch = 0;
  uint8_t* const top = Top_Row(*picture, &pitch);
  const int rows = sws_scale(decoder->parts.scaler, frame->data, frame->linesize, 0, frame->height, &top, &pitch);
  av_frame_unref(frame);
  return rows == picture->height;
}

FfmpegEncoderHolder Ffmpeg_Encoder_New(int32_t width, int32_t height, int32_t scale) {
  FfmpegEncoderHolder encoder(new FfmpegEncoder);
  FfmpegParts* const parts = &encoder->parts;
  const AVCodec* const codec = avcodec_find_encoder(AV_CODEC_ID_MJPEG);
  encoder->packet = av_packet_alloc();
  if (!encoder->packet || !Make_Parts(parts, codec, width, height, AV_PIX_FMT_BGR24, AV_PIX_FMT_YUVJ420P)) return nullptr;
  parts->context->flags |= AV_CODEC_FLAG_QSCALE;
  parts->context->global_quality = FF_QP2LAMBDA * scale;
  av_opt_set(parts->context->priv_data, "huffman", "default", 0);
  if (avcodec_open2(parts->context, codec, nullptr) < 0) return nullptr;
  parts->frame->format = AV_PIX_FMT_YUVJ420P;
  parts->frame->width = width;
  parts->frame->height = height;
  parts->frame->pts = 0;
  parts->frame->quality = parts->context->global_quality;
  if (av_frame_get_buffer(parts->frame, 0) < 0) return nullptr;
  return encoder;
}

size_t Ffmpeg_Encode(FfmpegEncoder* encoder, const Picture& picture) {
  AVFrame* const frame = encoder->parts.frame;
  int pitch = 0;
  const uint8_t* const top = Top_Row(picture, &pitch);
  if (av_frame_make_writable(frame) < 0) return 0;
  if (sws_scale(encoder->parts.scaler, &top, &pitch, 0, picture.height, frame->data, frame->linesize) != picture.height) return 0;
  ++frame->pts;
  if (avcodec_send_frame(encoder->parts.context, frame) < 0) return 0;
  if (avcodec_receive_packet(encoder->parts.context, encoder->packet) < 0) return 0;
  const int size = encoder->packet->size;
  av_packet_unref(encoder->packet);
  return static_cast<size_t>(size);
}

static size_t Size_At(const Picture& picture, int32_t scale) {
  const auto encoder = Ffmpeg_Encoder_New(picture.width, picture.height, scale);
  return encoder ? Ffmpeg_Encode(encoder.get(), picture) : 0;
}

int32_t Ffmpeg_Scale_For(const Picture& picture, size_t bytes) {
  int32_t above = 1, below = 31;  // Sizes fall with the scale.
  while (below - above > 1) {
    const int32_t middle = (above + below) / 2;
    (Size_At(picture, middle) > bytes ? above : below) = middle;
  }
  const size_t larger = Size_At(picture, above), smaller = Size_At(picture, below);
  if (larger == 0 || smaller == 0) return 0;
  return larger * smaller > bytes * bytes ? below : above;
}
