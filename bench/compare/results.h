/* What was measured, as a table for the reader and as lines of JSON for scripts. */
#pragma once

#include "bench/compare/matches.h"

#include <cstdio>
/** The ratios of a peer to one of velarto's levels in all matches of one kind. */
struct RatioSeries {
  Work work;
  std::string level, peer;
  std::vector<double> ratios;
};

struct Results {
  FILE* text = nullptr;   ///< Not owned; the next one neither.
  FILE* lines = nullptr;  ///< A JSON object a line; may be null.
  std::vector<NamedKernelLevel> levels;
  std::vector<RatioSeries> series;
};

/** Compiler, and versions of the peers. */
void Results_About(const Results& results);

/** Heads the table of matches. */
void Results_Head(const Results& results);

/** Adds a match to the table. */
void Results_Match(Results* results, Work work, const Subject& subject, int32_t quality, const Match& match);

/** Says that frames were too long for a frame store. */
void Results_Left_Out(const Results& results, Work work, const Subject& subject, int32_t quality);

/** Geometric mean and minimum of all matches. */
void Results_Summary(const Results& results);
