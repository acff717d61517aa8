// Drawing and repainting of settled trees takes no memory from the heap.
#include "tests/canvas/tablet_fixture.h"
#include "tests/support/every_figure.h"
#include "tests/support/memory_watch.h"

#include <gtest/gtest.h>

namespace {

// Counts its drawing calls and keeps nothing.
class QuietScope : public MemoryScope {
public:
  explicit QuietScope(ccPair<long> const& size, long* calls) : MemoryScope(size), calls_(calls) {}

  using MemoryScope::draw;
  using MemoryScope::expand;
  using MemoryScope::set;
  ccUIScope* createChildScope(ccUIRect const& r, bool) override
  {
    auto* child = new QuietScope(ccPair<long>(1, 1), calls_);
    child->subset(*this, r);
    return child;
  }
  void lockScreenUpdatesPush(bool) override {}
  bool lockScreenUpdatesPop() override { return false; }
  void updateScreen() override {}
  void draw(ccPelBuffer_const<unsigned char> const&, ccPoint const&, bool, unsigned char, bool) override { ++*calls_; }
  void expand(ccPelBuffer_const<unsigned char> const&, ccPoint const&, ccPair<double> const&, bool, unsigned char, bool,
              InterpolationModes) override
  {
    ++*calls_;
  }
  void draw(ccLineSeg const&, ccGraphicProps const&) override { ++*calls_; }
  void draw(ccPolygon const&, ccGraphicProps const&) override { ++*calls_; }
  void draw(ccPolyline const&, ccGraphicProps const&) override { ++*calls_; }
  void draw(ccEllipse const&, ccGraphicProps const&) override { ++*calls_; }
  void draw(ccGenRect const&, ccGraphicProps const&) override { ++*calls_; }
  void set(ccUIRect const&, ccColor const&) override { ++*calls_; }
  void drawTo(ccPoint const&, ccGraphicProps const&) override { ++*calls_; }

private:
  long* calls_;
};

class QuietTablet : public ccUITablet {
public:
  using ccUITablet::ccUITablet;
  ccPelBuffer<unsigned char> pels{8, 8};
  void redraw_() override
  {
    draw(pels, ccPoint(), false, 0, true, redrawLayer_);
    setComplement(ccUIRect(0, 0, 8, 8), ccColor::dkGreyColor(), redrawLayer_);
    opaque(kImage, true);
    draw(ccLineSeg(ccPoint(0, 0), ccPoint(30, 30)), ccColor::redColor(), redrawLayer_);
    drawTo(ccPoint(9, 9), ccColor::redColor(), redrawLayer_);
  }
};

} // namespace

TEST(TabletAllocation, settledFramesTakeNoMemory)
{
  long calls = 0;
  QuietScope image({60, 40}, &calls);
  ccUITablet top(&image, nullptr);
  QuietTablet display(top, {5, 5, 40, 30});
  ccUITablet form(top, {20, 10, 6, 6}); // cuts the display into pieces
  form.opaque(kImage, true);
  form.set(ccColor::whiteColor(), kImage);
  auto const frame = [&] {
    display.scaleExact({2, 2});
    display.fullDraw(kBoth);
    display.update(kBoth);
    top.update(ccUIRect(8, 8, 5, 5), kImage, true);
    top.update(ccUIRect(30, 8, 5, 5), kImage, false);
    top.update(kBoth);
    display.draw(ccLineSeg(ccPoint(0, 0), ccPoint(20, 9)), ccColor::redColor(), kImage);
  };
  for (int i = 0; i < 3; ++i)
    frame();

  calls = 0;
  long const before = MemoryWatch::allocations();
  for (int i = 0; i < 20; ++i)
    frame();

  EXPECT_EQ(before, MemoryWatch::allocations());
  EXPECT_GT(calls, 200);
}

// Outlined and filled, under a map that keeps shapes and one that shears, near and so far that it must be cut.
TEST(TabletAllocation, everyFigureTakesNoMemoryOnceItHasBeenDrawn)
{
  long calls = 0;
  QuietScope image({60, 40}, &calls);
  ccUITablet top(&image, nullptr);
  ccUITablet form(top, {20, 10, 6, 6});  // cuts the top into pieces
  form.opaque(kImage, true);
  ccXform<2> const maps[] = {ccXform<2>(ccMatrix<2>(ccRadian(0.4), 1.5), ccVector<2>(9, 3)),
                             ccXform<2>(ccMatrix<2>(1, 0.5, 0.2, 2), ccVector<2>(-3, 7)),
                             ccXform<2>(ccMatrix<2>(3e8, 2e8, 0, 4e8), ccVector<2>(30, 20))};
  std::vector<NamedFigure> const figures = everyFigure(ccPoint(15, 12), 9);
  ASSERT_EQ(figures.size(), 23u);
  ccGraphicProps outlined(ccColor::whiteColor(), 3, ceDashPen, false), filled(ccColor::redColor(), 1, ceSolidPen, true);
  outlined.showDirection(true);
  outlined.showVertices(true);
  for (ccXform<2> const& map : maps) {
    top.baseMap(map);
    for (NamedFigure const& figure : figures)
      for (ccGraphicProps const* pen : {&outlined, &filled}) {
        for (int i = 0; i < 2; ++i)
          figure.draw(top, *pen, kImage);
        calls = 0;
        long const before = MemoryWatch::allocations();
        for (int i = 0; i < 5; ++i)
          figure.draw(top, *pen, kImage);
        EXPECT_EQ(before, MemoryWatch::allocations()) << figure.name << ' ' << (pen == &filled);
        if (&map != &maps[2]) {
          EXPECT_GT(calls, 0) << figure.name;
        }
      }
  }
  ccPolygon const triangle(std::vector<ccVector<2>>{{1, 1}, {9, 2}, {4, 8}}, 1);
  ccCircle const circle(ccPoint(9, 9), 4);
  long const before = MemoryWatch::allocations();
  top.draw(triangle, ccColor::redColor(), kImage);
  top.draw(circle, ccColor::redColor(), true, kImage);
  top.draw(ccGenRect(circle), ccColor::redColor(), kImage);
  top.drawPointIcon(ccPoint(3, 3), filled, kImage);
  EXPECT_EQ(before, MemoryWatch::allocations());
}
