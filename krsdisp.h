// krsdisp: everything an application needs, in one header.
#pragma once

#include "acquisition/all.h"
#include "backend/scope/win32_pel_buf_scope.h"
#include "backend/win32/win32_display.h"
#include "backend/win32/win32_root.h"
#include "canvas/all.h"
#include "foundation/all.h"
#include "geometry/all.h"
#include "platform/app.h"
#include "platform/objects.h"
#include "platform/window.h"
#include "ui/core/all.h"
#include "ui/core/client_frame.h"
#include "ui/display/display.h"
#include "ui/display/image_format.h"
#include "ui/notify/all.h"
#include "ui/shapes/all.h"
