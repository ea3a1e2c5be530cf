#include "apps/velarto/camera/chaos.h"
#include "apps/velarto/camera/http_server.h"
#include "apps/velarto/camera/raw_server.h"
#include "apps/velarto/camera/supply.h"
#include "apps/velarto/commands.h"
#include "apps/velarto/output.h"
#include "apps/velarto/stream.h"
#include "decode/decoder.h"

#include <cmath>
#include <csignal>
#include <thread>

using Clock = std::chrono::steady_clock;

struct CameraOptions {
  std::string kernelName, size = "640x480", form = "prefixed", address = "127.0.0.1";
  uint16_t port = 8080;
  int32_t rawPort = -1;  ///< -1: none.
  double framesPerSecond = 25;
  double seconds = 0;  ///< 0: without end.
  SupplyOptions supply;
  ChaosOptions chaos;
};

/** The camera at work. */
struct Camera {
  CameraOptions options;
  Supply supply;
  Chaos chaos;
  Hub hub;
  std::shared_ptr<Listener> port, rawPort;
  std::shared_ptr<HttpServer> server;
  std::thread maker;
};

/* ---- Frames --------------------------------------------------------------------------------------------------------------- */

/** Makes a frame for all clients. */
static bool Make_Frame(Camera* camera, std::string* error) {
  const auto frame = std::make_shared<HubFrame>();
  if (!Supply_Next(&camera->supply, frame.get(), error)) return false;
  std::vector<uint8_t> bytes = frame->bytes;
  const ChaosHit hit = Chaos_Apply(&camera->chaos, frame->form, &bytes);
  frame->faulty = hit.cut || hit.garbage || hit.corrupt;
  if (frame->faulty) frame->sent = std::move(bytes);
  Hub_Put(&camera->hub, frame);
  return true;
}

/** Makes frames while there are clients, one at each multiple of the period after the start. A frame that is late is skipped, and
 * so is one that can't be made; the same error in a row is reported once. */
static void Run_Maker(Camera* camera) {
  const std::chrono::duration<double> period(1 / camera->options.framesPerSecond);
  const auto start = Clock::now();
  double moment = 0;
  std::string reported;
  while (Hub_Await_Watcher(&camera->hub)) {
    moment = std::max(moment + 1, std::floor((Clock::now() - start) / period));
    if (!Hub_Sleep(&camera->hub, start + std::chrono::duration_cast<Clock::duration>(moment * period))) return;
    std::string error;
    if (Make_Frame(camera, &error) || error == reported) continue;
    Report(error);
    reported = error;
  }
}

/* ---- Start and stop ------------------------------------------------------------------------------------------------------- */

static bool Open_Ports(Camera* camera, std::string* error) {
  const CameraOptions& options = camera->options;
  camera->port = Listener_Open(options.address, options.port, error);
  if (camera->port && options.rawPort >= 0) {
    camera->rawPort = Listener_Open(options.address, static_cast<uint16_t>(options.rawPort), error);
  }
  return camera->port && (camera->rawPort || options.rawPort < 0);
}

static void Print_Addresses(const Camera& camera) {
  const std::string name = Listener_Name(*camera.port);
  for (const char* path : {"/", "/stream", "/mjpeg", "/still.jpg"}) std::fprintf(Output(), "http://%s%s\n", name.c_str(), path);
  if (camera.rawPort) std::fprintf(Output(), "tcp://%s\n", Listener_Name(*camera.rawPort).c_str());
  std::fflush(Output());
}

/** Waits for one of the signals, or until the time is up. */
static void Await_End(const sigset_t& signals, double seconds) {
  const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::nanoseconds>(end - Clock::now()).count();
    if (seconds > 0 && left <= 0) return;
    const timespec wait = {left / 1000000000, left % 1000000000};
    if ((seconds > 0 ? sigtimedwait(&signals, nullptr, &wait) : sigwaitinfo(&signals, nullptr)) > 0) return;
  }
}

static void Serve(Camera* camera, const sigset_t& signals) {
  camera->server = Http_Serve(camera->port, &camera->hub);
  if (camera->rawPort) Raw_Serve(camera->rawPort, &camera->hub);
  camera->maker = std::thread(Run_Maker, camera);
  Print_Addresses(*camera);
  Await_End(signals, camera->options.seconds);
  Hub_Close(&camera->hub);
  Http_Stop(camera->server.get());
  Listener_Stop(camera->port.get());
  if (camera->rawPort) Listener_Stop(camera->rawPort.get());
  camera->maker.join();
}

