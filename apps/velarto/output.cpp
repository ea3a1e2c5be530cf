#include "apps/velarto/output.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>

static FILE* output = stdout;
/** errno of the first failed write. */
static int outputError = 0;

void Output_Open() {
  if (output != stdout) return;
  const int own = dup(STDOUT_FILENO);
  FILE* const stream = own < 0 ? nullptr : fdopen(own, "wb");
  if (!stream) return;
  output = stream;
  dup2(STDERR_FILENO, STDOUT_FILENO);
}

FILE* Output() { return output; }

bool Output_Good() {
  if (std::ferror(output) && outputError == 0) outputError = errno;
  return outputError == 0;
}

int Output_Finish(int code) {
  if (std::fflush(output) != 0 && outputError == 0) outputError = errno;
  // Windows reports a closed pipe as EINVAL.
  if (Output_Good() || outputError == EPIPE || outputError == EINVAL) return code;
  return Report(std::string("can't write the output: ") + std::strerror(outputError));
}

int Report(const std::string& message) {
  std::fprintf(stderr, "velarto: %s\n", message.c_str());
  return ExitFailed;
}

std::string Error_Text() { return std::strerror(errno); }

static double Seconds() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

void Progress_Show(Progress* progress, int64_t done, int64_t total, const std::string& note) {
  static constexpr int Width = 30;
  const double now = Seconds();
  if (progress->start == 0) progress->start = now;
  if (now - progress->start < 1 || now - progress->lastDrawn < 0.1 || !isatty(STDERR_FILENO)) return;
  progress->lastDrawn = now;
  progress->drawn = true;
  if (total <= 0) {
    std::fprintf(stderr, "\r%s\033[K", note.c_str());
    return;
  }
  const double part = std::clamp(static_cast<double>(done) / static_cast<double>(total), 0.0, 1.0);
  const int full = static_cast<int>(part * Width);
  std::fprintf(stderr, "\r[%s%s] %3.0f %%  %s\033[K", std::string(static_cast<size_t>(full), '#').c_str(),
               std::string(static_cast<size_t>(Width - full), '.').c_str(), part * 100, note.c_str());
}

void Progress_End(Progress* progress) {
  if (progress->drawn) std::fputs("\r\033[K", stderr);
  progress->drawn = false;
}
