/* velarto's whole roads beside those of its peers, on the same frames. */
#pragma once

#include "bench/compare/contest.h"
#include "bench/compare/subjects.h"
#include "kernels/cpu.h"

enum class Work { Decode, Encode };

/** "decode" or "encode". */
const char* Work_Name(Work work);

struct MatchOptions {
  std::vector<NamedKernelLevel> levels;  ///< At which velarto takes part, each in every round.
  double seconds = 0.25;                 ///< Of a match, at least.
  bool ffmpeg = true;                    ///< The second peer takes part too.
};

/** Who took part, and how long each took. */
struct Match {
  std::vector<std::string> names;  ///< velarto's levels in the order of the options, then the peers.
  std::vector<Times> times;
  std::vector<size_t> bytes;  ///< Size of the first frame: the one decoded, or the one that each has made.
  int32_t scale = 0;          ///< Encoding: FFmpeg's own measure of quality.
};

/** What became of a match; what Frames_Make has to say too. TooLong: a frame doesn't fit a frame store. */
enum class MatchEnd { Held, TooLong, Failed };

/** Holds a match on the pictures of a subject. quality: that of the frames' tables, 10 to 90. Each side's result is looked at
 * once. Failed, with *error, when someone can't do the work or results differ by more than rounding. */
MatchEnd Match_Hold(Work work, const Subject& subject, int32_t quality, const MatchOptions& options, Match* match,
                    std::string* error);

/** Frames of the fixed JFIF form, one a picture, made by libjpeg-turbo. */
MatchEnd Frames_Make(const Subject& subject, int32_t quality, std::vector<std::vector<uint8_t>>* frames, std::string* error);
