#include "bench/compare/matches.h"

#include "bench/compare/ffmpeg.h"
#include "bench/compare/turbo.h"
#include "decode/decoder.h"
#include "decode/framing.h"

#include <cstdlib>
#include <cstring>

using Bytes = std::vector<uint8_t>;

/** Allowed mean difference of samples between two decoders of the same frame: their transforms round differently. The quality
 * that is read from the tables can be off by one, which changes a bright picture more. */
static constexpr double RoundingOnly = 3, QualityOff = 8;

const char* Work_Name(Work work) { return work == Work::Decode ? "decode" : "encode"; }

/** The quality to give to the still encoder for these tables. */
static int32_t Encoder_Quality(int32_t tables) { return ((tables - 10) * 100 + 79) / 80; }

static DecoderHolder Headless_Decoder(const Picture& picture) {
  DecoderHolder decoder(JDEC_New(picture.width, picture.height));
  if (!JDEC_Draw_Init(decoder.get(), nullptr)) decoder.reset();
  return decoder;
}

MatchEnd Frames_Make(const Subject& subject, int32_t quality, std::vector<Bytes>* frames, std::string* error) {
  const Turbo turbo;
  for (const Picture& picture : subject.pictures) {
    frames->push_back(Turbo_Frame(turbo, picture, quality));
    const Bytes& frame = frames->back();
    int32_t width = 0, height = 0, read = 0;
    if (frame.size() > FrameStoreSize) return MatchEnd::TooLong;
    if (frame.size() >= LeastJfifBytes && Parse_JFIF_Header(frame.data(), &width, &height, &read) && width == picture.width &&
        height == picture.height) {
      continue;
    }
    *error = "a frame is not of the fixed form";
    return MatchEnd::Failed;
  }
  return MatchEnd::Held;
}

static double Mean_Difference(const Picture& a, const Picture& b) {
  int64_t sum = 0;
  for (size_t i = 0; i < a.pixels.size(); ++i) sum += std::abs(a.pixels[i] - b.pixels[i]);
  return static_cast<double>(sum) / static_cast<double>(a.pixels.size());
}

static bool Near(const Picture& picture, const Picture& expected, double allowed, const std::string& who, std::string* error) {
  const double difference = Mean_Difference(picture, expected);
  if (difference <= allowed) return true;
  *error = who + " gives another picture: samples differ by " + std::to_string(difference);
  return false;
}

/** Adds velarto once for each level. */
static void Add_Levels(const MatchOptions& options, const std::function<bool(size_t)>& run,
                       std::vector<Contestant>* contestants) {
  for (const NamedKernelLevel& level : options.levels) {
    contestants->push_back({level.name, run, [mask = level.mask](size_t) { kernels = Kernels_Select(mask); }});
  }
}

/** Lets each contestant work on the first frame. */
static bool Try_All(const std::vector<Contestant>& contestants, std::string* error) {
  for (const Contestant& contestant : contestants) {
    if (contestant.prepare) contestant.prepare(0);
    if (contestant.run(0)) continue;
    *error = contestant.name + " can't do the work";
    return false;
  }
  return true;
}

static MatchEnd Run_Match(const std::vector<Contestant>& contestants, size_t frames, const MatchOptions& options, Match* match,
                          std::string* error) {
  for (const Contestant& contestant : contestants) match->names.push_back(contestant.name);
  std::string failed;
  if (Contest_Run(contestants, frames, options.seconds, Processor_Seconds, &match->times, &failed)) return MatchEnd::Held;
  *error = failed + " failed";
  return MatchEnd::Failed;
}

