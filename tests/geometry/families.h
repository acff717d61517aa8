// Random shapes of every class, at a chosen scale.
#pragma once

#include "tests/geometry/shape_support.h"

namespace krs_test {

// Where shapes lie and how large their radii and lengths are, in client units. most over least is the aspect that a
// shape may have; a tenth of the lengths is 0.
struct Scale {
  double near = 100, far = 1e5; // one shape in four lies far away
  double least = 0.01, most = 1000;
};

std::vector<Family> families(Scale const& scale = {});

} // namespace krs_test
