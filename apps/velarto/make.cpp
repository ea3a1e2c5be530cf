#include "apps/velarto/commands.h"
#include "apps/velarto/frame_maker.h"
#include "apps/velarto/output.h"
#include "apps/velarto/picture_file.h"
#include "apps/velarto/stream.h"
#include "apps/velarto/whole_file.h"

struct MakeOptions {
  std::vector<std::string> pictures;
  std::string kernelName, output, form = "compact";
  int64_t repeat = 1;
  FrameStyle style;
};

/** A stream in the making. */
struct Make {
  const MakeOptions& options;
  DecoderHolder decoder;                     ///< Of the size of the last picture.
  std::vector<std::vector<uint8_t>> frames;  ///< Of one round, if there are more.
  int64_t written = 0;
  Progress progress;
};

static std::string Frames(int64_t count) { return std::to_string(count) + (count == 1 ? " frame" : " frames"); }

/** Makes a frame of a picture file. */
static bool Make_Frame(Make* work, const std::string& name, std::vector<uint8_t>* frame, std::string* error) {
  const FrameStyle& style = work->options.style;
  Picture picture;
  if (!Picture_Read(name, &picture, error)) return false;
  if (style.form == FrameForm::Jfif) picture = Picture_Coded_Part(std::move(picture));
  if (Decoder_Fit(&work->decoder, picture.width, picture.height, error) &&
      Frame_Make(work->decoder.get(), picture, style, frame, error)) {
    return true;
  }
  *error = name + ": " + *error;
  return false;
}

/** Makes the frames and writes them, each as soon as it is made; a FileFiller. */
static bool Write_Frames(Make* work, FILE* file, std::string* error) {
  const auto& pictures = work->options.pictures;
  const int64_t count = static_cast<int64_t>(pictures.size()), total = count * work->options.repeat;
  const bool kept = work->options.repeat > 1;
  std::vector<uint8_t> made;
  for (int64_t i = 0; i < total; ++i) {
    if (i < count && !Make_Frame(work, pictures[static_cast<size_t>(i)], &made, error)) return false;
    if (i < count && kept) work->frames.push_back(made);
    if (!Put_Bytes(file, kept ? work->frames[static_cast<size_t>(i % count)] : made)) return false;
    ++work->written;
    Progress_Show(&work->progress, work->written, total, Frames(work->written));
  }
  return true;
}

static int Run_Make(Make* work) {
  const std::string& output = work->options.output;
  const auto fill = [work](FILE* file, std::string* error) { return Write_Frames(work, file, error); };
  std::string error;
  const bool own = output == "-";
  const bool made = own ? fill(Output(), &error) : Write_Whole_File(output, fill, &error);
  Progress_End(&work->progress);
  if (!made && !error.empty()) return Report(error);
  if (!own) std::fprintf(Output(), "%s written\n", Frames(work->written).c_str());
  return ExitDone;  // Output_Finish reports failures of the output itself.
}

static int Make_Stream(MakeOptions options) {
  for (const FrameForm form : {FrameForm::Compact, FrameForm::Prefixed, FrameForm::Jfif}) {
    if (options.form == Form_Name(form)) options.style.form = form;
  }
  Library_Start(options.kernelName);
  int code = ExitDone;
  {
    Make work = {options, {}, {}, 0, {}};
    code = Run_Make(&work);
  }
  JDEC_Exit();
  return code;
}

void Make_Command(CLI::App* app, int* code) {
  CLI::App* const command = app->add_subcommand("make", "Make a stream of pictures");
  const auto options = std::make_shared<MakeOptions>();
  command->add_option("PICTURE", options->pictures, "BMP, PPM or JPEG files, or - for standard input: a frame each")->required();
  command->add_option("-o,--output", options->output, "The stream's file, or - for standard output")->required();
  command->add_option("--form", options->form, "Form of the frames: compact, prefixed or jfif (compact)")
      ->check(CLI::IsMember({"compact", "prefixed", "jfif"}));
  command
      ->add_option("--quality", options->style.quality,
                   "0 to 100 (75); a frame's own number is quality * 80 / 100 + 10, with --form jfif the nearest one that\n"
                   "can be derived from its tables")
      ->check(CLI::Range(0, 100));
  command->add_option("--repeat", options->repeat, "Write all pictures this many times (1)")->check(CLI::Range(1, 1000000));
  command->add_option("--text", options->style.text,
                      "Text to hide in each frame: one byte per 8 blocks of 8x8, at most 1024 bytes");
  command->add_option("--cpu", options->kernelName, "Highest level of processor instructions to use")
      ->check(CLI::IsMember(Kernel_Names()));
  command->footer(
      "Frames are coded in blocks of 16x16. If a picture's size is not a multiple of 16, the remaining columns at the right and\n"
      "rows at the bottom are not coded: compact and prefixed frames keep the picture's size and are dark there, jfif frames\n"
      "are cropped. Pictures smaller than 16x16 are refused.\n\n"
      "Example:\n  velarto make a.bmp b.ppm c.jpg -o pictures.vlr --quality 60 --repeat 10");
  command->callback([options, code] { *code = Make_Stream(*options); });
}
