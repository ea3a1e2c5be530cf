/* Complete decoding and encoding by velarto and by its peers, on the same frames. */
#pragma once

#include "bench/compare/contest.h"
#include "bench/compare/subjects.h"
#include "kernels/cpu.h"

enum class Work { Decode, Encode };

/** "decode" or "encode". */
const char* Work_Name(Work work);

struct MatchOptions {
  std::vector<NamedKernelLevel> levels;  ///< velarto runs at each of these, in every round.
  double seconds = 0.25;                 ///< Least duration of a match.
  bool ffmpeg = true;                    ///< FFmpeg takes part too.
};

/** Who took part, and how long each took. */
struct Match {
  std::vector<std::string> names;  ///< velarto's levels in the order of the options, then the peers.
  std::vector<Times> times;
  std::vector<size_t> bytes;  ///< Size of the first frame: decoded, or made by each.
  int32_t scale = 0;          ///< Encoding: FFmpeg's quality scale.
};

/** Result of a match, and of Frames_Make. TooLong: a frame doesn't fit a frame store. */
enum class MatchEnd { Held, TooLong, Failed };

/** Holds a match on the pictures of a subject. quality: that of the frames' tables, 10 to 90. The results of all sides are
 * compared once. Failed, with *error, when one side fails or results differ by more than rounding. */
MatchEnd Match_Hold(Work work, const Subject& subject, int32_t quality, const MatchOptions& options, Match* match,
                    std::string* error);

/** Frames of the fixed JFIF form, one for each picture, made by libjpeg-turbo. */
MatchEnd Frames_Make(const Subject& subject, int32_t quality, std::vector<std::vector<uint8_t>>* frames, std::string* error);
