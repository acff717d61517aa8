// Everything of ui/shapes/ for applications.
#pragma once

#include "ui/shapes/frame_sizer.h"
#include "ui/shapes/handle.h"
#include "ui/shapes/icon.h"
#include "ui/shapes/label.h"
#include "ui/shapes/line.h"
#include "ui/shapes/line_seg.h"
#include "ui/shapes/man_shape.h"
#include "ui/shapes/point_shape.h"
