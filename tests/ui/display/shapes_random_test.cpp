// After any run of operations on shapes, over images, overlays and forms and at any zoom, the screen is that of a full repaint.
#include "tests/support/test_display.h"

#include "geometry/lines.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace {

// An angle of two lines in a strip of its own, so that no two shapes ever meet: a shape that is drawn directly lies above
// closer ones until the next repaint, which is meant.
class Angle : public ccUIShapes {
public:
  Angle(long lane, ccUITablet::Layers layer) : lane_(lane) { drawLayer(layer); }
  ccVector<2> at;

protected:
  void pos_(ccVector<2> const& p) override { at = p; }
  ccVector<2> pos_() override { return at; }
  void draw_(ccUITablet& canvas, ccColor const& color, DrawMode) override
  {
    ccPoint const corner(12.0 * static_cast<double>(lane_), at.y());
    canvas.draw(ccLineSeg(corner, corner + ccVector<2>(8, 3)), color, drawLayer());
    canvas.draw(ccLineSeg(corner, corner + ccVector<2>(0, 9)), color, drawLayer());
  }

private:
  long lane_;
};

class Panel : public ccUIControlFrame {
public:
  Panel(ccUIFrame* parent, ccUIRect const& r, ccUITablet::Layers layer) : ccUIControlFrame(parent, r)
  {
    drawLayer(layer);
  }
  void redraw_() override
  {
    if (redrawLayer_ == drawLayer() || redrawLayer_ == bothLayers)
      set(ccColor::orangeColor(), drawLayer());
  }
};

ccPelBuffer<unsigned char> noise(std::mt19937& random, long w, long h)
{
  ccPelBuffer<unsigned char> b(w, h);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x)
      b.setPel(x, y, static_cast<unsigned char>(random() & 255u));
  return b;
}

struct Stage {
  TestDisplay test;
  std::vector<Panel*> panels;

  Stage(std::mt19937& random, bool overlay) : test(150, 110, {.depth = 32, .overlay = overlay})
  {
    test->image(noise(random, 120, 80), true);
    for (auto layer : {ccUITablet::imageLayer, ccUITablet::overlayLayer}) {
      if (layer == ccUITablet::overlayLayer && !overlay)
        continue;
      panels.push_back(new Panel(test.root().floatingPlane(), ccUIRect(20, 30, 40, 30), layer));
      panels.back()->condVisible(true);
    }
    test.update();
  }

  std::vector<std::uint32_t> pels()
  {
    std::vector<std::uint32_t> all = test.scope().surface();
    if (test.root().scope(ccUITablet::overlayLayer)) {
      std::vector<std::uint32_t> const& above = test.overlayScope().surface();
      all.insert(all.end(), above.begin(), above.end());
    }
    return all;
  }
};

void runStorm(unsigned seed, bool overlay, int steps)
{
  std::mt19937 random(seed);
  auto const below = [&random](long n) { return static_cast<long>(random() % static_cast<unsigned long>(n)); };
  Stage one(random, overlay), two(random, overlay);
  Stage* const stages[2] = {&one, &two};
  std::vector<std::unique_ptr<Angle>> shapes;
  for (long lane = 0; lane < 8; ++lane) {
    auto const layer = overlay && lane % 2 ? ccUITablet::overlayLayer : ccUITablet::imageLayer;
    shapes.push_back(std::make_unique<Angle>(lane, layer));
    shapes.back()->parent(one.test.imageFrame());
    shapes.back()->condVisible(true);
  }
  ccColor const colors[] = {ccColor::redColor(), ccColor::greenColor(), ccColor::cyanColor(), ccColor::yellowColor()};
  for (int step = 0; step < steps; ++step) {
    Angle& shape = *shapes[static_cast<std::size_t>(below(8))];
    Stage& stage = *stages[below(2)];
    long const what = below(14);
    switch (what) {
    case 0:
      shape.condVisible(!shape.condVisible());
      break;
    case 1:
    case 2:
      shape.pos(ccVector<2>(0, static_cast<double>(below(90)) - 5 + 0.25 * static_cast<double>(below(4))));
      break;
    case 3:
      shape.color(colors[below(4)]);
      break;
    case 4:
      shape.props(ccGraphicProps(colors[below(4)], 1, ceSolidPen, false));
      break;
    case 5:
      shape.front();
      break;
    case 6:
      shape.back();
      break;
    case 7:
      shape.condSelected(!shape.condSelected(), false);
      break;
    case 8:
      shape.parent(below(4) == 0 ? nullptr : static_cast<ccUIObject*>(stage.test.imageFrame()));
      // A shape that had no parent is shown by whoever adds it.
      shape.update(/*withKids=*/true, /*erase=*/true, nullptr, ccUITablet::bothLayers);
      break;
    case 9: {
      Panel& panel = *stage.panels[static_cast<std::size_t>(below(static_cast<long>(stage.panels.size())))];
      if (below(3) == 0)
        panel.condVisible(!panel.condVisible());
      else
        panel.scopeRect(ccUIRect(below(150) - 20, below(100) - 20, 1 + below(70), 1 + below(60)));
      break;
    }
    case 10:
      stage.test->magExact(below(2) ? static_cast<double>(1 + below(4)) : 0.6 + 0.1 * static_cast<double>(below(20)));
      break;
    case 11:
      stage.test->pan(ccVector<2>(static_cast<double>(below(60)) - 30, static_cast<double>(below(60)) - 30));
      break;
    case 12:
      stage.test->image(noise(random, below(3) ? 120 : 90, 80), true);
      break;
    default:
      shape.update(/*withKids=*/true, /*erase=*/true, nullptr, ccUITablet::bothLayers);
      break;
    }
    if (below(3) != 0)
      continue;
    for (Stage* s : stages) {
      s->test.update();
      std::vector<std::uint32_t> const seen = s->pels();
      s->test.root().fullDraw(ccUITablet::bothLayers);
      s->test.update();
      std::vector<std::uint32_t> const whole = s->pels();
      auto const differs = std::mismatch(seen.begin(), seen.end(), whole.begin());
      std::size_t const at = static_cast<std::size_t>(differs.first - seen.begin());
      ASSERT_TRUE(seen == whole) << "seed " << seed << " step " << step << " after operation " << what << ": pel "
                                 << at % 150 << "," << at / 150 << " is " << std::hex << *differs.first << ", not "
                                 << *differs.second;
    }
  }
  shapes.clear();
}

int rounds() { return std::getenv("KRS_LONG") ? 60 : 6; }

}  // namespace

TEST(ShapesOnScreen, anyRunOfOperationsLeavesThePelsOfAFullRepaint)
{
  for (int seed = 0; seed < rounds() && !HasFatalFailure(); ++seed)
    runStorm(static_cast<unsigned>(seed), /*overlay=*/false, 150);
}

TEST(ShapesOnScreen, anyRunOfOperationsLeavesThePelsOfAFullRepaintOnBothLayers)
{
  for (int seed = 0; seed < rounds() && !HasFatalFailure(); ++seed)
    runStorm(static_cast<unsigned>(1000 + seed), /*overlay=*/true, 150);
}
