#include "apps/velarto/sources/source.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

bool File_Open(const std::string& path, Source* source, std::string* error) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    *error = path + " is a directory";
    return false;
  }
  source->file = std::fopen(path.c_str(), "rb");
  if (!source->file) {
    *error = "can't open " + path + ": " + std::strerror(errno);
    return false;
  }
  const auto size = std::filesystem::file_size(path, ignored);
  source->size = ignored ? 0 : static_cast<int64_t>(size);
  return true;
}

int64_t File_Read(Source* source, std::span<uint8_t> buffer, std::string* error) {
  const size_t count = std::fread(buffer.data(), 1, buffer.size(), source->file);
  if (count > 0 || !std::ferror(source->file)) return static_cast<int64_t>(count);
  *error = std::string("reading failed: ") + std::strerror(errno);
  return -1;
}

void File_Close(Source* source) {
  if (source->file) std::fclose(source->file);
  source->file = nullptr;
}
