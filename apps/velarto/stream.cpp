#include "apps/velarto/stream.h"

#include "kernels/kernels.h"
#include "velarto.h"

static constexpr size_t ChunkSize = 65536;

bool Read_Frames(const std::string& name, const std::atomic<bool>* stop, FrameWalk* walk, const FrameTaker& take,
                 std::string* error) {
  Source source;
  if (!Source_Open(name, stop, &source, error)) return false;
  std::vector<uint8_t> chunk(ChunkSize);
  int64_t count = 0;
  bool more = true;
  while (more && !walk->ended) {
    count = Source_Read(&source, chunk, error);
    if (count > 0) Walk_Add(walk, {chunk.data(), static_cast<size_t>(count)});
    if (count <= 0) Walk_End(walk);
    WalkedFrame frame;
    while (more && Walk_Next(walk, &frame)) more = take(frame);
  }
  Source_Close(&source);
  if (count >= 0) return true;
  *error = name + ": " + *error;
  return false;
}

std::string No_Frame_Text(const std::string& name, const FrameWalk& walk) {
  return "no frame found in " + (name == "-" ? "standard input" : name) + " (" + std::to_string(Walk_Bytes(walk)) +
         " bytes read)";
}

struct NamedLevel {
  const char* name;
  uint32_t mask;
};
static constexpr NamedLevel levels[] = {{"plain", KernelPlain}};

std::vector<std::string> Kernel_Names() {
  std::vector<std::string> names;
  for (const NamedLevel& level : levels) names.emplace_back(level.name);
  return names;
}

std::string Kernel_Best() { return Kernel_Names().back(); }

void Library_Start(const std::string& kernelName) {
  JDEC_Init();
  for (const NamedLevel& level : levels) {
    if (kernelName == level.name) kernels = Kernels_Select(level.mask);
  }
}
