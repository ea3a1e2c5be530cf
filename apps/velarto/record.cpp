#include "apps/velarto/commands.h"
#include "apps/velarto/output.h"
#include "apps/velarto/stop_flag.h"
#include "apps/velarto/stream.h"
#include "velarto.h"

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <thread>

/** More held bytes that belong to no frame are written even if no frame has followed them yet. */
static constexpr int64_t HeldLimit = 1024 * 1024;

struct RecordOptions {
  std::string source, kernelName, path;
  double seconds = 0;  ///< 0: no limit, as for frames.
  int64_t frames = 0;
};

/** Sets the stop flag after some time, unless it is destroyed before. */
using Timer = std::jthread;

static Timer Timer_Start(double seconds, std::atomic<bool>* stop) {
  return Timer([seconds, stop](const std::stop_token& ended) {
    std::mutex lock;
    std::condition_variable_any changed;
    std::unique_lock held(lock);
    changed.wait_for(held, ended, std::chrono::duration<double>(seconds), [] { return false; });
    if (!ended.stop_requested()) *stop = true;
  });
}

/** A recording in progress. The file is the stream from the first frame start to the end of the last frame, without the frames
 * that lost connections left incomplete. */
struct Recording {
  const RecordOptions& options;
  std::atomic<bool>* stop;
  int64_t sourceSize;  ///< 0 when not known.
  FrameWalk walk = {};
  std::vector<uint8_t> held = {};  ///< Bytes of the stream not written yet.
  int64_t heldAt = 0;              ///< Their offset in the stream.
  FILE* file = nullptr;
  int64_t written = 0;            ///< Bytes of the file.
  int64_t frames = 0, whole = 0;  ///< Frames in it, and its bytes up to the end of the last one.
  std::string error = {};         ///< Of the file.
  Timer timer = {};
  Progress progress = {};
};

static bool To_Output(const Recording& recording) { return recording.options.path == "-"; }

static bool Fail(Recording* recording) {
  recording->error = "can't write " + recording->options.path + ": " + Error_Text();
  return false;
}

/** Opens the file, when there is something to write. */
static bool Open_File(Recording* recording) {
  if (recording->file) return true;
  recording->file = To_Output(*recording) ? Output() : std::fopen(recording->options.path.c_str(), "wb");
  if (!recording->file) return Fail(recording);
  // One write for each frame: a crash loses none of those written.
  std::setvbuf(recording->file, nullptr, _IONBF, 0);
  return true;
}

/** Drops the held bytes before an offset of the stream. */
static void Drop_Held(Recording* recording, int64_t end) {
  const int64_t count = std::clamp<int64_t>(end - recording->heldAt, 0, static_cast<int64_t>(recording->held.size()));
  recording->held.erase(recording->held.begin(), recording->held.begin() + count);
  recording->heldAt += count;
}

/** Writes the held bytes before an offset of the stream, and drops them. */
static bool Write_Held(Recording* recording, int64_t end) {
  const auto count = static_cast<size_t>(end - recording->heldAt);
  if (!Open_File(recording)) return false;
  const size_t written = std::fwrite(recording->held.data(), 1, count, recording->file);
  recording->written += static_cast<int64_t>(written);
  if (written != count) return To_Output(*recording) ? Output_Good() : Fail(recording);
  Drop_Held(recording, end);
  return true;
}

static std::string Amount(const Recording& recording) {
  return std::to_string(recording.frames) + (recording.frames == 1 ? " frame, " : " frames, ") + std::to_string(recording.whole) +
         " bytes";
}

/** Holds the bytes until it is known to what they belong. */
static void Take_Bytes(Recording* recording, std::span<const uint8_t> bytes) {
  const FrameWalk& walk = recording->walk;
  Drop_Held(recording, walk.frames == 0 ? walk.taken : walk.resumed);
  if (walk.taken - recording->heldAt > HeldLimit && !Write_Held(recording, walk.taken)) *recording->stop = true;
  recording->held.insert(recording->held.end(), bytes.begin(), bytes.end());
}

