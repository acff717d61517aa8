// Numbers at the ends of their types, for sweeps that feed them into every argument.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>

namespace krs_test {

class NumberEnds {
public:
  explicit NumberEnds(unsigned seed) : random_(seed) {}

  unsigned below(unsigned n) { return static_cast<unsigned>(random_() % n); }

  // Mostly an end, else a small number, so that calls get past the checks of their arguments.
  long whole()
  {
    static constexpr long long ends[] = {0,           1,           -1,          2,           -2,
                                         0x3FFFFFFF,  -0x3FFFFFFF, 0x40000000,  -0x40000000, 0x7FFFFFFF,
                                         -0x7FFFFFFF, -0x80000000LL, 0x7FFFFFFE, 0x80000000LL, 0xFFFFFFFFLL,
                                         std::numeric_limits<long long>::max(), std::numeric_limits<long long>::min(),
                                         std::numeric_limits<long long>::max() - 1, std::numeric_limits<long long>::min() + 1};
    if (below(3) == 0)
      return static_cast<long>(below(40)) - 8;
    long long const v = ends[below(std::size(ends))];
    return v > std::numeric_limits<long>::max()   ? std::numeric_limits<long>::max()
           : v < std::numeric_limits<long>::min() ? std::numeric_limits<long>::min()
                                                  : static_cast<long>(v);
  }
  std::int32_t word()
  {
    long const v = whole();
    return v > 0x7FFFFFFF ? 0x7FFFFFFF : v < -0x7FFFFFFF - 1 ? -0x7FFFFFFF - 1 : static_cast<std::int32_t>(v);
  }
  double real()
  {
    using Limits = std::numeric_limits<double>;
    static constexpr double ends[] = {0.0, -0.0, 1, -1, 0.5, 1073741824.0, -1073741824.0, 2147483647.0, -2147483648.0,
                                      4294967296.0, 9223372036854775808.0, -9223372036854775808.0, Limits::max(),
                                      Limits::lowest(), Limits::min(), Limits::denorm_min(), Limits::infinity(),
                                      -Limits::infinity(), Limits::quiet_NaN(), 1e300, -1e300};
    return below(3) == 0 ? static_cast<double>(below(4000)) / 16 - 40 : ends[below(std::size(ends))];
  }

private:
  std::mt19937 random_;
};

// Rounds of a sweep: short in the usual run, all with KRS_LONG in the environment.
inline int sweepRounds(int usual, int all) { return std::getenv("KRS_LONG") ? all : usual; }

}  // namespace krs_test
