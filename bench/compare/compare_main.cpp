// velarto, libjpeg-turbo and FFmpeg: whole frames, on one thread, in turn, in one program.
#include "apps/velarto/output.h"
#include "apps/velarto/stream.h"
#include "bench/compare/ffmpeg.h"
#include "bench/compare/measures.h"
#include "bench/picture_size.h"

#include <CLI/CLI.hpp>

struct Options {
  std::vector<std::string> photographs, levels;
  std::string recording, lines, stream;
  bool quick = false;
  int32_t width = 640, height = 480;
  size_t frames = 300;
};

static const std::vector<PictureSize> allSizes = {{320, 240}, {640, 480}, {1280, 720}, {1920, 1072}},
                                      quickSizes = {{320, 240}, {640, 480}};
static const std::vector<int32_t> allQualities = {30, 50, 80}, quickQualities = {50};
/** Pictures of a subject, used in turn. */
static constexpr size_t PictureCount = 4;

static bool Hold_Matches(const Options& options, const Gallery& gallery, Results* results, std::string* error) {
  const MatchOptions match = {results->levels, options.quick ? 0.1 : 0.2, true};
  auto names = Subject_Names(gallery);
  if (options.quick && names.size() > 2) names.erase(names.begin() + 1, names.end() - 1);
  Results_Head(*results);
  for (const std::string& name : names) {
    for (const PictureSize& size : options.quick ? quickSizes : allSizes) {
      const Subject subject = Subject_Make(gallery, name, size.width, size.height, PictureCount);
      for (const Work work : {Work::Decode, Work::Encode}) {
        for (const int32_t quality : options.quick ? quickQualities : allQualities) {
          Match held;
          const MatchEnd end = Match_Hold(work, subject, quality, match, &held, error);
          if (end == MatchEnd::Failed) return false;
          if (end == MatchEnd::Held) Results_Match(results, work, subject, quality, held);
          if (end == MatchEnd::TooLong) Results_Left_Out(*results, work, subject, quality);
        }
      }
    }
  }
  return true;
}

/** Writes a stream of frames of the street. */
static bool Write_Stream(const Options& options, const Gallery& gallery, std::string* error) {
  const size_t distinct = std::min(options.frames, gallery.street.size());
  std::vector<std::vector<uint8_t>> frames;
  if (Frames_Make(Subject_Make(gallery, "street", options.width, options.height, distinct), 50, &frames, error) != MatchEnd::Held)
    return false;
  FILE* const file = std::fopen(options.stream.c_str(), "wb");
  bool good = file != nullptr;
  for (size_t i = 0; good && i < options.frames; ++i) {
    const auto& frame = frames[i % distinct];
    good = std::fwrite(frame.data(), 1, frame.size(), file) == frame.size();
  }
  good = file && std::fclose(file) == 0 && good;
  if (!good) *error = "can't write " + options.stream;
  return good;
}

static bool Measure(const Options& options, const Gallery& gallery, std::string* error) {
  Results results = {Output(), options.lines.empty() ? nullptr : std::fopen(options.lines.c_str(), "w"), {}, {}};
  for (const NamedKernelLevel& level : kernelLevels) {
    if (std::ranges::find(options.levels, level.name) != options.levels.end()) results.levels.push_back(level);
  }
  Results_About(results);
  const double seconds = options.quick ? 0.1 : 0.3;
  const bool good = Hold_Matches(options, gallery, &results, error) && Measure_Growth(results, gallery, seconds, error) &&
                    Measure_Threads(results, gallery, seconds, error) && Measure_Delay(results, gallery, 3 * seconds, error);
  Results_Summary(results);
  if (results.lines) std::fclose(results.lines);
  return good;
}

static int Run(const Options& options) {
  Gallery gallery;
  std::string error;
  Library_Start("");
  const bool good = Gallery_Read(options.photographs, options.recording, &gallery, &error) &&
                    (options.stream.empty() ? Measure(options, gallery, &error) : Write_Stream(options, gallery, &error));
  JDEC_Exit();
  return good ? ExitDone : Report(error);
}

int main(int argc, char** argv) {
  Output_Open();
  Options options;
  options.levels = Kernel_Names();
  CLI::App app("Compares the speed of velarto, libjpeg-turbo and FFmpeg");
  app.add_option("--photo", options.photographs, "Photographs, each as NAME=FILE (JPEG, PPM, BMP), larger than 2100x1200");
  app.add_option("--recording", options.recording, "The sample recording")->required();
  app.add_option("--levels", options.levels, "Kernel levels to measure (all of this processor)")
      ->delimiter(',')
      ->check(CLI::IsMember(Kernel_Names()));
  app.add_option("--lines", options.lines, "Also write the results to this file, one JSON object a line");
  app.add_flag("--quick", options.quick, "A short run");
  app.add_option("--stream", options.stream, "Don't measure; write a stream of the street to this file");
  app.add_option("--width", options.width, "... of this width (640)");
  app.add_option("--height", options.height, "... and height (480)");
  app.add_option("--frames", options.frames, "... and this many frames (300)");
  CLI11_PARSE(app, argc, argv);
  return Output_Finish(Run(options));
}