static int Run_Camera(const CameraOptions& options) {
  // All threads inherit this mask: the signals are left to Await_End.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  Camera camera;
  camera.options = options;
  camera.chaos = Chaos_Start(options.chaos);
  std::string error;
  // The first frame shows whether any can be made.
  if (!Open_Ports(&camera, &error) || !Supply_Open(options.supply, &camera.supply, &error) || !Make_Frame(&camera, &error)) {
    Supply_Close(&camera.supply);
    return Report(error);
  }
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  Serve(&camera, signals);
  Supply_Close(&camera.supply);
  return ExitDone;
}

static void Read_Size(const std::string& text, SupplyOptions* supply) {
  int used = 0;
  const int read = std::sscanf(text.c_str(), "%5dx%5d%n", &supply->width, &supply->height, &used);
  const bool whole = read == 2 && static_cast<size_t>(used) == text.size();
  if (!whole || supply->width % 16 || supply->height % 16 || !Picture_Size_Allowed(supply->width, supply->height)) {
    throw CLI::ValidationError("--size", "two multiples of 16, like 640x480 or 1920x1088, with at most 128000 blocks of 16x16");
  }
}

static int Camera_Run(CameraOptions options) {
  Read_Size(options.size, &options.supply);
  FrameStyle* const style = &options.supply.style;
  for (const FrameForm form : {FrameForm::Compact, FrameForm::Prefixed, FrameForm::Jfif}) {
    if (options.form == Form_Name(form)) style->form = form;
  }
  // So that the JFIF form of every frame has exactly the frame's quality.
  style->quality = Quality_Readable(style->quality);
  Library_Start(options.kernelName);
  const int code = Run_Camera(options);
  JDEC_Exit();
  return code;
}

static void Add_Chaos_Options(CLI::App* command, ChaosOptions* chaos) {
  const CLI::Range probability(0.0, 1.0);
  command->add_option("--cut", chaos->cut, "Faults for testing: probability for each frame that its end is missing")
      ->check(probability);
  command->add_option("--garbage", chaos->garbage, "... that up to 4096 other bytes come before it")->check(probability);
  command->add_option("--corrupt", chaos->corrupt, "... that bytes of its coded data are changed")->check(probability);
  command->add_option("--seed", chaos->seed, "Seed of the faults (1): the same seed gives the same faults");
}

static void Add_Picture_Options(CLI::App* command, CameraOptions* options) {
  command->add_option("INPUT", options->supply.inputs,
                      "Pictures (BMP, PPM, JPEG), a frame each, or one recording, whose frames are sent unchanged; repeated.\n"
                      "Without INPUT: a harbour with a clock");
  command->add_option("--size", options->size, "WIDTHxHEIGHT of the harbour (640x480)");
  command->add_option("--fps", options->framesPerSecond, "Frames a second (25)")->check(CLI::Range(1.0, 120.0));
  command->add_option("--quality", options->supply.style.quality, "0 to 100 (75)")->check(CLI::Range(0, 100));
  command->add_option("--form", options->form, "Form of the frames: compact (up to 64 KB), prefixed or jfif (prefixed)")
      ->check(CLI::IsMember({"compact", "prefixed", "jfif"}));
  command->add_option("--text", options->supply.style.text, "Text to hide in each frame");
  command->add_option("--cpu", options->kernelName, "Highest level of processor instructions to use")
      ->check(CLI::IsMember(Kernel_Names()));
}

void Camera_Command(CLI::App* app, int* code) {
  CLI::App* const command = app->add_subcommand("camera", "Act as a network camera");
  const auto options = std::make_shared<CameraOptions>();
  Add_Picture_Options(command, options.get());
  command->add_option("--port", options->port, "Port of the HTTP server (8080), 0 for any free one")->check(CLI::Range(0, 65535));
  command->add_option("--raw-port", options->rawPort, "Port that serves the stream over plain TCP, 0 for any free one")
      ->check(CLI::Range(0, 65535));
  command->add_option("--bind", options->address,
                      "Address to serve at (127.0.0.1, this machine alone); 0.0.0.0 or :: is open to others, without a password");
  command->add_option("--seconds", options->seconds, "Stop after this many seconds (without it: on Ctrl-C)")
      ->check(CLI::Range(0.001, 1e9));
  Add_Chaos_Options(command, &options->chaos);
  command->footer(
      "Serves / (a page), /stream (the frames one after another), /mjpeg (multipart JPEG) and /still.jpg, and prints their\n"
      "addresses. A slow client loses whole frames and doesn't delay the others; without clients no frames are made. Faults\n"
      "are in /stream and on the raw port only: a frame cut short also swallows the start of the next one, which is lost too.\n\n"
      "Example:\n  velarto camera --size 1280x720 --fps 30 --raw-port 4000");
  command->callback([options, code] { *code = Camera_Run(*options); });
}
