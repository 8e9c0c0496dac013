#pragma once

#include <chrono>

namespace ScrollingCapture::Program {

/// Measures the seconds of one stage of work after the other.
class StageClock {
 public:
  /// The seconds since the last call, or since the clock was made.
  double Lap() {
    const Clock::time_point now = Clock::now();
    const std::chrono::duration<double> lap = now - start;
    start = now;
    return lap.count();
  }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point start = Clock::now();
};

}  // namespace ScrollingCapture::Program
