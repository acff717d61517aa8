// A small viewer on a screen in memory, for the targets that draw.
#pragma once

#include "apps/krsview/viewer.h"

#include <memory>
#include <sstream>

struct FuzzView {
  explicit FuzzView(int depth);

  ccViewOptions options;
  std::ostringstream errors;
  std::unique_ptr<ccViewer> viewer;
};