static bool Take_Frame(Recording* recording, const WalkedFrame& frame) {
  const RecordOptions& options = recording->options;
  const bool first = frame.number == 0;
  Drop_Held(recording, first ? frame.offset : recording->walk.resumed);
  if (!Write_Held(recording, frame.offset + static_cast<int64_t>(frame.bytes.size()))) return false;
  recording->whole = recording->written;
  ++recording->frames;
  if (first && options.seconds > 0) recording->timer = Timer_Start(options.seconds, recording->stop);
  const bool counted = options.frames > 0;
  Progress_Show(&recording->progress, counted ? recording->frames : recording->heldAt,
                counted ? options.frames : recording->sourceSize, Amount(*recording));
  return recording->frames != options.frames;
}

/** Closes the file, truncated after its last frame. */
static void Close_File(Recording* recording) {
  if (!recording->file || To_Output(*recording)) return;
  if (std::fclose(recording->file) != 0 && recording->error.empty()) Fail(recording);
  std::error_code ignored;
  if (recording->written == recording->whole || !std::filesystem::is_regular_file(recording->options.path, ignored)) return;
  std::filesystem::resize_file(recording->options.path, static_cast<uintmax_t>(recording->whole), ignored);
}

static void Print_Amount(const Recording& recording) {
  const std::string text = Amount(recording) + " recorded in ";
  if (To_Output(recording)) {
    Report(text + "standard output");
  } else {
    std::fprintf(Output(), "%s%s\n", text.c_str(), recording.options.path.c_str());
  }
}

static int Run_Recording(Recording* recording) {
  const RecordOptions& options = recording->options;
  const ReadOptions reading = {.reconnect = true,
                               .onLost = [&](bool) { Progress_End(&recording->progress); },
                               .onBytes = [&](std::span<const uint8_t> bytes) { Take_Bytes(recording, bytes); }};
  // Limits the wait for the first frame, with which the time starts again.
  if (options.seconds > 0) recording->timer = Timer_Start(options.seconds, recording->stop);
  std::string error;
  const bool read = Read_Frames(
      options.source, recording->stop, &recording->walk, [&](const WalkedFrame& frame) { return Take_Frame(recording, frame); },
      &error, reading);
  Progress_End(&recording->progress);
  Close_File(recording);
  if (recording->whole > 0) Print_Amount(*recording);
  if (!recording->error.empty()) return Report(recording->error);
  if (!read) return Report(error);
  return recording->walk.frames > 0 ? ExitDone : Report(No_Frame_Text(options.source, recording->walk));
}

static int Record(const RecordOptions& options) {
  std::error_code ignored;
  const std::string source = options.source == "-" ? "/dev/stdin" : options.source;
  if (std::filesystem::equivalent(source, options.path, ignored)) {
    return Report(options.path + " is the source itself");
  }
  int64_t sourceSize = 0;
  if (!Source_Live(options.source)) {
    const auto size = std::filesystem::file_size(options.source, ignored);
    sourceSize = ignored ? 0 : static_cast<int64_t>(size);
  }
  Library_Start(options.kernelName);
  Recording recording = {options, Stop_On_Signals(), sourceSize};
  const int code = Run_Recording(&recording);
  JDEC_Exit();
  return code;
}

void Record_Command(CLI::App* app, int* code) {
  CLI::App* const command = app->add_subcommand("record", "Write a stream to a file, from its first frame on");
  const auto options = std::make_shared<RecordOptions>();
  Add_Common_Options(command, &options->source, &options->kernelName);
  command->add_option("-o,--output", options->path, "Name of the recording, or - for standard output")->required();
  command->add_option("--seconds", options->seconds, "Stop this many seconds after the first frame")
      ->check(CLI::Range(0.001, 1e8));
  command->add_option("--frames", options->frames, "Stop after this many frames")->check(CLI::PositiveNumber);
  command->footer(
      "Stops at the end of the source, or on Ctrl-C.\n\n"
      "Example:\n  velarto record http://camera/stream -o street.vlr --seconds 60");
  command->callback([options, code] { *code = Record(*options); });
}
