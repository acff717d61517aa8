// Enumerations shared by scopes and tablets.
#pragma once

#include <cstdint>

// ccUITablet publishes these as its own.
struct cc_TabletEnums {
  enum Layers : std::int32_t { imageLayer, overlayLayer, bothLayers };
  enum ScaleModes : std::int32_t { scaleNone, scaleUp, scaleDown };
  enum InterpolationModes : std::int32_t { interpolateNone, interpolateLinear };
};
