/* Writes the results, as a table for readers and as lines of JSON for scripts. */
#pragma once

#include "bench/compare/matches.h"

#include <cstdio>

/** The ratios of a peer to one of velarto's levels in all matches of one kind of work. */
struct RatioSeries {
  Work work;
  std::string level, peer;
  std::vector<double> ratios;
};

struct Results {
  FILE* text = nullptr;   ///< Not owned, as the next one.
  FILE* lines = nullptr;  ///< One JSON object a line; may be null.
  std::vector<NamedKernelLevel> levels;
  std::vector<RatioSeries> series;
};

/** Writes the compiler and the versions of the peers. */
void Results_About(const Results& results);

/** Writes the head of the table of matches. */
void Results_Head(const Results& results);

/** Adds a match to the table. */
void Results_Match(Results* results, Work work, const Subject& subject, int32_t quality, const Match& match);

/** Reports that frames were too long for a frame store. */
void Results_Left_Out(const Results& results, Work work, const Subject& subject, int32_t quality);

/** Writes geometric mean and minimum of all matches. */
void Results_Summary(const Results& results);
