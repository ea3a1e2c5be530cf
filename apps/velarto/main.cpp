#include "apps/velarto/commands.h"
#include "apps/velarto/output.h"
#include "apps/velarto/stream.h"

#include <sstream>

static std::string One_Line(const CLI::App* app, const CLI::Error& error) {
  const CLI::App* used = app;
  for (const CLI::App* command : app->get_subcommands()) used = command;
  const std::string name = used == app ? "" : " " + used->get_name();
  return std::string("velarto: ") + error.what() + " (see velarto" + name + " --help)\n";
}

/** Prints the parser's result: help and version to the output, usage errors to standard error. */
static int Answer(const CLI::App& app, const CLI::ParseError& error) {
  std::ostringstream out, wrong;
  const bool asked = app.exit(error, out, wrong) == 0;
  std::fputs(out.str().c_str(), Output());
  std::fputs(wrong.str().c_str(), stderr);
  return asked ? Output_Finish(ExitDone) : ExitUsage;
}

static int Run(int argc, char** argv) {
  Output_Open();
  CLI::App app(
      "velarto: live video of network cameras. SOURCE is a file, - for standard input, http://..., https://..., or "
      "tcp://HOST:PORT.",
      "velarto");
  app.set_version_flag("--version", "velarto " VELARTO_VERSION " (kernels: " + Kernel_Best() + ")");
  app.failure_message(One_Line);
  app.footer("Example:\n  velarto view street.vlr");
  app.require_subcommand(1);
  app.allow_windows_style_options(false);  // A path may begin with a slash there too.
  int code = ExitDone;
  for (const auto add :
       {Info_Command, Export_Command, Make_Command, Record_Command, Bench_Command, View_Command, Camera_Command}) {
    add(&app, &code);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return Answer(app, error);
  }
  return Output_Finish(code);
}

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velarto: %s\n", error.what());
    return ExitFailed;
  }
}
