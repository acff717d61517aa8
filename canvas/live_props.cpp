#include "canvas/live_props.h"

#include "foundation/math_error.h"

#include <cmath>

void ccLiveDisplayProps::clientTransform(ccXform<2> const& x)
{
  double const determinant = x.matrix().determinant();
  if (determinant == 0 || !std::isfinite(determinant))
    throw ccMathError::Singular("ccLiveDisplayProps::clientTransform");
  clientTransform_ = x;
  xformSet_ = true;
}
