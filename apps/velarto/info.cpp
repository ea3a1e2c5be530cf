#include "apps/velarto/commands.h"
#include "apps/velarto/output.h"
#include "apps/velarto/picture.h"
#include "apps/velarto/stream.h"
#include "decode/watermark.h"

#include <cinttypes>

struct InfoOptions {
  std::string source, kernelName;
  bool json = false, text = false;
};

/** The text hidden in a frame; none in one that can't be decoded. False, with *error, without memory. */
static bool Hidden_Text(DecoderHolder* decoder, const WalkedFrame& frame, std::string* text, std::string* error) {
  text->clear();
  if (!Frame_Decodable(frame)) return true;
  if (!Decoder_Fit(decoder, frame.width, frame.height, error)) return false;
  Picture_Decode(decoder->get(), frame);
  uint8_t buffer[WatermarkRoom];
  const int32_t length = JDEC_read_watermark_string(decoder->get(), buffer, sizeof buffer);
  text->assign(buffer, buffer + length);
  return true;
}

/** The text in quotes. Quotes, backslashes and what isn't printable ASCII become \xNN; in JSON \u00NN. */
static std::string Quoted(const std::string& text, bool json) {
  std::string quoted = "\"";
  for (const char c : text) {
    char escape[8] = {c, 0};
    if (c < ' ' || c > '~' || c == '"' || c == '\\') {
      std::snprintf(escape, sizeof escape, json ? "\\u%04x" : "\\x%02x", static_cast<unsigned>(static_cast<uint8_t>(c)));
    }
    quoted += escape;
  }
  return quoted + '"';
}

/** text: null if it was not asked for. */
static void Print_Frame(const WalkedFrame& frame, bool json, const std::string* text) {
  const char* const form = Form_Name(frame.form);
  if (json) {
    const std::string more = text ? ",\"text\":" + Quoted(*text, true) : "";
    std::fprintf(Output(),
                 "{\"type\":\"frame\",\"frame\":%" PRId64 ",\"offset\":%" PRId64
                 ",\"form\":\"%s\",\"bytes\":%zu,\"width\":%d,\"height\":%d,\"quality\":%d%s}\n",
                 frame.number, frame.offset, form, frame.bytes.size(), frame.width, frame.height, frame.quality, more.c_str());
    return;
  }
  const std::string more = text && !text->empty() ? "  text " + Quoted(*text, false) : "";
  std::fprintf(Output(), "frame %6" PRId64 "  offset %10" PRId64 "  %-8s  %7zu bytes  %dx%d  quality %d%s\n", frame.number,
               frame.offset, form, frame.bytes.size(), frame.width, frame.height, frame.quality, more.c_str());
}

static void Print_Summary(const FrameWalk& walk, bool json) {
  const double mean = walk.frames > 0 ? static_cast<double>(walk.frameBytes) / static_cast<double>(walk.frames) : 0;
  std::fprintf(Output(),
               json ? "{\"type\":\"summary\",\"frames\":%" PRId64 ",\"skipped\":%" PRId64 ",\"mean\":%.1f}\n"
                    : "%" PRId64 " frames, %" PRId64 " bytes skipped, mean frame size %.1f bytes\n",
               walk.frames, Walk_Skipped(walk), mean);
}

static int Run_Info(const InfoOptions& options) {
  const std::atomic<bool> stop = false;
  const bool live = Source_Live(options.source);
  FrameWalk walk;
  std::string error, text, textError;
  DecoderHolder decoder;
  const auto print = [&](const WalkedFrame& frame) {
    if (options.text && !Hidden_Text(&decoder, frame, &text, &textError)) return false;
    Print_Frame(frame, options.json, options.text ? &text : nullptr);
    if (live) std::fflush(Output());
    return Output_Good();
  };
  const bool read = Read_Frames(options.source, &stop, &walk, print, &error);
  if (walk.frames > 0 && Output_Good()) Print_Summary(walk, options.json);
  if (!textError.empty()) return Report(textError);
  if (!read) return Report(error);
  return walk.frames > 0 ? ExitDone : Report(No_Frame_Text(options.source, walk));
}

static int Info(const InfoOptions& options) {
  if (!options.text) return Run_Info(options);
  Library_Start(options.kernelName);
  const int code = Run_Info(options);
  JDEC_Exit();
  return code;
}

void Add_Common_Options(CLI::App* command, std::string* source, std::string* kernelName) {
  command
      ->add_option("SOURCE", *source,
                   "A file, - for standard input, http://..., https://... (user and password in the address, or in VELARTO_USER "
                   "and VELARTO_PASSWORD), or tcp://HOST:PORT")
      ->required();
  command->add_option("--cpu", *kernelName, "Highest level of processor instructions to use")
      ->check(CLI::IsMember(Kernel_Names()));
}

void Info_Command(CLI::App* app, int* code) {
  CLI::App* const command = app->add_subcommand("info", "List the frames of a stream");
  const auto options = std::make_shared<InfoOptions>();
  Add_Common_Options(command, &options->source, &options->kernelName);
  command->add_flag("--json", options->json, "Print one JSON object per line, the summary last");
  command->add_flag(
      "--text", options->text,
      "Decode the frames and print the text hidden in each; a picture without one may yield a few letters by chance");
  command->footer("Example:\n  velarto info --json street.vlr");
  command->callback([options, code] { *code = Info(*options); });
}
