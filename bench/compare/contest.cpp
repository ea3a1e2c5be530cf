#include "bench/compare/contest.h"

#include <algorithm>
#include <chrono>
#include <ctime>

static constexpr size_t LeastRounds = 12;

double Wall_Seconds() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

double Processor_Seconds() {
  timespec used = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
  return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

/** Seconds that the work took; negative if it failed. */
static double Run_Timed(const Contestant& contestant, size_t frame, SecondsClock clock) {
  if (contestant.prepare) contestant.prepare(frame);
  const double start = clock();
  const bool done = contestant.run(frame);
  const double seconds = clock() - start;
  return done ? seconds : -1;
}

bool Contest_Run(const std::vector<Contestant>& contestants, size_t frames, double seconds, SecondsClock clock,
                 std::vector<Times>* times, std::string* failed) {
  const size_t count = contestants.size();
  times->assign(count, {});
  for (size_t frame = 0; frame < frames; ++frame) {
    for (const Contestant& contestant : contestants) {
      if (Run_Timed(contestant, frame, clock) >= 0) continue;
      *failed = contestant.name;
      return false;
    }
  }
  const double start = Wall_Seconds();
  for (size_t round = 0; round < LeastRounds || Wall_Seconds() - start < seconds; ++round) {
    for (size_t i = 0; i < count; ++i) {
      const size_t turn = (round + i) % count;
      (*times)[turn].push_back(Run_Timed(contestants[turn], round % frames, clock));
    }
  }
  return true;
}

double Median(Times values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double Median_Ratio(const Times& a, const Times& b) {
  Times ratios(a.size());
  std::transform(a.begin(), a.end(), b.begin(), ratios.begin(), [](double x, double y) { return x / y; });
  return Median(std::move(ratios));
}
