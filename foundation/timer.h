// A stop watch on the steady clock. Not synchronised.
#pragma once

#include <chrono>

class ccTimer {
public:
  explicit ccTimer(bool start = false);

  void start();  // goes on from the total so far; nothing if it runs
  void stop();   // keeps the total
  void reset();  // zeroes the total; a running timer runs on
  double sec() const;
  double msec() const { return sec() * 1000; }

private:
  using Clock = std::chrono::steady_clock;
  Clock::duration total_{};  // of the runs that have ended
  Clock::time_point since_{};
  bool running_ = false;
};
