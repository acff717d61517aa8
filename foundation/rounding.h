// Tolerant rounding. A coordinate that misses a whole number by the noise of a few multiplications counts as that
// number. The tolerance is 1e-11 of the value's magnitude.
#pragma once

#include <cmath>
#include <cstdint>

inline constexpr double cfRoundingTolerance = 1e-11;

inline double floorT(double x) { return std::floor(x * (1.0 + (x < 0 ? -cfRoundingTolerance : cfRoundingTolerance))); }
inline double ceilT(double x) { return std::ceil(x * (1.0 - (x < 0 ? -cfRoundingTolerance : cfRoundingTolerance))); }

// A double as a long: truncated toward zero, saturated to 32 bits; not a number gives 0.
inline long cfTruncToLong(double x)
{
  if (!(x > -2147483648.0))
    return x == x ? -2147483647L - 1L : 0L;
  return x < 2147483647.0 ? static_cast<long>(x) : 2147483647L;
}

// The largest whole number not above, with the same limits; std::floor costs a call on machines of old.
inline long cfFloorToLong(double x)
{
  if (!(std::abs(x) < 2147483647.0))
    return cfTruncToLong(std::floor(x));
  long const whole = static_cast<long>(x);
  return x < static_cast<double>(whole) ? whole - 1 : whole;
}

inline long cfCeilToLong(double x)
{
  if (!(std::abs(x) < 2147483647.0))
    return cfTruncToLong(std::ceil(x));
  long const whole = static_cast<long>(x);
  return x > static_cast<double>(whole) ? whole + 1 : whole;
}

inline long floorTL(double x) { return cfFloorToLong(x * (1.0 + (x < 0 ? -cfRoundingTolerance : cfRoundingTolerance))); }
inline long ceilTL(double x) { return cfCeilToLong(x * (1.0 - (x < 0 ? -cfRoundingTolerance : cfRoundingTolerance))); }
