// The tool as a user runs it.
#pragma once

#include "support/streams.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

inline const std::string sample = VELARTO_SOURCE_DIR "/samples/street.vlr";

inline std::string Read_Text(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void Expect_In(const std::string& text, const std::string& part) {
  EXPECT_NE(text.find(part), text.npos) << part << " in " << text;
}

struct Outcome {
  int code;
  std::string out, err;
};

/** A folder for the files of one test, and programs run in it. */
struct ToolTest : LibraryTest {
  const fs::path folder = testing::TempDir() + "velarto-tool-" + std::to_string(getpid());

  ToolTest() {
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    fs::remove_all(folder);
    fs::create_directory(folder);
  }
  ~ToolTest() override { fs::remove_all(folder); }

  /** `err` is without the library's line about each decoder's speed. */
  Outcome Run(const std::string& arguments, const std::string& program = VELARTO_TOOL_PATH) const {
    const std::string line = "cd '" + folder.string() + "' && { " + program + " " + arguments + "; } >out 2>err";
    const int status = std::system(line.c_str());
    std::string err = Read_Text(folder / "err");
    for (size_t at; (at = err.find("speed=")) != err.npos;) err.erase(at, err.find('\n', at) + 1 - at);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Read_Text(folder / "out"), err};
  }
  /** There is one line of error only, with that text in it, and that exit code. */
  void Expect_Failure(const std::string& arguments, const std::string& text, int code = 1,
                      const std::string& program = VELARTO_TOOL_PATH) const {
    const Outcome outcome = Run(arguments, program);
    EXPECT_EQ(outcome.code, code) << arguments;
    EXPECT_EQ(outcome.out, "") << arguments;
    EXPECT_TRUE(outcome.err.starts_with(fs::path(program).filename().string() + ": ")) << arguments << ": " << outcome.err;
    EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << arguments << ": " << outcome.err;
    Expect_In(outcome.err, text);
  }
  void Write(const std::string& name, const std::string& bytes) const { std::ofstream(folder / name, std::ios::binary) << bytes; }
  std::vector<std::string> Pictures() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
      const std::string name = entry.path().filename().string();
      if (name != "out" && name != "err") names.push_back(name);
    }
    std::ranges::sort(names);
    return names;
  }
};
