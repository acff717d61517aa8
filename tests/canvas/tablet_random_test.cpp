// Whatever happens to a tree of tablets, the next update leaves the pels that a repaint of everything leaves.
#include "tests/canvas/tablet_fixture.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace {

constexpr long kWidth = 48;
constexpr long kHeight = 40;

class RandomTree {
public:
  explicit RandomTree(unsigned seed, bool withOverlay)
      : random_(seed), image_({kWidth, kHeight}), overlay_({kWidth, kHeight}, 32, MemoryScope::overlayPlane),
        top_(&image_, withOverlay ? &overlay_ : nullptr)
  {
    top_.face = [](TestTablet& t) {
      if (t.wants(kImage))
        t.set(ccColor(10, 20, 30), kImage);
    };
    for (int i = 0; i < 9; ++i)
      add();
    top_.update(ccUIRect::inf, kBoth, false);
    top_.update(kBoth);
  }

  void step()
  {
    TestTablet& t = *kids_[pick(kids_.size())];
    switch (number(0, 15)) {
    case 0:
      t.visible(false);
      break;
    case 1:
      t.visible(true);
      break;
    case 2:
      t.moveRel({number(-6, 6), number(-6, 6)});
      break;
    case 3:
      t.size({number(0, 24), number(0, 24)});
      break;
    case 4:
      t.scopeRect(place());
      break;
    case 5:
      t.front();
      break;
    case 6:
      t.back();
      break;
    case 7:
      t.redraw(layer());
      break;
    case 8:
      t.fullDraw(layer());
      break;
    case 9:
      top_.update(place(), layer(), true);
      break;
    case 10:
      top_.update(place(), layer(), false);
      break;
    case 11:
      t.baseMap(number(0, 2) ? t.baseMap() : ccXform<2>(1, 1, ccVector<2>(double(number(-5, 5)), 3)));
      break;
    case 12:
      t.scaleExact({double(number(1, 3)), 1});
      break;
    case 13: {
      TestTablet& other = *kids_[pick(kids_.size())];
      t.setParent(number(0, 1) ? static_cast<ccUITablet&>(other) : top_, place());
      break;
    }
    case 14:
      top_.update(layer());
      break;
    case 15:
      recolour(t);
      break;
    }
  }

  // What a repaint of everything shows differs from what the update has left: names the first pel.
  std::string staleness()
  {
    top_.update(kBoth);
    std::vector<std::uint32_t> const image = image_.surface();
    std::vector<std::uint32_t> const overlay = overlay_.surface();
    bool const both = top_.scope(kOverlay) != nullptr;
    image_.poison(0x123456);
    overlay_.poison(0x123456);
    top_.update(ccUIRect::inf, kBoth, true);
    for (std::size_t i = 0; i < image.size(); ++i) {
      if (image[i] != image_.surface()[i])
        return "image " + where(i);
      if (both && overlay[i] != overlay_.surface()[i])
        return "overlay " + where(i);
    }
    return "";
  }

private:
  static std::string where(std::size_t i) { return std::to_string(i % kWidth) + "," + std::to_string(i / kWidth); }
  long number(long low, long high) { return std::uniform_int_distribution<long>(low, high)(random_); }
  std::size_t pick(std::size_t n) { return static_cast<std::size_t>(number(0, static_cast<long>(n) - 1)); }
  ccUIRect place()
  {
    return number(0, 7) ? ccUIRect(number(-8, 40), number(-8, 34), number(0, 30), number(0, 26)) : ccUIRect::firstQuad;
  }
  ccUITablet::Layers layer() { return static_cast<ccUITablet::Layers>(number(0, 2)); }
  ccColor color()
  {
    return ccColor(static_cast<unsigned char>(number(1, 255)), static_cast<unsigned char>(number(0, 255)), 7);
  }

  // Solid, solid by parts, declared opaque but not painting all, transparent with spots that follow the map, or blank.
  std::function<void(TestTablet&)> looks()
  {
    ccColor const c = color();
    ccColor const d = color();
    ccUITablet::Layers const l = number(0, 2) ? kImage : kOverlay;
    ccUIRect const spot(number(0, 10), number(0, 10), number(1, 12), number(1, 12));
    switch (number(0, 6)) {
    case 0:
      return plainFace(c, l);
    case 1:
      return [=](TestTablet& t) {
        for (ccUITablet::Layers k : {kImage, kOverlay})
          if (t.wants(k))
            t.set(k == l ? c : d, k);
      };
    case 2:
      return [=](TestTablet& t) {
        if (!t.wants(l))
          return;
        t.opaque(l, true);
        ccUIRect const whole(ccPair<long>(), t.size());
        t.outline3D(whole, c, d, 2, l);
        t.set(ccUIRect(2, 2, whole.width() - 4, whole.height() - 4), d, l);
      };
    case 3:
      return [=](TestTablet& t) {
        if (!t.wants(l))
          return;
        t.opaque(l, true);
        t.set(spot, c, l);
      };
    case 4:
      return [=](TestTablet& t) {
        if (t.wants(l))
          t.set(ccUIRect(t.scopeCoords(ccPoint(2, 2)), spot.sz()), c, l);
      };
    case 5:
      return [=](TestTablet& t) { // an image with its surroundings
        if (!t.wants(l))
          return;
        ccUIRect const inner(t.scopeCoords(ccPoint(3, 3)), spot.sz());
        t.set(inner, d, l);
        t.setComplement(inner, c, l);
        t.opaque(l, true);
      };
    default:
      return [](TestTablet&) {};
    }
  }
  // New looks are announced, or come while the tablet is hidden.
  void recolour(TestTablet& t)
  {
    long const way = number(0, 3);
    if (way == 0)
      t.visible(false);
    t.face = looks();
    if (number(0, 1))
      t.opaque(number(0, 1) ? kImage : kOverlay, false);
    if (way == 0)
      t.visible(true);
    else if (way == 1)
      t.fullDraw(kBoth);
    else
      t.redraw(kBoth);
  }
  void add()
  {
    ccUITablet& parent = kids_.empty() || number(0, 1) ? static_cast<ccUITablet&>(top_) : *kids_[pick(kids_.size())];
    kids_.push_back(std::make_unique<TestTablet>(parent, place()));
    kids_.back()->face = looks();
  }

  std::mt19937 random_;
  MemoryScope image_;
  MemoryScope overlay_;
  TestTablet top_;
  std::vector<std::unique_ptr<TestTablet>> kids_;
};

void runRandom(bool withOverlay)
{
  for (unsigned seed = 1; seed <= 200; ++seed) {
    RandomTree tree(seed, withOverlay);
    std::mt19937 pauses(seed);
    for (int step = 0; step < 60; ++step) {
      tree.step();
      if (pauses() % 9 == 0) {
        ASSERT_EQ("", tree.staleness()) << "seed " << seed << " step " << step;
      }
    }
  }
}

} // namespace

TEST(TabletProperty, updateLeavesThePelsOfAFullRepaintWithBothLayers) { runRandom(true); }

TEST(TabletProperty, updateLeavesThePelsOfAFullRepaintWithoutOverlay) { runRandom(false); }
