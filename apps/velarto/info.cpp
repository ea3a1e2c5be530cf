#include "apps/velarto/commands.h"
#include "apps/velarto/output.h"
#include "apps/velarto/stream.h"

#include <cinttypes>

struct InfoOptions {
  std::string source, kernelName;
  bool json = false;
};

static void Print_Frame(const WalkedFrame& frame, bool json) {
  const char* const form = Form_Name(frame.form);
  if (json) {
    std::fprintf(Output(),
                 "{\"type\":\"frame\",\"frame\":%" PRId64 ",\"offset\":%" PRId64
                 ",\"form\":\"%s\",\"bytes\":%zu,\"width\":%d,\"height\":%d,\"quality\":%d}\n",
                 frame.number, frame.offset, form, frame.bytes.size(), frame.width, frame.height, frame.quality);
    return;
  }
  std::fprintf(Output(), "frame %6" PRId64 "  offset %10" PRId64 "  %-8s  %7zu bytes  %dx%d  quality %d\n", frame.number,
               frame.offset, form, frame.bytes.size(), frame.width, frame.height, frame.quality);
}

static void Print_Summary(const FrameWalk& walk, bool json) {
  const double mean = walk.frames > 0 ? static_cast<double>(walk.frameBytes) / static_cast<double>(walk.frames) : 0;
  std::fprintf(Output(),
               json ? "{\"type\":\"summary\",\"frames\":%" PRId64 ",\"skipped\":%" PRId64 ",\"mean\":%.1f}\n"
                    : "%" PRId64 " frames, %" PRId64 " bytes skipped, mean frame size %.1f bytes\n",
               walk.frames, Walk_Skipped(walk), mean);
}

static int Info(const InfoOptions& options) {
  const std::atomic<bool> stop = false;
  const bool live = Source_Live(options.source);
  FrameWalk walk;
  std::string error;
  const auto print = [&](const WalkedFrame& frame) {
    Print_Frame(frame, options.json);
    if (live) std::fflush(Output());
    return Output_Good();
  };
  const bool read = Read_Frames(options.source, &stop, &walk, print, &error);
  if (walk.frames > 0 && Output_Good()) Print_Summary(walk, options.json);
  if (!read) return Report(error);
  return walk.frames > 0 ? ExitDone : Report(No_Frame_Text(options.source, walk));
}

void Add_Common_Options(CLI::App* command, std::string* source, std::string* kernelName) {
  command->add_option("SOURCE", *source, "A file, - for standard input, or tcp://HOST:PORT")->required();
  command->add_option("--cpu", *kernelName, "Highest level of processor instructions to use")
      ->check(CLI::IsMember(Kernel_Names()));
}

void Info_Command(CLI::App* app, int* code) {
  CLI::App* const command = app->add_subcommand("info", "List the frames of a stream");
  const auto options = std::make_shared<InfoOptions>();
  Add_Common_Options(command, &options->source, &options->kernelName);
  command->add_flag("--json", options->json, "Print one JSON object a line, the summary last");
  command->footer("Example:\n  velarto info --json street.vlr");
  command->callback([options, code] { *code = Info(*options); });
}
