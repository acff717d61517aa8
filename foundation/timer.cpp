#include "foundation/timer.h"

ccTimer::ccTimer(bool startNow)
{
  if (startNow)
    start();
}

void ccTimer::start()
{
  if (running_)
    return;
  since_ = Clock::now();
  running_ = true;
}

void ccTimer::stop()
{
  if (running_)
    total_ += Clock::now() - since_;
  running_ = false;
}

void ccTimer::reset()
{
  total_ = {};
  since_ = Clock::now();
}

double ccTimer::sec() const
{
  Clock::duration const total = running_ ? total_ + (Clock::now() - since_) : total_;
  return std::chrono::duration<double>(total).count();
}
