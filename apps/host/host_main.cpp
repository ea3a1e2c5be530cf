#include "apps/host/host.h"
#include "apps/velarto/desktop.h"
#include "apps/velarto/output.h"
#include "apps/velarto/sources/source.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>

static constexpr int LargestSide = 8192;

/** Reads "WxH". Gives what is wrong with it, or an empty text. */
static std::string Read_Size(const std::string& text, int32_t* width, int32_t* height) {
  char extra = 0;
  const bool read = std::sscanf(text.c_str(), "%5dx%5d%c", width, height, &extra) == 2;
  if (read && std::min(*width, *height) >= 1 && std::max(*width, *height) <= LargestSide) return "";
  return text + " is not a size like 640x480";
}

static void Add_Options(CLI::App* app, HostOptions* options) {
  app->add_option("SOURCE", options->source, "A file, - for standard input, tcp://HOST:PORT, or http://...")->required();
  app->add_option("--library", options->pluginName, "The plug-in library")->capture_default_str();
  app->add_option("--version-word", options->versionWord,
                  "Version of the browser's interface, the major number in the high byte (0x000B)");
  app->add_option("--type", options->type, "MIME type of the stream")->capture_default_str();
  app->add_option("--url", options->url, "URL to give the plug-in (SOURCE)");
  const auto size = [options](const std::string& text) { return Read_Size(text, &options->width, &options->height); };
  app->add_option("--size", "Size of the window (640x480)")->check(CLI::Validator(size, ""))->type_name("WxH");
  app->add_flag("--child", options->child, "Give the plug-in a part of the page's window instead of all of it");
  app->add_flag("--loop", options->loop, "Repeat a file");
  app->add_flag("--quit", options->quit, "Stop when the stream has ended and all of it has been shown");
  // Where they can't be chosen the registry and the screen are the user's own.
  if (Desktop_Has_Depths()) {
    app->add_flag("--menu", options->menu, "Turn on the plug-in's record menu, as the setting Mouse_RButton does on Windows");
    app->add_option("--screen", options->screenBits, "Depth of the screen that the plug-in sees, in bits")
        ->check(CLI::IsMember({8, 15, 16, 24, 32}));
  }
}

static std::string One_Line(const CLI::App*, const CLI::Error& error) {
  return std::string("velarto-host: ") + error.what() + " (see velarto-host --help)\n";
}

static int Run(int argc, char** argv) {
  Output_Open();
  HostOptions options;
  CLI::App app("velarto-host: plays the browser for the plug-in library, and streams SOURCE into it.", "velarto-host");
  app.set_version_flag("--version", "velarto-host " VELARTO_VERSION);
  app.failure_message(One_Line);
  app.footer("Example:\n  velarto-host street.vlr");
  app.allow_windows_style_options(false);  // A path may begin with a slash there too.
  Add_Options(&app, &options);
  try {
    app.parse(argc, argv);
    if (options.loop && Source_Live(options.source)) throw CLI::ValidationError("--loop", "only a file can be read again");
  } catch (const CLI::ParseError& error) {
    std::ostringstream out, wrong;
    const bool asked = app.exit(error, out, wrong) == 0;
    std::fputs(out.str().c_str(), Output());
    std::fputs(wrong.str().c_str(), stderr);
    return asked ? Output_Finish(ExitDone) : ExitUsage;
  }
  return Output_Finish(Host_Run(options));
}

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    return Host_Report(error.what());
  }
}
