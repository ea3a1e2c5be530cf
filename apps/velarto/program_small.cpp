#include "apps/velarto/commands.h"
#include "apps/velarto/program.h"
#include "apps/velarto/sources/url.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>

static constexpr const char* WholeProgram = "velarto-live";
static constexpr std::string_view ownWords[] = {"--version", "info", "export", "make", "record", "bench"};

void Add_Commands(CLI::App* app, int* code) { Add_File_Commands(app, code); }

bool Keep_Or_Pass_On(int argc, char** argv, std::string* error) {
  const bool own = argc > 1 && std::ranges::find(ownWords, std::string_view(argv[1])) != std::end(ownWords);
  if (own && std::none_of(argv + 2, argv + argc, Url_Is_Http)) return true;
  std::error_code failure;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", failure);
  const std::string whole = self.parent_path() / WholeProgram;
  execv(whole.c_str(), argv);
  *error = "can't start " + whole + ": " + std::strerror(errno);
  return false;
}
