#include "apps/velarto/commands.h"
#include "apps/velarto/output.h"
#include "apps/velarto/stages.h"
#include "apps/velarto/stream.h"

#include <chrono>
#include <cinttypes>

/** Of decoding, when the user gives no time; every frame is decoded at least once then. */
static constexpr double UsualSeconds = 2;
/** Part of that time that timing the stages may take afterwards. */
static constexpr double StagesPart = 0.25;

struct BenchOptions {
  std::string source, kernelName;
  double seconds = 0;  ///< 0: not given.
  bool json = false;
};

/** A whole recording in memory, and the frames in it that can be decoded. */
struct RecordingInMemory {
  std::vector<uint8_t> bytes;
  std::vector<WalkedFrame> frames;
};

/** What was done, and how long it took. */
struct DecodeWork {
  int64_t frames = 0, pixels = 0, bytes = 0;
  double seconds = 0;
};

static bool Read_Recording(const std::string& source, RecordingInMemory* recording, std::string* error) {
  const std::atomic<bool> stop = false;
  const auto take = [recording](const WalkedFrame& frame) {
    if (Frame_Decodable(frame)) recording->frames.push_back(frame);
    return true;
  };
  const ReadOptions reading = {.reconnect = false, .onLost = {}, .onBytes = [recording](std::span<const uint8_t> bytes) {
                                 recording->bytes.insert(recording->bytes.end(), bytes.begin(), bytes.end());
                               }};
  FrameWalk walk;
  if (!Read_Frames(source, &stop, &walk, take, error, reading)) return false;
  for (WalkedFrame& frame : recording->frames) {
    frame.bytes = {&recording->bytes[static_cast<size_t>(frame.offset)], frame.bytes.size()};
  }
  const auto left = walk.frames - static_cast<int64_t>(recording->frames.size());
  if (left > 0) Report(std::to_string(left) + " of " + std::to_string(walk.frames) + " frames can't be decoded: skipped");
  if (walk.frames == 0) *error = No_Frame_Text(source, walk);
  if (walk.frames > 0 && left == walk.frames) *error = "no frame of " + Source_Title(source) + " can be decoded";
  return left < walk.frames;
}

static double Seconds_Since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/** Decodes the recording again and again. False, with *error, without memory. */
static bool Decode_Frames(const RecordingInMemory& recording, double asked, DecodeWork* work, std::string* error) {
  const auto count = static_cast<int64_t>(recording.frames.size());
  DecoderHolder decoder;
  const auto start = std::chrono::steady_clock::now();
  bool enough = false;
  while (!enough) {
    const WalkedFrame& frame = recording.frames[static_cast<size_t>(work->frames % count)];
    if (!Decoder_Fit(&decoder, frame.width, frame.height, error)) return false;
    JDEC_Receive_Data(decoder.get(), static_cast<int32_t>(frame.bytes.size()), frame.bytes.data(), nullptr);
    ++work->frames;
    work->pixels += int64_t{frame.width} * frame.height;
    work->bytes += static_cast<int64_t>(frame.bytes.size());
    work->seconds = Seconds_Since(start);
    enough = asked > 0 ? work->seconds >= asked : work->seconds >= UsualSeconds && work->frames >= count;
  }
  return true;
}

/** Times the stages of frames spread over the recording, as many as the time allows. */
static bool Time_Stages(const RecordingInMemory& recording, double seconds, StageTimes* times, std::string* error) {
  static constexpr size_t Step = 7;
  const size_t count = recording.frames.size();
  DecoderHolder decoder;
  const auto start = std::chrono::steady_clock::now();
  size_t i = 0;
  do {
    const WalkedFrame& frame = recording.frames[i++ * Step % count];
    if (!Decoder_Fit(&decoder, frame.width, frame.height, error)) return false;
    Stages_Time(decoder.get(), frame, times);
  } while (Seconds_Since(start) < seconds);
  return true;
}

static void Print_Result(const BenchOptions& options, const RecordingInMemory& recording, const DecodeWork& work,
                         const StageTimes& times) {
  const std::string kernel = options.kernelName.empty() ? Kernel_Best() : options.kernelName;
  const double frames = static_cast<double>(work.frames) / work.seconds,
               megapixels = static_cast<double>(work.pixels) / work.seconds / 1e6,
               megabytes = static_cast<double>(work.bytes) / work.seconds / 1e6;
  const double sum = times.search + times.entropy + times.transform + times.color;
  const double search = times.search / sum, entropy = times.entropy / sum, transform = times.transform / sum,
               color = times.color / sum;
  if (options.json) {
    std::fprintf(Output(),
                 "{\"kernels\":\"%s\",\"frames\":%zu,\"decoded\":%" PRId64
                 ",\"seconds\":%.3f,\"framesPerSecond\":%.1f,\"megapixelsPerSecond\":%.2f,\"megabytesPerSecond\":%.2f,"
                 "\"shares\":{\"search\":%.4f,\"entropy\":%.4f,\"transform\":%.4f,\"color\":%.4f}}\n",
                 kernel.c_str(), recording.frames.size(), work.frames, work.seconds, frames, megapixels, megabytes, search,
                 entropy, transform, color);
    return;
  }
  std::fprintf(Output(), "%" PRId64 " frames decoded in %.2f s, kernels: %s\n", work.frames, work.seconds, kernel.c_str());
  std::fprintf(Output(), "%10.1f frames a second\n%10.2f megapixels a second\n%10.2f megabytes a second\n", frames, megapixels,
               megabytes);
  std::fprintf(Output(),
               "%9.1f %% finding frames\n%9.1f %% entropy decoding\n%9.1f %% inverse transform\n%9.1f %% colour conversion\n",
               search * 100, entropy * 100, transform * 100, color * 100);
}

static int Run_Bench(const BenchOptions& options) {
  RecordingInMemory recording;
  DecodeWork work;
  StageTimes times;
  std::string error;
  if (!Read_Recording(options.source, &recording, &error) || !Decode_Frames(recording, options.seconds, &work, &error) ||
      !Time_Stages(recording, work.seconds * StagesPart, &times, &error)) {
    return Report(error);
  }
  Print_Result(options, recording, work, times);
  return ExitDone;
}

static int Bench(const BenchOptions& options) {
  if (options.source != "-" && Source_Live(options.source)) {
    throw CLI::ValidationError("SOURCE", "a live source can't be measured: give a file or -");
  }
  Library_Start(options.kernelName);
  const int code = Run_Bench(options);
  JDEC_Exit();
  return code;
}

void Bench_Command(CLI::App* app, int* code) {
  CLI::App* const command = app->add_subcommand("bench", "Measure how fast a recording is decoded");
  const auto options = std::make_shared<BenchOptions>();
  Add_Common_Options(command, &options->source, &options->kernelName);
  command->add_option("--seconds", options->seconds, "Seconds to decode for (2, or until every frame has been decoded once)")
      ->check(CLI::PositiveNumber);
  command->add_flag("--json", options->json, "Print one JSON object");
  command->footer(
      "The recording is read into memory first; nothing is shown. The stages are timed separately, afterwards.\n\n"
      "Example:\n  velarto bench street.vlr --seconds 5 --json");
  command->callback([options, code] { *code = Bench(*options); });
}
