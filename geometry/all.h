// Everything of geometry/ for applications.
#pragma once

#include "geometry/affine_rect.h"
#include "geometry/annulus.h"
#include "geometry/annulus_section.h"
#include "geometry/bezier.h"
#include "geometry/circle.h"
#include "geometry/coord_axes.h"
#include "geometry/ellipse.h"
#include "geometry/ellipse_arc.h"
#include "geometry/gen_rect.h"
#include "geometry/gen_shape.h"
#include "geometry/lines.h"
#include "geometry/point_set.h"
#include "geometry/polygon.h"
#include "geometry/rect.h"
#include "geometry/shape.h"
#include "geometry/shape_tree.h"
