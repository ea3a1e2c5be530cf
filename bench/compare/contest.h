/* Ways to do the same work, timed side by side. */
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

struct Contestant {
  std::string name;
  std::function<bool(size_t frame)> run;        ///< What is timed: the work on one of the frames. False: it could not be done.
  std::function<void(size_t frame)> prepare{};  ///< May be empty: called ahead of each run, not timed.
};

/** Seconds, an entry a round. */
using Times = std::vector<double>;

/** A clock in seconds. */
using SecondsClock = double (*)();
/** The clock on the wall. */
double Wall_Seconds();
/** Processor time of the calling thread: what others do on the machine doesn't show in it. */
double Processor_Seconds();

/** Rounds until `seconds` have passed, a dozen at least: each has every contestant work once on the same frame, the next one of
 *  `frames` with each round, and begins with another contestant, so that none always finds the caches as the same other one left
 *  them. A first pass over all frames isn't counted. False, with *failed naming the contestant, when one can't do the work. */
bool Contest_Run(const std::vector<Contestant>& contestants, size_t frames, double seconds, SecondsClock clock,
                 std::vector<Times>* times, std::string* failed);

double Median(Times values);

/** Median of a / b, round by round: what disturbs a round disturbs both. */
double Median_Ratio(const Times& a, const Times& b);
