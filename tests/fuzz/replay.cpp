// A fuzzer as a plain program, with any compiler: runs the inputs in the files and folders that it is given.
#include "fuzz/run.h"

#include <filesystem>
#include <fstream>

static int files = 0;

static void Replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const Bytes input(std::istreambuf_iterator<char>(file), {});
  std::fprintf(stderr, "%s\n", path.string().c_str());  // The last one told is the one that broke it.
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
