#include "geometry/shape.h"

ccPtrHandle<ccShape> ccShape::clone() const { return clone_(); }
ccPtrHandle_const<ccShape> ccShape::map(ccXform<2> const& x) const { return map_(x); }
