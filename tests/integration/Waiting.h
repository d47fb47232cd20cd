#pragma once

#include <chrono>
#include <thread>

/// True as soon as `condition()` holds, false when it doesn't within `seconds`.
template <class Condition>
bool waitUntil(Condition condition, double seconds = 30.0) {
  using namespace std::chrono;
  const auto end = steady_clock::now() + duration<double>(seconds);
  while (!condition()) {
    if (steady_clock::now() > end) return condition();
    std::this_thread::sleep_for(milliseconds(2));
  }
  return true;
}
