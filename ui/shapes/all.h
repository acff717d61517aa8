// Everything of ui/shapes/ for applications.
#pragma once

#include "ui/shapes/frame_sizer.h"
#include "ui/shapes/man_shape.h"
