#pragma once

#include <algorithm>
#include <ctime>

/// Seconds of this process on its core: what other processes of the machine take doesn't count.
double secondsOf(const auto& work) {
  const std::clock_t start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// The shortest of `times` runs.
double bestOf(int times, const auto& work) {
  double best = secondsOf(work);
  for (int i = 1; i < times; ++i) best = std::min(best, secondsOf(work));
  return best;
}
