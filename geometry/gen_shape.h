// Bases of things that draw themselves. Here they only tell where they are; how they draw is told to the canvas. They are held
// by handles and made with new.
#pragma once

#include "geometry/rect.h"

class ccGenShape : public ccRepBase {
public:
  virtual ccRect encloseRect() const = 0;  // in client coordinates, without the width of a pen
};

class ccGraphic : public ccRepBase {
public:
  virtual ccRect encloseRect() const = 0;
};