static MatchEnd Match_Decoding(const Subject& subject, int32_t quality, const MatchOptions& options, Match* match,
                               std::string* error) {
  std::vector<Bytes> frames;
  const MatchEnd made = Frames_Make(subject, quality, &frames, error);
  if (made != MatchEnd::Held) return made;
  const Picture& first = subject.pictures[0];
  const auto decoder = Headless_Decoder(first);
  const auto ffmpeg = Ffmpeg_Decoder_New(first.width, first.height);
  std::vector<PacketHolder> packets;
  for (const Bytes& frame : frames) packets.push_back(Ffmpeg_Packet(frame));
  Picture byTurbo = first, byFfmpeg = first, own = first;
  const Turbo turbo;

  std::vector<Contestant> contestants;
  const auto receive = [&](size_t i) {
    const auto length = static_cast<int32_t>(frames[i].size());
    return JDEC_Receive_Data(decoder.get(), length, frames[i].data(), nullptr) == length;
  };
  Add_Levels(options, receive, &contestants);
  contestants.push_back({"libjpeg-turbo", [&](size_t i) { return Turbo_Decode(turbo, frames[i], &byTurbo); }});
  if (options.ffmpeg) {
    contestants.push_back({"FFmpeg", [&](size_t i) { return Ffmpeg_Decode(ffmpeg.get(), packets[i].get(), &byFfmpeg); }});
  }
  if (!Try_All(contestants, error)) return MatchEnd::Failed;
  const double allowed = JDEC_Get_Quality(decoder.get()) == quality ? RoundingOnly : QualityOff;
  std::memcpy(own.pixels.data(), JDEC_get_decompressed_bitmap(decoder.get()), own.pixels.size());
  if (!Near(own, byTurbo, allowed, "velarto", error) ||
      (options.ffmpeg && !Near(byFfmpeg, byTurbo, RoundingOnly, "FFmpeg", error)))
    return MatchEnd::Failed;
  match->bytes.assign(contestants.size(), frames[0].size());
  return Run_Match(contestants, frames.size(), options, match, error);
}

/** Decodes the first picture of both encoders and compares the results. */
static bool Check_Encoded(const Subject& subject, const Bytes& own, const Bytes& theirs, std::string* error) {
  const Turbo turbo;
  Picture byUs = subject.pictures[0], byThem = byUs;
  if (Turbo_Decode(turbo, own, &byUs) && Turbo_Decode(turbo, theirs, &byThem)) {
    return Near(byUs, byThem, RoundingOnly, "the picture that velarto has compressed", error);
  }
  *error = "a compressed picture can't be decoded";
  return false;
}

static MatchEnd Match_Encoding(const Subject& subject, int32_t quality, const MatchOptions& options, Match* match,
                               std::string* error) {
  const auto& pictures = subject.pictures;
  const auto decoder = Headless_Decoder(pictures[0]);
  const Turbo turbo;
  Bytes own(FrameStoreSize), theirs(Turbo_Room(pictures[0]));
  size_t ownSize = 0, turboSize = 0, ffmpegSize = 0;
  std::vector<Contestant> contestants;
  const auto compress = [&](size_t i) {
    ownSize = static_cast<size_t>(JDEC_Compress_RGB888(decoder.get(), Encoder_Quality(quality), pictures[i].pixels.data(), 0,
                                                       own.data(), FrameStoreSize, 1, 0));
    return ownSize > 0;
  };
  Add_Levels(options, compress, &contestants);
  contestants.push_back({"libjpeg-turbo", [&](size_t i) {
                           turboSize = Turbo_Encode(turbo, pictures[i], quality, &theirs);
                           return turboSize > 0;
                         }});
  if (!compress(0)) return MatchEnd::TooLong;
  FfmpegEncoderHolder ffmpeg;
  if (options.ffmpeg) {
    match->scale = Ffmpeg_Scale_For(pictures[0], ownSize);
    ffmpeg = Ffmpeg_Encoder_New(pictures[0].width, pictures[0].height, match->scale);
    contestants.push_back({"FFmpeg", [&](size_t i) {
                             ffmpegSize = Ffmpeg_Encode(ffmpeg.get(), pictures[i]);
                             return ffmpegSize > 0;
                           }});
  }
  if (!Try_All(contestants, error)) return MatchEnd::Failed;
  for (size_t i = 0; i < options.levels.size(); ++i) match->bytes.push_back(ownSize);
  match->bytes.insert(match->bytes.end(), {turboSize, ffmpegSize});
  own.resize(ownSize);
  if (!Check_Encoded(subject, own, {theirs.begin(), theirs.begin() + static_cast<std::ptrdiff_t>(turboSize)}, error))
    return MatchEnd::Failed;
  own.resize(FrameStoreSize);
  return Run_Match(contestants, pictures.size(), options, match, error);
}

MatchEnd Match_Hold(Work work, const Subject& subject, int32_t quality, const MatchOptions& options, Match* match,
                    std::string* error) {
  if (work == Work::Decode) return Match_Decoding(subject, quality, options, match, error);
  return Match_Encoding(subject, quality, options, match, error);
}
