// Several steps of which each must be tried, though an application's procedure may throw in any: the first exception goes on
// once all have had their turn.
#pragma once

#include <exception>

namespace plat::portable {

class Attempts {
public:
  template <class F> void run(F&& step)
  {
    try {
      step();
    } catch (...) {
      if (!thrown_)
        thrown_ = std::current_exception();
    }
  }
  void finish() const
  {
    if (thrown_)
      std::rethrow_exception(thrown_);
  }

private:
  std::exception_ptr thrown_;
};

}  // namespace plat::portable
