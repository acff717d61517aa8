// Tablets that draw what a test tells them, and a tree of them on two memory surfaces.
#pragma once

#include "canvas/tablet.h"
#include "tests/support/memory_scope.h"

#include <functional>
#include <string>
#include <vector>

inline constexpr ccUITablet::Layers kImage = ccUITablet::imageLayer;
inline constexpr ccUITablet::Layers kOverlay = ccUITablet::overlayLayer;
inline constexpr ccUITablet::Layers kBoth = ccUITablet::bothLayers;

// One run of redraw_.
struct Pass {
  ccUITablet::Layers layer;
  bool inArea;
  ccUIRect active[2];
};

class TestTablet : public ccUITablet {
public:
  using ccUITablet::anyChanged;
  using ccUITablet::ccUITablet;
  using ccUITablet::clearAnyChanged;

  explicit TestTablet(ccUIRect const& orphan) : ccUITablet(static_cast<ccUITablet*>(nullptr), orphan) {}

  std::function<void(TestTablet&)> face; // what redraw_ draws
  std::function<void(TestTablet&, std::string const&)> onHook;
  std::vector<Pass> passes;
  std::vector<std::string> hooks;
  std::string name;
  std::vector<std::string>* shared = nullptr; // hooks of several tablets in one list, with their names

  long passesOn(Layers l) const
  {
    long count = 0;
    for (Pass const& p : passes)
      count += p.layer == l || p.layer == kBoth;
    return count;
  }
  bool wants(Layers l) const { return redrawLayer_ == l || redrawLayer_ == kBoth; }

  void redraw_() override
  {
    passes.push_back({redrawLayer_, inAreaUpdate_, {activeScope(kImage), activeScope(kOverlay)}});
    if (face)
      face(*this);
    else
      ccUITablet::redraw_();
  }
  void resize_() override { hook_("resize"); }
  void move_() override { hook_("move"); }
  void clipped_() override { hook_("clipped"); }
  void newParentTablet(ccUITablet* p) override { hook_(p ? "newParent" : "noParent"); }
  void parentMapChanged() override { hook_("parentMap"); }

private:
  void hook_(std::string const& what)
  {
    hooks.push_back(what);
    if (shared)
      shared->push_back(name + "." + what);
    if (onHook)
      onHook(*this, what);
  }
};

// Paints all of itself in one colour.
inline std::function<void(TestTablet&)> plainFace(ccColor const& c, ccUITablet::Layers l = kImage)
{
  return [=](TestTablet& t) {
    if (t.wants(l))
      t.set(c, l);
  };
}

// Paints a rectangle only.
inline std::function<void(TestTablet&)> spotFace(ccUIRect const& r, ccColor const& c, ccUITablet::Layers l = kImage)
{
  return [=](TestTablet& t) {
    if (t.wants(l))
      t.set(r, c, l);
  };
}

// A top tablet of 40 x 30 pels whose image layer is blue all over and whose overlay is pass colour.
struct TestTree {
  MemoryScope image{ccPair<long>(40, 30), 32, MemoryScope::imagePlane};
  MemoryScope overlay{ccPair<long>(40, 30), 32, MemoryScope::overlayPlane};
  TestTablet top{&image, &overlay};

  TestTree()
  {
    top.face = [](TestTablet& t) {
      if (t.wants(kImage))
        t.set(ccColor::blueColor(), kImage);
    };
    top.update(ccUIRect::inf, kBoth, false);
    flush();
  }
  void flush()
  {
    top.update(kBoth);
    image.clearLog();
    overlay.clearLog();
    top.passes.clear();
  }
  // One character a pel: . blue, and the first letter of red, green, white, yellow, cyan, magenta; 0 black, - pass.
  static std::vector<std::string> picture(MemoryScope const& s, ccUIRect const& r)
  {
    return s.picture(r, {{s.value(ccColor::blueColor()), '.'},
                         {s.value(ccColor::redColor()), 'r'},
                         {s.value(ccColor::greenColor()), 'g'},
                         {s.value(ccColor::whiteColor()), 'w'},
                         {s.value(ccColor::yellowColor()), 'y'},
                         {s.value(ccColor::cyanColor()), 'c'},
                         {s.value(ccColor::magentaColor()), 'm'},
                         {s.value(ccColor::blackColor()), '0'},
                         {s.value(ccColor::passColor()), '-'}});
  }
  std::vector<std::string> imagePicture(ccUIRect const& r) const { return picture(image, r); }
  std::vector<std::string> overlayPicture(ccUIRect const& r) const { return picture(overlay, r); }
};

using Rows = std::vector<std::string>;

// The passes of a tablet: all of it or a part, and the rectangle on the image layer.
inline Rows areas(TestTablet const& t)
{
  Rows all;
  for (Pass const& p : t.passes) {
    ccUIRect const& r = p.active[0];
    all.push_back((p.inArea ? "part " : "all ") + std::to_string(r.left()) + "," + std::to_string(r.top()) + " " +
                  std::to_string(r.width()) + "x" + std::to_string(r.height()));
  }
  return all;
}
