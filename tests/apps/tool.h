// The tool as a user runs it.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace fs = std::filesystem;

inline const std::string sample = VELARTO_SOURCE_DIR "/samples/street.vlr";

inline std::string Read_File(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

struct Outcome {
  int code;
  std::string out, err;
};

/** A folder for the files of one test, and the tool run in it. */
class ToolTest : public testing::Test {
 protected:
  void SetUp() override {
    folder = fs::path(testing::TempDir()) / ("velarto-tool-" + std::to_string(getpid()));
    fs::remove_all(folder);
    fs::create_directory(folder);
  }
  void TearDown() override { fs::remove_all(folder); }

  Outcome Run(const std::string& arguments) const {
    const std::string line =
        "cd '" + folder.string() + "' && { SDL_VIDEODRIVER=dummy " VELARTO_TOOL_PATH " " + arguments + "; } >out 2>err";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Read_File(folder / "out"), Read_File(folder / "err")};
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
  /** One line of error, with that text in it, and exit code 1. */
  void Expect_Failure(const std::string& arguments, const std::string& text) const {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.code, 1) << arguments;
    EXPECT_TRUE(outcome.err.starts_with("velarto: ")) << arguments << ": " << outcome.err;
    EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
    EXPECT_NE(outcome.err.find(text), std::string::npos) << arguments << ": " << outcome.err;
  }
  fs::path folder;
};
