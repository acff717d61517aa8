// How shapes get on the screen and off it again.
#include "tests/support/memory_scope.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

namespace {

// A shapes frame with a white background on its layer where wanted.
struct Sheet : ccUIShapesFrame {
  Sheet(ccUIControlFrame* parent, ccUIRect const& r) : ccUIShapesFrame(parent, r) {}
  bool white = false;
  long backgrounds = 0;

protected:
  void drawBackground_() override
  {
    ++backgrounds;
    if (white)
      set(ccColor::whiteColor(), imageLayer);
  }
};

struct DrawStage : ::testing::Test {
  HookLog log;
  MemoryScope image{{60, 40}}, overlay{{60, 40}, 32, MemoryScope::overlayPlane};
  TestRoot root{&image, &overlay};
  ccUIControlFrame panel{&root, ccUIRect(0, 0, 60, 40)};
  Sheet frame{&panel, ccUIRect(10, 5, 40, 30)};
  std::map<std::uint32_t, char> legend;

  DrawStage()
  {
    panel.condVisible(true);
    frame.condVisible(true);
    for (auto const& entry : {std::pair<ccColor, char>{ccColor::redColor(), 'r'}, {ccColor::greenColor(), 'g'},
                              {ccColor::blueColor(), 'b'}, {ccColor::yellowColor(), 'y'}, {ccColor::whiteColor(), 'w'},
                              {ccColor::magentaColor(), 'm'}, {ccColor::dkGreyColor(), '.'}})
      legend[image.value(entry.first)] = entry.second;
    legend[overlay.keyValue()] = ' ';
  }
  void white()
  {
    frame.white = true;
    frame.opaque(ccUITablet::imageLayer, true);
  }
  // A shape of side 4 on a layer, counted as whoever adds one does.
  std::unique_ptr<BoxShape> box(ccVector<2> const& at, ccColor const& color, ccUITablet::Layers layer, double side = 4)
  {
    auto shape = std::make_unique<BoxShape>(&frame, at, side);
    shape->drawLayer(layer);
    shape->color(color);
    frame.incrementCount(layer);
    shape->condVisible(true);
    return shape;
  }
  void settle()
  {
    root.globalUpdate();
    image.clearLog(), overlay.clearLog();
  }
  // The first row of pels of the frame.
  std::string row(MemoryScope const& scope, long y = 0, long length = 16)
  {
    return scope.picture(ccUIRect(10, 5 + y, length, 1), legend)[0];
  }
};

using ShapeDrawing = DrawStage;
constexpr auto onImage = ccUITablet::imageLayer;
constexpr auto onOverlay = ccUITablet::overlayLayer;

TEST_F(ShapeDrawing, aShownShapeIsDrawnOnItsLayerAtOnce)
{
  settle();

  auto s = box({0, 0}, ccColor::redColor(), onOverlay);

  EXPECT_EQ(row(overlay), "rrrr            ");
  EXPECT_EQ(row(image), "................");
  EXPECT_EQ(s->draws, 1);
  EXPECT_EQ(s->modes, std::vector<BoxShape::DrawMode>{BoxShape::drawNormal});
}

TEST_F(ShapeDrawing, aShapeMovedOnATransparentOverlayIsErasedThereAndTheImageIsNotDrawn)
{
  auto s = box({0, 0}, ccColor::redColor(), onOverlay);
  settle();

  s->pos({6, 0});

  EXPECT_EQ(row(overlay), "      rrrr      ");
  EXPECT_TRUE(image.log().empty() || image.calls("set") == 0);
}

TEST_F(ShapeDrawing, aShapeMovedOnAnOpaqueLayerHasItsAreaRepainted)
{
  white();
  auto s = box({0, 0}, ccColor::redColor(), onImage);
  settle();
  EXPECT_EQ(row(image), "rrrrwwwwwwwwwwww");

  s->pos({6, 0});

  EXPECT_EQ(row(image), "wwwwwwrrrrwwwwww");
}

TEST_F(ShapeDrawing, neighboursUnderAMovedShapeComeBack)
{
  auto below = box({2, 0}, ccColor::greenColor(), onOverlay);
  auto s = box({0, 0}, ccColor::redColor(), onOverlay);
  settle();
  EXPECT_EQ(row(overlay), "rrrrgg          ");

  s->pos({8, 0});

  EXPECT_EQ(row(overlay), "  gggg  rrrr    ");
}

TEST_F(ShapeDrawing, aHiddenShapeIsErasedWithItsKidsAndNothingComesBack)
{
  // The kids overlap each other and reach out of the shape.
  auto s = box({4, 0}, ccColor::redColor(), onOverlay);
  BoxShape k1(s.get(), {-3, 0}, 5), k2(s.get(), {-1, 0}, 3), k3(s.get(), {2, 0}, 6);
  for (BoxShape* kid : {&k1, &k2, &k3}) {
    kid->drawLayer(onOverlay);
    kid->color(ccColor::greenColor());
    kid->condVisible(true);
  }
  settle();
  ASSERT_EQ(row(overlay), " ggggggggggg    ");

  s->condVisible(false);

  EXPECT_EQ(row(overlay), "                ");
}

TEST_F(ShapeDrawing, aHiddenFrameWithoutBackgroundLeavesNothingOfOverlappingShapes)
{
  auto a = box({0, 0}, ccColor::redColor(), onOverlay), b = box({2, 0}, ccColor::greenColor(), onOverlay),
       c = box({4, 0}, ccColor::blueColor(), onOverlay);
  settle();
  ASSERT_EQ(row(overlay), "rrggbbbb        ");

  frame.condVisible(false);
  root.globalUpdate();

  EXPECT_EQ(row(overlay), "                ");
  frame.condVisible(true);
  root.globalUpdate();
  EXPECT_EQ(row(overlay), "rrggbbbb        ");
}

TEST_F(ShapeDrawing, colorOfASelectedShapeChangesItsColorButNotWhatIsDrawn)
{
  auto s = box({0, 0}, ccColor::redColor(), onOverlay);
  for (ccUIObject* node : std::initializer_list<ccUIObject*>{&panel, &frame, s.get()})
    node->condSelected(true, false);
  settle();
  ASSERT_EQ(row(overlay), "yyyy            ");

  s->color(ccColor::greenColor());

  EXPECT_EQ(s->color(), ccColor::greenColor());
  EXPECT_EQ(row(overlay), "yyyy            ");
  EXPECT_EQ(s->getColor(), ccUIObject::selectColor());
  EXPECT_EQ(s->getGraphicProps().penColor(), ccUIObject::selectColor());
  s->condSelected(false, false);
  EXPECT_EQ(row(overlay), "gggg            ");
  EXPECT_EQ(s->getGraphicProps().penColor(), ccColor::greenColor());
}

TEST_F(ShapeDrawing, selectionRedrawsButNotWhenVisibilityIsItsCause)
{
  auto s = box({0, 0}, ccColor::redColor(), onOverlay);
  panel.condSelected(true, false), frame.condSelected(true, false);
  settle();
  s->draws = 0;

  s->condSelected(true, false);
  EXPECT_EQ(s->draws, 1);
  s->select(ccUIObject::visibleState, false);
  s->deselect(ccUIObject::visibleState, false);
  EXPECT_EQ(s->draws, 1);
  s->deselect(ccUIObject::enabledState, false);
  EXPECT_EQ(s->draws, 2);
}

TEST_F(ShapeDrawing, propsSetTheWantedAndTheDrawnLook)
{
  auto s = box({0, 0}, ccColor::redColor(), onOverlay);
  settle();

  s->props(ccGraphicProps(ccColor::blueColor(), 3, ceDashPen, true));

  EXPECT_EQ(row(overlay), "bbbb            ");
  EXPECT_EQ(s->getGraphicProps(), ccGraphicProps(ccColor::blueColor(), 3, ceDashPen, true));
}

TEST_F(ShapeDrawing, comingToTheFrontDrawsOnTop)
{
  auto a = box({0, 0}, ccColor::redColor(), onOverlay), b = box({2, 0}, ccColor::greenColor(), onOverlay);
  settle();
  ASSERT_EQ(row(overlay), "rrgggg          ");
  b->draws = 0;

  a->front();

  EXPECT_EQ(row(overlay), "rrrrgg          ");
  EXPECT_EQ(b->draws, 0);
}

TEST_F(ShapeDrawing, goingToTheBackRepaintsEverythingCloser)
{
  auto a = box({0, 0}, ccColor::redColor(), onOverlay), b = box({2, 0}, ccColor::greenColor(), onOverlay),
       c = box({4, 0}, ccColor::blueColor(), onOverlay);
  settle();
  a->draws = b->draws = c->draws = 0;

  c->back();

  EXPECT_EQ(row(overlay), "rrggggbb        ");
  EXPECT_EQ(c->draws, 0);
  c->back();  // it is there already
  EXPECT_EQ(a->draws, 1);
  EXPECT_EQ(b->draws, 1);
}

TEST_F(ShapeDrawing, backLeavesHiddenSiblingsHidden)
{
  auto a = box({0, 0}, ccColor::redColor(), onOverlay), b = box({2, 0}, ccColor::greenColor(), onOverlay);
  a->condVisible(false);
  settle();

  b->back();

  EXPECT_EQ(row(overlay), "  gggg          ");
}

TEST_F(ShapeDrawing, aFramesRedrawDrawsCountedShapesOfItsLayerBackToFront)
{
  white();
  auto a = box({0, 0}, ccColor::redColor(), onImage), b = box({2, 0}, ccColor::greenColor(), onImage);
  auto o = box({0, 0}, ccColor::blueColor(), onOverlay);
  settle();
  a->draws = o->draws = 0;

  frame.redraw(onImage);

  EXPECT_EQ(row(image), "rrggggwwwwwwwwww");
  EXPECT_EQ(a->draws, 1);
  EXPECT_EQ(o->draws, 0);
}

TEST_F(ShapeDrawing, aLayerWithoutCountedShapesIsNotWalked)
{
  white();
  auto a = box({0, 0}, ccColor::redColor(), onImage);
  settle();
  frame.decrementCount(onImage);
  a->draws = 0;

  frame.redraw(onImage);

  EXPECT_EQ(a->draws, 0);
  EXPECT_EQ(row(image), "wwwwwwwwwwwwwwww");
}

TEST_F(ShapeDrawing, aHiddenKidIsLeftOutAndAVisibleOneIsDrawnAfterItsParent)
{
  auto s = box({0, 0}, ccColor::redColor(), onOverlay);
  BoxShape k1(s.get(), {1, 0}, 1), k2(s.get(), {2, 0}, 1);
  for (BoxShape* kid : {&k1, &k2}) {
    kid->drawLayer(onOverlay);
    kid->color(ccColor::greenColor());
  }
  k2.condVisible(true);
  settle();

  frame.redraw(onOverlay);

  EXPECT_EQ(row(overlay), "rrgr            ");
}

TEST_F(ShapeDrawing, anAreaUpdateDrawsOnlyShapesThatMeetTheArea)
{
  white();
  auto a = box({0, 0}, ccColor::redColor(), onImage), b = box({20, 0}, ccColor::greenColor(), onImage);
  settle();
  a->draws = b->draws = 0;

  root.update(ccUIRect(10, 5, 6, 6), onImage, /*now=*/true);

  EXPECT_EQ(a->draws, 1);
  EXPECT_EQ(b->draws, 0);
}

TEST_F(ShapeDrawing, optimizedDrawingIsOnDuringTheWalkAndOffAfterIt)
{
  white();
  auto a = box({0, 0}, ccColor::redColor(), onImage);
  settle();

  frame.redraw(onImage);

  std::vector<std::string> kinds;
  for (auto const& call : image.log())
    if (call.kind == "optimizeOn" || call.kind == "optimizeOff" || call.props.penColor() == ccColor::redColor())
      kinds.push_back(call.kind);
  ASSERT_GE(kinds.size(), 2u);
  EXPECT_EQ(kinds.front(), "optimizeOn");
  EXPECT_EQ(kinds.back(), "optimizeOff");
  EXPECT_EQ(overlay.calls("optimizeOn"), 0);
}

TEST_F(ShapeDrawing, aDragDrawsAShiftedGhostInTheDragColorAndEndsWithTheShapeInItsNewPlace)
{
  auto s = box({0, 0}, ccColor::redColor(), onOverlay);
  for (ccUIObject* node : std::initializer_list<ccUIObject*>{&panel, &frame, s.get()})
    node->condSelected(true, false);
  settle();

  s->dragStart({12, 6});
  s->dragAnimate({12, 6}, {18, 6});
  EXPECT_EQ(row(overlay), "yyyy  mmmm      ");
  EXPECT_EQ(s->modes.back(), BoxShape::drawDrag);
  EXPECT_EQ(s->colors.back(), ccUIObject::dragColor().rgb());
  EXPECT_EQ(s->pos(), ccVector<2>(0, 0));

  s->dragStop({12, 6}, {18, 6});
  root.globalUpdate();
  EXPECT_EQ(row(overlay), "      yyyy      ");
  EXPECT_EQ(s->pos(), ccVector<2>(6, 0));
}

TEST_F(ShapeDrawing, deletingAShapeWipesIt)
{
  auto s = box({0, 0}, ccColor::redColor(), onOverlay);
  settle();

  s.reset();

  EXPECT_EQ(row(overlay), "                ");
}

TEST_F(ShapeDrawing, deletingAFrameWithManyShapesRepaintsOnceForAll)
{
  auto* dying = new Sheet(&panel, ccUIRect(10, 5, 40, 30));
  dying->white = true;
  dying->condVisible(true);
  for (int i = 0; i < 50; ++i) {
    auto* s = new BoxShape(dying, {double(i % 30), double(i % 20)}, 4);
    s->color(ccColor::redColor());
    dying->incrementCount(onImage);
    s->condVisible(true);
  }
  settle();

  delete dying;
  root.globalUpdate();

  EXPECT_EQ(row(image), "................");
  EXPECT_LT(image.calls("set"), 10);
}

TEST_F(ShapeDrawing, aShapeDrawnWhileTheTabletRecordsLeavesTheRecordToTheRecorder)
{
  auto s = box({0, 0}, ccColor::redColor(), onOverlay);
  settle();
  ccUIRect changes[2];

  frame.recordChanges(true);
  s->update(true, false, nullptr, ccUITablet::bothLayers);
  frame.getChanges(changes, false);

  EXPECT_TRUE(changes[1].contains(ccUIRect(0, 0, 4, 4)));
}

}  // namespace
