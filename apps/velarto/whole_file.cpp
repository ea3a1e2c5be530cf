#include "apps/velarto/whole_file.h"

#include "apps/velarto/output.h"

#include <filesystem>

namespace fs = std::filesystem;

/** Removes a file at the end of its scope, unless it is kept. */
struct Discarded {
  fs::path path;
  bool kept = false;
  explicit Discarded(fs::path name) : path(std::move(name)) {}
  Discarded(const Discarded&) = delete;
  Discarded& operator=(const Discarded&) = delete;
  ~Discarded() {
    std::error_code ignored;
    if (!kept) fs::remove(path, ignored);
  }
};

struct FileCloser {
  void operator()(FILE* file) const { std::fclose(file); }
};

/** On a failure of the file itself *error stays empty, and *reason says why. */
static bool Fill_File(const fs::path& path, const FileFiller& fill, std::string* error, std::string* reason) {
  std::unique_ptr<FILE, FileCloser> file(std::fopen(path.string().c_str(), "wb"));
  if (file && !fill(file.get(), error)) {
    *reason = Error_Text();
    return false;
  }
  if (file && std::fflush(file.get()) == 0 && std::fclose(file.release()) == 0) return true;
  *reason = Error_Text();
  return false;
}

/** The file that a name leads to through links, or the name itself. */
static fs::path Target_Of(const std::string& path) {
  std::error_code failure;
  fs::path target = fs::canonical(path, failure);
  return failure ? fs::path(path) : target;
}

bool Write_Whole_File(const std::string& path, const FileFiller& fill, std::string* error) {
  error->clear();
  std::error_code failure;
  std::string reason;
  const fs::path target = Target_Of(path);
  const auto type = fs::status(target, failure).type();
  if (type == fs::file_type::directory) {
    reason = "it is a directory";
  } else if (type == fs::file_type::character || type == fs::file_type::block || type == fs::file_type::fifo) {
    if (Fill_File(target, fill, error, &reason)) return true;
  } else {
    Discarded temporary(target.string() + ".part");
    if (Fill_File(temporary.path, fill, error, &reason)) {
      fs::rename(temporary.path, target, failure);
      temporary.kept = !failure;
      if (temporary.kept) return true;
      reason = failure.message();
    }
  }
  if (error->empty()) *error = "can't write " + path + ": " + reason;
  return false;
}

bool Put_Bytes(FILE* file, std::span<const uint8_t> bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
}
