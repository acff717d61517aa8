// Everything of geometry/ for applications.
#pragma once

#include "geometry/affine_rect.h"
#include "geometry/lines.h"
#include "geometry/rect.h"
#include "geometry/shape.h"
