#include "apps/velarto/stream.h"

#include "apps/velarto/output.h"
#include "apps/velarto/sources/reconnect.h"
#include "kernels/cpu.h"
#include "velarto.h"

#include <algorithm>

static constexpr size_t ChunkSize = 65536;

/** A source being read. */
struct Reading {
  const std::string& name;
  const std::atomic<bool>* stop;
  FrameWalk* walk;
  const FrameTaker& take;
  const ReadOptions& options;
  Source source;
  Reconnect reconnect;
  bool enough = false;  ///< The taker has asked to end.
};

static void Report_Connection(const Reading& reading, bool lost, const std::string& text) {
  if (reading.options.onLost) reading.options.onLost(lost);
  Report(Source_Title(reading.name) + ": " + text);
}

static void Take_Frames(Reading* reading) {
  WalkedFrame frame;
  while (!reading->enough && Walk_Next(reading->walk, &frame)) {
    if (Reconnect_Back(&reading->reconnect)) Report_Connection(*reading, false, "the connection is back");
    reading->enough = !reading->take(frame);
  }
}

/** Reads until the connection ends or the taker has enough. Gives what the last read gave. */
static int64_t Read_Connection(Reading* reading, std::string* error) {
  std::vector<uint8_t> chunk(ChunkSize);
  int64_t count = 1;
  while (count > 0 && !reading->enough) {
    count = Source_Read(&reading->source, chunk, error);
    const std::span<const uint8_t> bytes(chunk.data(), static_cast<size_t>(std::max<int64_t>(count, 0)));
    if (count > 0) {
      Walk_Add(reading->walk, bytes);
      if (reading->options.onBytes) reading->options.onBytes(bytes);
    } else {
      Walk_End(reading->walk);
    }
    Take_Frames(reading);
  }
  return count;
}

/** After the end of a connection: true if the source is open again. */
static bool Connect_Again(Reading* reading, const std::string& reason) {
  const FrameWalk& walk = *reading->walk;
  if (!reading->options.reconnect || reading->enough || reading->stop->load()) return false;
  // During a loss a response without a frame may come from a camera that is still starting.
  const bool worked = Source_Resumable(reading->source) && (walk.frames > 0 || walk.open);
  if (!worked && !reading->reconnect.lost) return false;
  Source_Close(&reading->source);
  if (Reconnect_Lost(&reading->reconnect))
    Report_Connection(*reading, true, "the connection was lost (" + reason + "); trying again");
  if (!Reconnect_Open(&reading->reconnect, reading->name, reading->stop, &reading->source)) return false;
  Walk_Resume(reading->walk);
  return true;
}

bool Read_Frames(const std::string& name, const std::atomic<bool>* stop, FrameWalk* walk, const FrameTaker& take,
                 std::string* error, const ReadOptions& options) {
  Reading reading = {name, stop, walk, take, options, {}, {}};
  if (!Source_Open(name, stop, &reading.source, error)) return false;
  int64_t count = 0;
  do count = Read_Connection(&reading, error);
  while (Connect_Again(&reading, count < 0 ? *error : "closed by the other side"));
  Source_Close(&reading.source);
  if (count >= 0 || reading.reconnect.lost) return true;
  *error = Source_Title(name) + ": " + *error;
  return false;
}

std::string No_Frame_Text(const std::string& name, const FrameWalk& walk) {
  return "no frame found in " + Source_Title(name) + " (" + std::to_string(Walk_Bytes(walk)) + " bytes read)";
}

std::vector<std::string> Kernel_Names() {
  std::vector<std::string> names;
  for (const NamedKernelLevel& level : kernelLevels) {
    if ((level.mask & ~Cpu_Levels()) == 0) names.emplace_back(level.name);
  }
  return names;
}

std::string Kernel_Best() { return Kernel_Names().back(); }

void Library_Start(const std::string& kernelName) {
  JDEC_Init();
  for (const NamedKernelLevel& level : kernelLevels) {
    if (kernelName == level.name) kernels = Kernels_Select(level.mask);
  }
}
