// What tests of shapes look at: the places of a colour on the scope, and what was selected how.
#pragma once

#include "tests/support/test_display.h"
#include "ui/shapes/handle.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>

using Places = std::set<std::pair<long, long>>;

inline Places cfPlaces(MemoryScope const& scope, ccRGB const& color)
{
  Places found;
  ccUIRect const r = scope.rootRect();
  for (long y = 0; y < r.height(); ++y)
    for (long x = 0; x < r.width(); ++x)
      if (scope.rgb(x, y) == color)
        found.insert({x, y});
  return found;
}

inline ccRGB const kMagenta(255, 0, 255), kYellow(255, 255, 0), kCyan(0, 255, 255), kBlack(0, 0, 0);

// Ghosts in a colour that nothing else has.
class GhostColor {
public:
  explicit GhostColor(ccColor const& c = ccColor(10, 200, 30)) : former_(ccUIObject::dragColor())
  {
    ccUIObject::dragColor(c);
  }
  GhostColor(GhostColor const&) = delete;
  GhostColor& operator=(GhostColor const&) = delete;
  ~GhostColor() { ccUIObject::dragColor(former_); }
  static ccRGB rgb() { return ccUIObject::dragColor().toRGB(); }

private:
  ccColor const former_;
};

// An image of one grey, so that a display can be zoomed and panned.
inline ccPelBuffer<unsigned char> cfDark(long w, long h)
{
  ccPelBuffer<unsigned char> image(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      image.setPel(x, y, 0);
  return image;
}

// Selects a node as a press on it would, with all above it.
inline void cfSelect(ccUIObject& node) { node.userSelect(0); }

inline ccUIHandle* cfHandle(ccUIObject& shape, long index)
{
  ccUIObject* kid = shape.backKid();
  for (long i = 0; kid && i < index; ++i)
    kid = kid->closerSib();
  return dynamic_cast<ccUIHandle*>(kid);
}

inline long cfVisibleHandles(ccUIObject& shape)
{
  long n = 0;
  for (ccUIObject* kid = shape.backKid(); kid; kid = kid->closerSib())
    n += kid->visible() ? 1 : 0;
  return n;
}

// A handle that does nothing but stand there and count.
class StillHandle : public ccUIHandle {
public:
  explicit StillHandle(ccUIObject* parent, Icons which = squareIcon) : ccUIHandle(parent) { setIcon(which); }

  using ccUIHandle::update;
  void update() override { ++updates; }
  using ccUIHandle::dragged_;
  using ccUIHandle::draggedDirection_;

  long updates = 0;
};
