/* Several ways to do the same work, timed in turn. */
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

struct Contestant {
  std::string name;
  std::function<bool(size_t frame)> run;        ///< The timed work, on one of the frames. False: it failed.
  std::function<void(size_t frame)> prepare{};  ///< May be empty: called before each run, not timed.
};

/** Seconds, one entry for each round. */
using Times = std::vector<double>;

/** A clock in seconds. */
using SecondsClock = double (*)();
/** Seconds by the clock. */
double Wall_Seconds();
/** Processor time of the calling thread; other work on the machine has little effect on it. */
double Processor_Seconds();

/** Runs rounds until `seconds` have passed, at least 12. In a round every contestant works once on the same frame; the next round
 *  takes the next of `frames` and begins with another contestant, so that none always finds the caches as the same other one left
 *  them. A first pass over all frames isn't counted. False if a contestant fails; *failed has its name. */
bool Contest_Run(const std::vector<Contestant>& contestants, size_t frames, double seconds, SecondsClock clock,
                 std::vector<Times>* times, std::string* failed);

double Median(Times values);

/** Median of a / b, round by round: what disturbs a round disturbs both. */
double Median_Ratio(const Times& a, const Times& b);
