// The frame sizer: whom it attaches to, when it shows, and the arithmetic of its handles.
#include "ui/shapes/frame_sizer.h"

#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

#include <random>

namespace {

TEST(FrameSizeHandlePos, cornersAndEdgeCentres)
{
  ccUIRect const r(10, 20, 31, 41);
  struct {
    int dx, dy;
    long x, y;
  } const cases[] = {{-1, -1, 10, 20}, {0, -1, 25, 20}, {1, -1, 41, 20}, {-1, 0, 10, 40},
                     {1, 0, 41, 40},   {-1, 1, 10, 61}, {0, 1, 25, 61},  {1, 1, 41, 61}};
  for (auto const& c : cases)
    EXPECT_EQ(cfFrameSizeHandlePos(r, c.dx, c.dy), ccPair<long>(c.x, c.y)) << c.dx << " " << c.dy;
}

TEST(FrameSizeHandleDrag, eachHandleMovesItsOwnEdges)
{
  ccUIRect const r(100, 100, 50, 40);
  struct {
    int dx, dy;
    ccUIRect expected;
  } const cases[] = {
      {-1, -1, {107, 103, 43, 37}}, {0, -1, {100, 103, 50, 37}}, {1, -1, {100, 103, 57, 37}}, {-1, 0, {107, 100, 43, 40}},
      {1, 0, {100, 100, 57, 40}},   {-1, 1, {107, 100, 43, 43}}, {0, 1, {100, 100, 50, 43}},  {1, 1, {100, 100, 57, 43}}};
  for (auto const& c : cases)
    EXPECT_EQ(cfFrameSizeHandleDrag(r, c.dx, c.dy, {7, 3}), c.expected) << c.dx << " " << c.dy;
}

TEST(FrameSizeHandleDrag, sizingWithTheLeftHandleToBelowTheMinimumLeavesTheRightEdgeInPlace)
{
  ccUIRect const r(100, 100, 50, 40);

  ccUIRect const sized = cfFrameSizeHandleDrag(r, -1, 0, {47, 0});

  EXPECT_EQ(sized.right(), 150);
  EXPECT_EQ(sized, ccUIRect(140, 100, 10, 10));
}

TEST(FrameSizeHandleDrag, theMinimumIsAnOrderOnPairs)
{
  ccUIRect const r(0, 0, 500, 40);
  // A height below 10 stands while the width is above 10.
  EXPECT_EQ(cfFrameSizeHandleDrag(r, 0, 1, {0, -37}), ccUIRect(0, 0, 500, 3));
  // At a width of 10 the height decides, below it nothing else counts.
  EXPECT_EQ(cfFrameSizeHandleDrag(r, 1, 1, {-490, -31}), ccUIRect(0, 0, 10, 10));
  EXPECT_EQ(cfFrameSizeHandleDrag(r, 1, 1, {-490, 0}), ccUIRect(0, 0, 10, 40));
  EXPECT_EQ(cfFrameSizeHandleDrag(r, 1, 1, {-491, 60}), ccUIRect(0, 0, 10, 10));
  EXPECT_EQ(cfFrameSizeHandleDrag(r, -1, -1, {495, 38}), ccUIRect(490, 30, 10, 10));
}

TEST(FrameSizeHandleDrag, theOppositeEdgesStayForAnyDrag)
{
  std::mt19937 random(7);
  auto const below = [&](long n) { return std::uniform_int_distribution<long>(-n, n)(random); };
  for (int i = 0; i < 20000; ++i) {
    ccUIRect const r(below(500), below(500), 11 + std::abs(below(300)), 11 + std::abs(below(300)));
    int const dx = static_cast<int>(below(1)), dy = static_cast<int>(below(1));
    ccUIRect const s = cfFrameSizeHandleDrag(r, dx, dy, {below(800), below(800)});
    ASSERT_TRUE(dx >= 0 || s.right() == r.right());
    ASSERT_TRUE(dx <= 0 || s.left() == r.left());
    ASSERT_TRUE(dy >= 0 || s.bottom() == r.bottom());
    ASSERT_TRUE(dy <= 0 || s.top() == r.top());
    ASSERT_GE(s.width(), 10);
  }
}

struct SizerStage : ::testing::Test {
  HookLog log;
  TestRoot root;
  SpyFrame form{log, "form", root.groundPlane(), ccUIRect(0, 0, 80, 60)};
  SpyFrame inner{log, "inner", &form, ccUIRect(10, 10, 30, 30)};
  ccUIFrameSizer& sizer{*root.frameSizer()};

