#include "apps/velarto/commands.h"
#include "apps/velarto/desktop.h"
#include "apps/velarto/output.h"
#include "apps/velarto/stream.h"
#include "apps/velarto/viewer.h"
#include "velarto.h"

struct ViewOptions {
  std::string kernelName;
  int screenBits = 0;  ///< 0: as the desktop is.
  OverlayOptions overlays;
  ViewerOptions viewer;
};

static int View(const ViewOptions& given) {
  ViewOptions options = given;
  if (options.viewer.feed.loop && Source_Live(options.viewer.feed.source)) {
    throw CLI::ValidationError("--loop", "only a file can be read again");
  }
  std::string error;
  if (!Overlays_Read(options.overlays, &options.viewer.overlays, &error)) return Report(error);
  if (!Desktop_Start(options.screenBits, &error)) return Report(error);
  Library_Start(options.kernelName);
  const int code = Viewer_Run(options.viewer);
  JDEC_Exit();
  Desktop_Stop();
  return code;
}

void View_Command(CLI::App* app, int* code) {
  CLI::App* const command = app->add_subcommand("view", "Show a stream in a window");
  const auto options = std::make_shared<ViewOptions>();
  ViewerOptions* const viewer = &options->viewer;
  Add_Common_Options(command, &viewer->feed.source, &options->kernelName);
  command
      ->add_option("--fps", viewer->feed.framesPerSecond,
                   "Frames a second of a file (25); of a live source the newest frame is shown when it comes")
      ->check(CLI::Range(0.01, 1000.0));
  command->add_flag("--loop", viewer->feed.loop, "Repeat a file");
  command->add_option("--frames", viewer->frames, "Stop after this many frames, or at the end of the source")
      ->check(CLI::PositiveNumber);
  command->add_option("--snapshots", viewer->snapshots, "Folder for snapshots (the working folder)")
      ->check(CLI::ExistingDirectory);
  Add_Overlay_Options(command, &options->overlays);
  if (Desktop_Has_Depths()) {
    command->add_option("--screen", options->screenBits, "Show the picture as on a screen of this depth, in bits")
        ->check(CLI::IsMember({8, 15, 16, 24, 32}));
  }
  command->footer(
      "Keys: q or Esc quit, space pause, f full screen, s snapshot, g grid, i statistics, m motion search, p PTZ picture, arrows "
      "move\n"
      "the rectangle, h list of keys. A click marks or clears the cell of the grid under it.\n\n"
      "Example:\n  velarto view street.vlr --fps 12 --loop --grid --cells 3,2 4,2 --statistics");
  command->callback([options, code] { *code = View(*options); });
}
