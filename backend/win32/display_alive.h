// Whether a display still stands after something that may have run hooks, which may delete it or take it off its window.
#pragma once

#include "backend/win32/display_list.h"
#include "backend/win32/win32_display.h"
#include "canvas/on_throw.h"
#include "ui/core/node_walk.h"

class ccWin32Display::cc_Alive {
public:
  explicit cc_Alive(ccWin32Display& display) : node_(&display), place_(display.place_) {}
  // It stands, and on the same window as before.
  explicit operator bool() const { return place_ ? cc_DisplayList::has(place_) : stands(); }
  bool stands() const { return node_.exists(); }

private:
  cc_NodeRef node_;
  cc_DisplayList::Place place_;
};