  SizerStage() { form.condVisible(true), inner.condVisible(true); }
};

using FrameSizer = SizerStage;

TEST_F(FrameSizer, thereIsOneForEachRoot)
{
  EXPECT_EQ(root.frameSizer(), &sizer);
  EXPECT_TRUE(sizer.dontMove() && sizer.autoDelete());
  EXPECT_FALSE(sizer.visible());
  EXPECT_EQ(sizer.attachedTo(), nullptr);
  EXPECT_EQ(sizer.root(), &root);
}

TEST_F(FrameSizer, attachesInThePlaneOfItsFrameWithItsLayer)
{
  inner.drawLayer(ccUITablet::overlayLayer);

  sizer.attach(&inner);

  EXPECT_EQ(sizer.attachedTo(), &inner);
  EXPECT_EQ(sizer.parent(), root.groundPlane());
  EXPECT_EQ(sizer.frameRect(), ccUIRect::firstQuad);
  EXPECT_EQ(sizer.drawLayer(), ccUITablet::overlayLayer);
  EXPECT_EQ(root.groundPlane()->frontKid(), &sizer);

  ccUIControlFrame floating(root.floatingPlane(), ccUIRect(0, 0, 9, 9)), loose(&root, ccUIRect(0, 0, 9, 9));
  sizer.attach(&floating);
  EXPECT_EQ(sizer.parent(), root.floatingPlane());
  sizer.attach(&loose);
  EXPECT_EQ(sizer.parent(), &root);
  EXPECT_EQ(sizer.root(), &root);
  sizer.attach(nullptr);
  EXPECT_EQ(sizer.attachedTo(), nullptr);
}

TEST_F(FrameSizer, selectingAResizableFrameAttachesIt)
{
  inner.condSelected(true, false);
  EXPECT_EQ(sizer.attachedTo(), nullptr);
  inner.condSelected(false, false);
  inner.resizable(true);

  inner.condSelected(true, false);

  EXPECT_EQ(sizer.attachedTo(), &inner);
}

TEST_F(FrameSizer, makingASelectedFrameResizableAttachesItUnlessTheSizerStandsAtOrBelowIt)
{
  for (SpyFrame* node : {&form, &inner})
    node->condSelected(true, false);
  inner.resizable(true);
  EXPECT_EQ(sizer.attachedTo(), &inner);
  form.resizable(true);
  EXPECT_EQ(sizer.attachedTo(), &inner);
  EXPECT_TRUE(form.resizable());

  SpyFrame other(log, "other", &form, ccUIRect(0, 0, 5, 5));
  other.condVisible(true);
  other.condSelected(true, false);
  other.resizable(true);
  EXPECT_EQ(sizer.attachedTo(), &other);
  other.resizable(false);
  EXPECT_FALSE(other.resizable());
}

TEST_F(FrameSizer, refreshShowsItWhileTheFrameIsSelectedAndHidesItWhenTheFrameIsDeselected)
{
  form.condSelected(true, false);
  inner.resizable(true);
  inner.condSelected(true, false);

  sizer.refresh();
  EXPECT_TRUE(sizer.visible());
  inner.condSelected(false, false);
  sizer.refresh();
  EXPECT_FALSE(sizer.visible());
}

TEST_F(FrameSizer, refreshShowsItWhileItIsSelectedItself)
{
  inner.resizable(true);
  sizer.attach(&inner);
  sizer.refresh();
  EXPECT_FALSE(sizer.visible());
  sizer.condSelected(true, false);
  sizer.condVisible(true);
  sizer.refresh();
  EXPECT_TRUE(sizer.visible());
  inner.resizable(false);
  sizer.refresh();
  EXPECT_FALSE(sizer.visible());
}

TEST_F(FrameSizer, aFrameThatDiesOrLeavesTheRootIsDetached)
{
  auto* const dying = new SpyFrame(log, "dying", &form, ccUIRect(0, 0, 5, 5));
  sizer.attach(dying);
  delete dying;
  EXPECT_EQ(sizer.attachedTo(), nullptr);

  TestRoot other;
  SpyFrame leaving(log, "leaving", &form, ccUIRect(0, 0, 5, 5)), below(log, "below", &leaving, ccUIRect(0, 0, 5, 5));
  sizer.attach(&below);
  leaving.setParent(*other.groundPlane(), ccUIRect(0, 0, 5, 5));
  EXPECT_EQ(sizer.attachedTo(), nullptr);
}

TEST_F(FrameSizer, holdBalancesItsDrawing)
{
  sizer.hold(true);
  EXPECT_FALSE(sizer.drawEnabled_.top());
  sizer.hold(false);
  EXPECT_TRUE(sizer.drawEnabled_.top());
}

TEST_F(FrameSizer, globalUpdateRefreshesIt)
{
  form.condSelected(true, false);
  inner.resizable(true);
  inner.condSelected(true, false);
  EXPECT_FALSE(sizer.visible());
  root.update(ccUIRect(0, 0, 5, 5), ccUITablet::imageLayer, /*now=*/false);

  root.globalUpdate();

  EXPECT_TRUE(sizer.visible());
}

}  // namespace
