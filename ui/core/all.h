// Everything of ui/core/ for applications.
#pragma once

#include "ui/core/control_frame.h"
#include "ui/core/event_processor.h"
#include "ui/core/frame.h"
#include "ui/core/nested_coord_frame.h"
#include "ui/core/root.h"
#include "ui/core/shapes.h"
#include "ui/core/shapes_frame.h"
