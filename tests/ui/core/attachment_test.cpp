// Frames that keep their distance to a point of the parent's area.
#include "tests/support/memory_scope.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

namespace {

struct Attached : ::testing::Test {
  HookLog log;
  MemoryScope image{{400, 300}};
  TestRoot root{&image, nullptr};
  ccUIControlFrame parent{&root, ccUIRect(0, 0, 100, 80)};
  ccUIControlFrame kid{&parent, ccUIRect(30, 20, 10, 10)};
};

using Attachment = Attached;

TEST_F(Attachment, eachPointKeepsItsDistance)
{
  // The parent grows from 100 x 80 to 131 x 121; half of the width goes from 50 to 65, of the height from 40 to 60.
  struct {
    ccUIControlFrame::AttachedTo to;
    long x, y;
  } const cases[] = {
      {ccUIControlFrame::attachedNone, 30, 20},
      {ccUIControlFrame::attachedTopCenter, 45, 20},
      {ccUIControlFrame::attachedTopRight, 61, 20},
      {ccUIControlFrame::attachedLeftCenter, 131, 40},  // the parent's width itself
      {ccUIControlFrame::attachedCenter, 45, 40},
      {ccUIControlFrame::attachedRightCenter, 61, 40},
      {ccUIControlFrame::attachedBottomLeft, 30, 61},
      {ccUIControlFrame::attachedBottomCenter, 45, 61},
      {ccUIControlFrame::attachedBottomRight, 61, 61},
  };
  for (auto const& c : cases) {
    kid.attachedTo(ccUIControlFrame::attachedNone);
    parent.size({100, 80});
    kid.moveAbs({30, 20});
    kid.attachedTo(c.to);
    EXPECT_EQ(kid.frameRect().ul(), ccPair<long>(30, 20)) << c.to;  // attaching moves nothing

    parent.size({131, 121});

    EXPECT_EQ(kid.frameRect(), ccUIRect(c.x, c.y, 10, 10)) << c.to;
  }
}

TEST_F(Attachment, aFrameAttachedLeftCenterReceivesTheParentsWidthAsX)
{
  kid.attachedTo(ccUIControlFrame::attachedLeftCenter);

  parent.parentResized();
  EXPECT_EQ(kid.frameRect().left(), 30);  // its own parent has not changed
  kid.parentResized();
  EXPECT_EQ(kid.frameRect().left(), 100);
  kid.parentResized();
  EXPECT_EQ(kid.frameRect(), ccUIRect(100, 20, 10, 10));
}

TEST_F(Attachment, movingTheFrameMeasuresTheDistanceAnew)
{
  kid.attachedTo(ccUIControlFrame::attachedBottomRight);
  kid.moveAbs({80, 60});

  parent.size({200, 200});

  EXPECT_EQ(kid.frameRect().ul(), ccPair<long>(180, 180));
}

TEST_F(Attachment, endlessParentsFollowTheRootThroughClipping)
{
  ccUIControlFrame inPlane(root.groundPlane(), ccUIRect(390, 290, 10, 10));
  inPlane.attachedTo(ccUIControlFrame::attachedBottomRight);
  image.resize({500, 350});
  root.setScope(ccUITablet::imageLayer, &image, false);

  root.scopeRect(ccUIRect(0, 0, 500, 350));

  EXPECT_EQ(inPlane.frameRect().ul(), ccPair<long>(490, 340));
}

TEST_F(Attachment, aDragEndsItUnlessItIsAttachedToDrag)
{
  kid.condVisible(true);
  kid.attachedTo(ccUIControlFrame::attachedCenter);
  kid.attachedToDrag(true);
  kid.dragStart({0, 0});
  EXPECT_EQ(kid.attachedTo(), ccUIControlFrame::attachedCenter);
  kid.dragStop({0, 0}, {4, 0});
  EXPECT_EQ(kid.frameRect().left(), 34);

  kid.attachedToDrag(false);
  kid.dragStart({0, 0});
  EXPECT_EQ(kid.attachedTo(), ccUIControlFrame::attachedNone);
  kid.dragStop({0, 0}, {0, 0});
}

TEST_F(Attachment, withoutAParentNothingIsMeasured)
{
  ccUIControlFrame orphan(nullptr, ccUIRect(1, 2, 3, 4));

  orphan.attachedTo(ccUIControlFrame::attachedBottomRight);
  orphan.parentResized();

  EXPECT_EQ(orphan.frameRect(), ccUIRect(1, 2, 3, 4));
}

struct Told : ccUIControlFrame {
  Told(ccUIFrame* parent, HookLog& l, std::string n)
      : ccUIControlFrame(parent, ccUIRect(0, 0, 5, 5)), log(l), name(std::move(n))
  {
  }
  void parentResized() override { log.push_back(name + " resized"); }
  void parentClipped() override { log.push_back(name + " clipped"); }
  HookLog& log;
  std::string name;
};

TEST_F(Attachment, kidsAreToldOfAResizeAndAClippingFromFrontToBack)
{
  Told a(&parent, log, "a"), b(&parent, log, "b");

  parent.size({50, 80});

  EXPECT_EQ(cfTake(log), (HookLog{"b resized", "a resized", "b clipped", "a clipped"}));
  parent.moveAbs({1, 1});
  EXPECT_TRUE(log.empty());
}

}  // namespace
