#include "apps/velarto/sources/source.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

/** Milliseconds after which a wait checks the stop flag. */
static constexpr int StopLook = 50;

bool Pipe_Open(const std::string& path, Source* source, std::string* error) {
  // Without O_NONBLOCK opening would wait for a writer, whatever the stop flag says.
  source->handle = path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (source->handle >= 0) return true;
  *error = "can't open " + path + ": " + std::strerror(errno);
  return false;
}

/** Waits for bytes or the end; false when stopped. */
static bool Await_Bytes(const Source& source) {
  pollfd waiting = {static_cast<int>(source.handle), POLLIN, 0};
  while (!source.stop->load()) {
    if (poll(&waiting, 1, StopLook) != 0 && waiting.revents != 0) return true;
  }
  return false;
}

int64_t Pipe_Read(Source* source, std::span<uint8_t> buffer, std::string* error) {
  while (Await_Bytes(*source)) {
    const ssize_t count = read(static_cast<int>(source->handle), buffer.data(), buffer.size());
    if (count >= 0) return count;
    if (errno == EINTR || errno == EAGAIN) continue;
    *error = std::string("reading failed: ") + std::strerror(errno);
    return -1;
  }
  return 0;
}

void Pipe_Close(Source* source) {
  if (source->handle > STDIN_FILENO) close(static_cast<int>(source->handle));
  source->handle = -1;
}
