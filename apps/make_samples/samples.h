// The sample images, made from fixed seeds.
#pragma once

#include "foundation/pel_buffer.h"

ccPelBuffer<unsigned char> cf_conveyorSample();       // metal parts on a belt, two of them damaged
ccPelBuffer<unsigned char> cf_plateSample();          // a calibration plate seen at a slant
ccPelBuffer<unsigned short> cf_panelSample();         // 12 bits: a lit panel with defects, most of them faint
ccPelBuffer<ccPackedRGB32Pel> cf_capsSample();        // coloured caps in a tray, with faults

constexpr int cf_panelBits = 12;

namespace samples {
constexpr char const* conveyor = "conveyor.png";
constexpr char const* plate = "calibration_plate.png";
constexpr char const* panel = "panel_12bit.png";
constexpr char const* caps = "caps.png";
}  // namespace samples
