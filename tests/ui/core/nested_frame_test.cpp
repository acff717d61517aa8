// Frames whose map follows their parent's.
#include "tests/support/memory_scope.h"
#include "tests/support/test_tree.h"
#include "ui/core/nested_coord_frame.h"

#include <gtest/gtest.h>

namespace {

struct NestedStage : ::testing::Test {
  TestRoot root;
  ccUIControlFrame panel{&root, ccUIRect(0, 0, 100, 100)};
  ccUINestedCoordFrame frame{&panel, ccUIRect::firstQuad};

  NestedStage() { panel.condVisible(true), frame.condVisible(true); }
};

using NestedFrame = NestedStage;

TEST_F(NestedFrame, isClickableDraggableAndDoesNotMove)
{
  EXPECT_TRUE(frame.clickable() && frame.draggable() && frame.dontMove());
  EXPECT_EQ(frame.parentFromChild(), ccXform<2>());
}

TEST_F(NestedFrame, takesScaleModeAndMapOfItsParentAndAppliesItsOwnTransformFirst)
{
  panel.baseMap(ccXform<2>(2, 3, ccVector<2>(10, 20)));
  panel.scaleExact({0.5, 0.25});
  panel.scaleMode(ccUITablet::scaleUp);

  frame.parentFromChild(ccXform<2>(4, 5, ccVector<2>(1, 2)));

  EXPECT_EQ(frame.scaleExact(), ccPair<double>(0.5, 0.25));
  EXPECT_EQ(frame.scaleMode(), ccUITablet::scaleUp);
  // p -> (4x + 1, 5y + 2) -> (8x + 12, 15y + 26)
  EXPECT_EQ(frame.baseMap(), ccXform<2>(8, 15, ccVector<2>(12, 26)));
  EXPECT_EQ(frame.screenMap_, ccXform<2>(4, 3.75, ccVector<2>(6, 6.5)));
}

TEST_F(NestedFrame, followsEveryChangeOfTheParentsMap)
{
  frame.parentFromChild(ccXform<2>(4, 5, ccVector<2>(1, 2)));

  panel.baseMap(ccXform<2>(2, 3, ccVector<2>(0, 0)));
  EXPECT_EQ(frame.baseMap(), ccXform<2>(8, 15, ccVector<2>(2, 6)));
  panel.scaleExact({3, 3});
  EXPECT_EQ(frame.scaleExact(), ccPair<double>(3, 3));
  EXPECT_EQ(frame.parentFromChild(), ccXform<2>(4, 5, ccVector<2>(1, 2)));
}

TEST_F(NestedFrame, remembersThePreviousTransformOnDemand)
{
  ccXform<2> const x(4, 5, ccVector<2>(1, 2));
  frame.parentFromChild(x);
  EXPECT_EQ(frame.prevParentFromChild(), ccXform<2>());

  frame.updatePrevXform();
  frame.parentFromChild(ccXform<2>());

  EXPECT_EQ(frame.prevParentFromChild(), x);
}

TEST_F(NestedFrame, isNeverReturnedByWhoIsTouched)
{
  frame.opaque(ccUITablet::imageLayer, true);
  frame.opaque(ccUITablet::overlayLayer, true);
  EXPECT_EQ(root.whoIsTouched({5, 5}), nullptr);
  panel.opaque(ccUITablet::imageLayer, true);
  EXPECT_EQ(root.whoIsTouched({5, 5}), &panel);

  BoxShape box(&frame, {0, 0});
  box.condVisible(true);
  EXPECT_EQ(root.whoIsTouched({5, 5}), &box);
  EXPECT_EQ(root.whoIsTouched({50, 50}), &panel);
}

TEST_F(NestedFrame, itsShapesAreHitThroughItsMap)
{
  BoxShape box(&frame, {0, 0});
  box.condVisible(true);

  frame.parentFromChild(ccXform<2>(2, 2, ccVector<2>(30, 30)));

  EXPECT_EQ(root.whoIsTouched({49, 49}), &box);
  EXPECT_EQ(root.whoIsTouched({29, 30}), nullptr);
  EXPECT_EQ(root.whoIsTouched({50, 49}), nullptr);
}

TEST(NestedFrameDrawing, aNewTransformMarksNothingByItself)
{
  MemoryScope image({100, 100});
  TestRoot root(&image, nullptr);
  ccUIControlFrame panel(&root, ccUIRect(0, 0, 100, 100));
  ccUINestedCoordFrame frame(&panel, ccUIRect::firstQuad);
  panel.condVisible(true), frame.condVisible(true);
  root.globalUpdate();

  frame.parentFromChild(ccXform<2>(2, 2, ccVector<2>(1, 1)));

  EXPECT_FALSE(root.anyChanged(ccUITablet::imageLayer));
  EXPECT_TRUE(frame.drawEnabled_.top());
  EXPECT_EQ(frame.drawEnabled_.depth(), 0);
}

}  // namespace
