#include "apps/velarto/commands.h"
#include "apps/velarto/output.h"
#include "apps/velarto/picture.h"
#include "apps/velarto/stream.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

struct ExportOptions {
  std::string source, kernelName, pattern, format;
  int64_t first = 0, count = INT64_MAX, every = 1;
};

/** A file name with a place for a number. */
struct NamePattern {
  std::string before, after;
  bool numbered = false;
  size_t digits = 1;  ///< At least; filled up with zeros.
};

/** Reads a pattern: one %d or %04d (1 to 9 digits), and %% for a percent sign. False for anything else after a %. */
static bool Parse_Pattern(const std::string& text, NamePattern* pattern) {
  for (size_t i = 0; i < text.size(); ++i) {
    std::string& part = pattern->numbered ? pattern->after : pattern->before;
    if (text[i] != '%' || text.substr(i, 2) == "%%") {
      part += text[i];
      i += text[i] == '%';
      continue;
    }
    ++i;
    if (i + 1 < text.size() && text[i] == '0' && text[i + 1] >= '1' && text[i + 1] <= '9') {
      pattern->digits = static_cast<size_t>(text[i + 1] - '0');
      i += 2;
    }
    if (pattern->numbered || i >= text.size() || text[i] != 'd') return false;
    pattern->numbered = true;
  }
  return true;
}

static std::string File_Name(const NamePattern& pattern, int64_t number) {
  if (!pattern.numbered) return pattern.before;
  const std::string digits = std::to_string(number);
  const std::string zeros(pattern.digits - std::min(pattern.digits, digits.size()), '0');
  return pattern.before + zeros + digits + pattern.after;
}

/** By --format, else by the extension of the pattern, else BMP. */
static bool Wants_Jpeg(const ExportOptions& options) {
  if (!options.format.empty()) return options.format == "jpg";
  std::string extension = std::filesystem::path(options.pattern).extension().string();
  std::ranges::transform(extension, extension.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension == ".jpg" || extension == ".jpeg";
}

static std::string Pictures(int64_t count) { return std::to_string(count) + (count == 1 ? " picture" : " pictures"); }

/** An export in progress. */
struct Export {
  const ExportOptions& options;
  NamePattern pattern;
  bool jpeg = false;
  int64_t sourceSize = 0;  ///< 0 when not known.
  DecoderHolder decoder;
  int64_t selected = 0, written = 0;
  std::string error;
  Progress progress;
};

/** Decodes and writes one frame; false ends the export. */
static bool Export_Frame(Export* work, const WalkedFrame& frame) {
  if (!Frame_Decodable(frame)) {
    Progress_End(&work->progress);
    Report("frame " + std::to_string(frame.number) + " at offset " + std::to_string(frame.offset) + " can't be decoded: skipped");
    return true;
  }
  if (!Decoder_Fit(&work->decoder, frame.width, frame.height, &work->error)) return false;
  JdecDecoder* const decoder = work->decoder.get();
  const std::string name = File_Name(work->pattern, frame.number);
  if (work->jpeg) {
    if (!Picture_Save_Jpeg(decoder, frame, name, &work->error)) return false;
  } else {
    Picture_Decode(decoder, frame);
    if (!Picture_Save(decoder, name, &work->error)) return false;
  }
  ++work->written;
  return true;
}

/** Every frame is a complete picture: those not selected are not decoded. */
static bool Take_Frame(Export* work, const WalkedFrame& frame) {
  const ExportOptions& options = work->options;
  const int64_t index = frame.number - options.first;
  if (index >= 0 && index % options.every == 0) {
    ++work->selected;
    if (!Export_Frame(work, frame)) return false;
  }
  Progress_Show(&work->progress, frame.offset, work->sourceSize, Pictures(work->written));
  return work->selected < options.count;
}

static void Check_Usage(const ExportOptions& options, NamePattern* pattern) {
  if (!Parse_Pattern(options.pattern, pattern)) {
    throw CLI::ValidationError("--output", "a pattern has one %d or %04d, and %% for a percent sign");
  }
  if (!pattern->numbered && options.count != 1) {
    throw CLI::ValidationError("--output", "without %d in the pattern only one picture can be written: give --count 1");
  }
}

static int Run_Export(Export* work) {
  const ExportOptions& options = work->options;
  const std::atomic<bool> stop = false;
  FrameWalk walk;
  std::string error;
  const bool read = Read_Frames(
      options.source, &stop, &walk, [work](const WalkedFrame& frame) { return Take_Frame(work, frame); }, &error);
  Progress_End(&work->progress);
  if (work->written > 0) std::fprintf(Output(), "%s written\n", Pictures(work->written).c_str());
  if (!work->error.empty()) return Report(work->error);
  if (!read) return Report(error);
  if (walk.frames == 0) return Report(No_Frame_Text(options.source, walk));
  if (work->selected == 0) return Report(Source_Title(options.source) + " ends before frame " + std::to_string(options.first));
  return work->written > 0 ? ExitDone : ExitFailed;
}

static int Export_Pictures(const ExportOptions& options) {
  NamePattern pattern;
  Check_Usage(options, &pattern);
  std::error_code ignored;
  const auto folder = std::filesystem::path(File_Name(pattern, 0)).parent_path();
  if (!folder.empty() && !std::filesystem::is_directory(folder, ignored)) {
    return Report("there is no folder " + folder.string());
  }
  int64_t sourceSize = 0;
  if (!Source_Live(options.source)) {
    const auto size = std::filesystem::file_size(options.source, ignored);
    sourceSize = ignored ? 0 : static_cast<int64_t>(size);
  }
  Library_Start(options.kernelName);
  int code = ExitDone;
  {
    Export work = {options, pattern, Wants_Jpeg(options), sourceSize, {}, 0, 0, {}, {}};
    code = Run_Export(&work);
  }
  JDEC_Exit();
  return code;
}

void Export_Command(CLI::App* app, int* code) {
  CLI::App* const command = app->add_subcommand("export", "Write the pictures of a stream as BMP or JPEG files");
  const auto options = std::make_shared<ExportOptions>();
  Add_Common_Options(command, &options->source, &options->kernelName);
  command
      ->add_option("-o,--output", options->pattern,
                   "Name of the files: %d or %04d stands for the frame's number in the stream, counted from 0")
      ->required();
  command
      ->add_option("--format", options->format,
                   "bmp or jpg (by the extension of --output, else bmp). jpg keeps the frame's own data where that is a valid\n"
                   "JPEG image; otherwise, as for a size that is not a multiple of 16, the picture is compressed again")
      ->check(CLI::IsMember({"bmp", "jpg"}));
  command->add_option("--first", options->first, "Number of the first frame (0)")->check(CLI::NonNegativeNumber);
  command->add_option("--count", options->count, "Number of pictures to write at most")->check(CLI::PositiveNumber);
  command->add_option("--every", options->every, "Write every N-th frame, starting with the first (1)")
      ->check(CLI::PositiveNumber);
  command->footer("Example:\n  velarto export street.vlr -o picture-%04d.bmp --first 10 --count 5 --every 2");
  command->callback([options, code] { *code = Export_Pictures(*options); });
}
