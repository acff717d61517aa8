// Everything of canvas/ for applications.
#pragma once

#include "canvas/bitmap.h"
#include "canvas/color.h"
#include "canvas/draws_itself.h"
#include "canvas/flag_stack.h"
#include "canvas/format.h"
#include "canvas/graphic_props.h"
#include "canvas/image_converter.h"
#include "canvas/live_props.h"
#include "canvas/rect.h"
#include "canvas/rle_buffer.h"
#include "canvas/scope.h"
#include "canvas/sketch.h"
#include "canvas/tablet.h"
#include "canvas/ui_error.h"
