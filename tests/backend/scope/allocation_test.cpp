// A picture of settled size is drawn without a single allocation.
#include "tests/backend/scope/scope_fixture.h"
#include "tests/support/every_figure.h"
#include "tests/support/memory_watch.h"

class ScopeAllocation : public ScopeTest {};

TEST_F(ScopeAllocation, framesOfSettledSizeAllocateNothing)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    create(scope);
    scope.colorMap(testColors());
    scope.colorMapEx(testColors());
    ccPelBuffer<unsigned char> const first = randomImage<unsigned char>(30, 20, 1), second = randomImage<unsigned char>(30, 20, 2);
    ccPelBuffer<ccPackedRGB32Pel> const colors = randomImage<ccPackedRGB32Pel>(30, 20, 1);
    std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(3, 3, 20, 20), true));
    long afterFirst = 0;
    for (int frame = 0; frame < 4; ++frame) {
      if (frame == 1)
        afterFirst = MemoryWatch::allocations();
      ccPelBuffer<unsigned char> const& image = frame % 2 ? first : second;
      scope.lockScreenUpdatesPush(true);
      child->draw(image, ccPoint(1, 1), false, 0, true);
      scope.draw(image, ccPoint(1, 1), true, 3, false);
      scope.expand(image, ccPoint(-3, 1), ccPair<double>(3, 3), false, 0, false, ccUIScope::InterpolationModes());
      child->sample(image, ccPoint(-3, 1), ccPair<double>(0.5, 0.5), true, 0, true);
      if (depth == 32)
        scope.draw(colors, ccPoint(2, 2), false, 0);
      scope.set(ccUIRect(1, 1, 3, 3), ccColor::redColor());
      scope.lockScreenUpdatesPop();
    }
    EXPECT_EQ(MemoryWatch::allocations(), afterFirst) << depth;
  }
}

TEST_F(ScopeAllocation, figuresThroughATabletAllocateNothingOnceTheyHaveBeenDrawn)
{
  constexpr ccUITablet::Layers image = ccUITablet::imageLayer;
  ScopeProbe scope;
  create(scope);
  ccUITablet top(&scope, nullptr);
  ccUITablet front(top, ccUIRect(12, 8, 6, 5));  // cuts the top into pieces
  front.opaque(image, true);
  std::vector<NamedFigure> const figures = everyFigure(ccPoint(18, 14), 9);
  std::vector<ccGraphicProps> const pens{ccGraphicProps(ccColor::whiteColor(), 1, ceSolidPen, false),
                                         ccGraphicProps(ccColor::whiteColor(), 1, ceSolidPen, true),
                                         ccGraphicProps(ccColor::whiteColor(), 4, ceSolidPen, false),
                                         ccGraphicProps(ccColor::whiteColor(), 1, ceDashDotPen, false),
                                         ccGraphicProps(ccColor::whiteColor(), 3, ceDashPen, false)};
  for (ccXform<2> const& map : {ccXform<2>(ccMatrix<2>(ccRadian(0.4), 1.2), ccVector<2>(3, 1)),
                                ccXform<2>(ccMatrix<2>(1, 0.3, 0.1, 1.4), ccVector<2>(-2, 2))}) {
    top.baseMap(map);
    for (NamedFigure const& figure : figures)
      for (ccGraphicProps const& pen : pens) {
        for (int i = 0; i < 2; ++i)
          figure.draw(top, pen, image);
        long const before = MemoryWatch::allocations();
        for (int i = 0; i < 3; ++i)
          figure.draw(top, pen, image);
        EXPECT_EQ(MemoryWatch::allocations(), before) << figure.name << ' ' << pen.penWidth() << ' ' << pen.penStyle();
      }
  }
}

TEST_F(ScopeAllocation, pensOfAnIndexAloneAllocateNothingEither)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    create(scope);
    scope.palette(testColors());
    scope.cacheMap(testColors());
    long afterFirst = 0;
    for (int i = 0; i < 3; ++i) {
      if (i == 1)
        afterFirst = MemoryWatch::allocations();
      scope.draw(ccLineSeg(ccPoint(2, 2), ccPoint(20, 9)),
                 ccGraphicProps(ccColor(static_cast<unsigned char>(40 + i)), 1, ceSolidPen, false));
    }
    EXPECT_EQ(MemoryWatch::allocations(), afterFirst) << depth;
  }
}
