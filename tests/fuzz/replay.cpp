// A fuzzer as a plain program, for any compiler: runs the inputs in the given files and folders.
#include "fuzz/run.h"

#include <filesystem>
#include <fstream>

static int files = 0;

static void Replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const Bytes input(std::istreambuf_iterator<char>(file), {});
  std::fprintf(stderr, "%s\n", path.string().c_str());  // If the program breaks, the last line names the input.
  LLVMFuzzerTestOneInput(input.data(), input.size());
  ++files;
}

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      if (std::filesystem::exists(argv[i])) Replay(argv[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) Replay(entry.path());
  }
  std::fprintf(stderr, "%d inputs\n", files);
  return files ? 0 : 1;
}
