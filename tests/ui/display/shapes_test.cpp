// Shapes in the three coordinate frames of a display.
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include <gtest/gtest.h>

namespace {

using Layers = ccUITablet::Layers;
constexpr ccDisplay::CoordinateSystem kSystems[] = {ccDisplay::displayCoords, ccDisplay::imageCoords, ccDisplay::clientCoords};
constexpr auto kNoSystem = static_cast<ccDisplay::CoordinateSystem>(3);

TEST(DisplayShapes, eachSystemHasItsFrameAndOtherValuesNone)
{
  TestDisplay test(60, 40);
  EXPECT_EQ(test->shapesFrame(ccDisplay::displayCoords), test->frontKid());
  EXPECT_EQ(test->shapesFrame(ccDisplay::imageCoords), test->backKid());
  EXPECT_EQ(test->shapesFrame(ccDisplay::clientCoords), test->backKid()->closerSib());
  for (int other : {-1, 3, 1000})
    EXPECT_EQ(test->shapesFrame(static_cast<ccDisplay::CoordinateSystem>(other)), nullptr);
}

TEST(DisplayShapes, addingGivesTheFrameAndCountsTheShapeOnItsLayer)
{
  for (ccDisplay::CoordinateSystem cs : kSystems)
    for (Layers layer : {ccUITablet::imageLayer, ccUITablet::overlayLayer}) {
      TestDisplay test(60, 40);
      BoxShape shape(nullptr, ccVector<2>(5, 5), 6);
      shape.drawLayer(layer);
      long const before = test->shapesFrame(cs)->numShapes(layer);

      test->addShape(&shape, cs);
      EXPECT_EQ(shape.parent(), test->shapesFrame(cs));
      EXPECT_EQ(test->shapesFrame(cs)->numShapes(layer), before + 1);

      EXPECT_TRUE(test->removeShape(&shape));
      EXPECT_EQ(shape.parent(), nullptr);
      EXPECT_EQ(test->shapesFrame(cs)->numShapes(layer), before);
    }
}

TEST(DisplayShapes, anAddedShapeIsSeenAndARemovedOneIsGone)
{
  TestDisplay test(60, 40);
  test->image(cfGrey8(60, 40, 7), true);
  BoxShape shape(nullptr, ccVector<2>(5, 5), 6);
  shape.color(ccColor::redColor());
  shape.condVisible(true);

  test->addShape(&shape, ccDisplay::imageCoords);
  test.update();
  EXPECT_EQ(test.scope().screenRGB(5, 5), ccRGB(255, 0, 0));
  test->removeShape(&shape);
  test.update();
  EXPECT_EQ(test.scope().screenRGB(5, 5), ccRGB(7, 7, 7));
}

TEST(DisplayShapes, nullAndWrongSystemsAreIgnored)
{
  TestDisplay test(60, 40);
  test->addShape(nullptr, ccDisplay::imageCoords);
  BoxShape shape(nullptr, ccVector<2>(5, 5), 6);
  test->addShape(&shape, kNoSystem);
  EXPECT_EQ(shape.parent(), nullptr);
  EXPECT_FALSE(test->removeShape(nullptr));
  EXPECT_FALSE(test->removeShape(&shape));
}

TEST(DisplayShapes, removeOfAShapeInAnotherDisplaysFrameReturnsFalse)
{
  TestDisplay test(60, 40), other(60, 40);
  BoxShape shape(nullptr, ccVector<2>(5, 5), 6);
  other->addShape(&shape, ccDisplay::imageCoords);
  EXPECT_FALSE(test->removeShape(&shape));
  EXPECT_EQ(shape.parent(), other.imageFrame());
  EXPECT_TRUE(other->removeShape(&shape));
}

TEST(DisplayShapes, removeOfAPartOfAShapeReturnsFalse)
{
  TestDisplay test(60, 40);
  BoxShape shape(nullptr, ccVector<2>(5, 5), 6);
  BoxShape part(&shape, ccVector<2>(1, 1), 2);
  test->addShape(&shape, ccDisplay::imageCoords);
  EXPECT_FALSE(test->removeShape(&part));
  EXPECT_EQ(part.parent(), &shape);
  test->removeShape(&shape);
}

TEST(DisplayShapes, addingElsewhereMovesTheShape)
{
  TestDisplay test(60, 40);
  BoxShape shape(nullptr, ccVector<2>(5, 5), 6);
  test->addShape(&shape, ccDisplay::imageCoords);
  test->addShape(&shape, ccDisplay::displayCoords);
  EXPECT_EQ(shape.parent(), test.displayFrame());
  EXPECT_EQ(test.imageFrame()->numKids(), 0);
  EXPECT_TRUE(test->removeShape(&shape));
}

// Each frame's shape lies where its coordinates say, at every zoom.
TEST(DisplayShapes, lieAtTheirPlacesAtEveryZoomAndPan)
{
  ccColor const colours[] = {ccColor::redColor(), ccColor::greenColor(), ccColor::yellowColor()};
  for (double m : {1.0, 2.0, 5.0, 0.5, 1.7})
    for (double pan : {0.0, 3.0, -6.0}) {
      TestDisplay test(90, 80);
      ccPelBuffer<unsigned char> image = cfGrey8(60, 50, 7);
      image.offset({20, -10});
      image.clientFromImageXform(ccXform<2>(10, 10, ccVector<2>(1000, 2000)));
      test->image(image, true);
      test->magExact(m);
      test->pan({pan, -pan});
      plain::View view = cfView(90, 80, 60, 50, m, pan, -pan);
      view.offsetX = 20;
      view.offsetY = -10;
      BoxShape shown(nullptr, ccVector<2>(70, 3), 4);
      BoxShape onImage(nullptr, ccVector<2>(45, 12), 4);
      BoxShape onClient(nullptr, ccVector<2>(1000 + 10 * 51, 2000 + 10 * 16), 40);
      BoxShape* const shapes[] = {&shown, &onImage, &onClient};
      plain::Picture expected =
          plain::displayPicture(view, cfGreyOnSurface(image, 32), cfSurround(32));
      auto const box = [&](double x, double y, double side, ccColor const& c) {
        plain::Rect r;
        r.x = plain::pelOf(x);
        r.y = plain::pelOf(y);
        r.w = plain::pelOf(x + side) - r.x;
        r.h = plain::pelOf(y + side) - r.y;
        plain::fillRect(expected, r, test.scope().value(c));
      };
      for (int i = 0; i < 3; ++i) {
        shapes[i]->color(colours[i]);
        shapes[i]->condVisible(true);
        test->addShape(shapes[i], kSystems[i]);
      }
      // From the back: image, client, display coordinates.
      box(plain::displayX(view, 45), plain::displayY(view, 12), 4 * m, colours[1]);
      box(plain::displayX(view, 51), plain::displayY(view, 16), 4 * m, colours[2]);
      box(70, 3, 4, colours[0]);

      test->fullDraw(ccUITablet::bothLayers);

      EXPECT_EQ(plain::firstDifference(expected, test.screenPels()), "") << m << " " << pan;
      for (BoxShape* shape : shapes)
        test->removeShape(shape);
    }
}

TEST(DisplayShapes, areHitWhereTheyAreSeen)
{
  TestDisplay test(90, 80);
  test->image(cfGrey8(30, 20, 7), true);
  test->mag(3);
  auto* const shape = new BoxShape(test.imageFrame(), ccVector<2>(10, 10), 4);
  shape->condVisible(true);
  plain::View const view = cfView(90, 80, 30, 20, 3);
  long const x = plain::pelOf(plain::displayX(view, 10)), y = plain::pelOf(plain::displayY(view, 10));
  EXPECT_EQ(test.root().whoIsTouched({x, y}), shape);
  EXPECT_EQ(test.root().whoIsTouched({x + 11, y + 11}), shape);
  EXPECT_EQ(test.root().whoIsTouched({x - 1, y}), &test.display());
  EXPECT_EQ(test.root().whoIsTouched({x + 12, y}), &test.display());
}

}  // namespace
