// Line segments and lines, edited through real events.
#include "ui/shapes/line_seg.h"

#include "tests/support/memory_watch.h"
#include "tests/ui/shapes/shape_stage.h"
#include "ui/shapes/line.h"

namespace {

ccLineSeg cfSeg(double x1, double y1, double x2, double y2) { return ccLineSeg(ccPoint(x1, y1), ccPoint(x2, y2)); }

struct Segment : ::testing::Test {
  GhostColor ghost;
  TestDisplay test{120, 80};
  ccUILineSeg seg{test.displayFrame()};

  Segment() { seg.lineSeg(cfSeg(20, 20, 60, 20)), seg.condVisible(true); }
};

TEST_F(Segment, hasItsDefaults)
{
  ccUILineSeg const fresh;
  EXPECT_EQ(fresh.lineSeg(), cfSeg(10, 10, 50, 50));
  EXPECT_FLOAT_EQ(ccUILineSeg::touchDist(), 3);
}

TEST_F(Segment, itsPlaceIsItsMiddleAndMovesBothEnds)
{
  EXPECT_EQ(seg.pos(), ccVector<2>(40, 20));
  seg.pos(ccVector<2>(45, 30));
  EXPECT_EQ(seg.lineSeg(), cfSeg(25, 30, 65, 30));
}

TEST_F(Segment, isTouchedWithinItsPickDistanceInPels)
{
  EXPECT_TRUE(seg.isTouched(ccVector<2>(40, 23), 1));
  EXPECT_FALSE(seg.isTouched(ccVector<2>(40, 23.1), 1));
  EXPECT_TRUE(seg.isTouched(ccVector<2>(40, 21), 3));
  EXPECT_FALSE(seg.isTouched(ccVector<2>(40, 21.1), 3));
  ccUILineSeg::touchDist(5);
  EXPECT_TRUE(seg.isTouched(ccVector<2>(40, 25), 1));
  ccUILineSeg::touchDist(3);
}

TEST_F(Segment, itsHandlesStandOnItsEnds)
{
  test.click({40, 20});
  ASSERT_EQ(seg.numKids(), 2);
  EXPECT_EQ(cfHandle(seg, 0)->absPos(), ccVector<2>(20, 20));
  EXPECT_EQ(cfHandle(seg, 1)->absPos(), ccVector<2>(60, 20));
  // The places are relative, so moving the shape leaves them alone.
  EXPECT_EQ(cfHandle(seg, 0)->pos(), ccVector<2>(-20, 0));
  seg.pos(ccVector<2>(50, 40));
  EXPECT_EQ(cfHandle(seg, 0)->pos(), ccVector<2>(-20, 0));
  EXPECT_EQ(cfHandle(seg, 0)->absPos(), ccVector<2>(30, 40));
  seg.lineSeg(cfSeg(10, 10, 20, 50));
  EXPECT_EQ(cfHandle(seg, 0)->absPos(), ccVector<2>(10, 10));
  EXPECT_EQ(cfHandle(seg, 1)->absPos(), ccVector<2>(20, 50));
}

TEST_F(Segment, draggingAHandleMovesOneEndAndKeepsTheOther)
{
  test.click({40, 20});
  test.press({60, 20}).moveTo({80, 40});
  EXPECT_EQ(seg.lineSeg(), cfSeg(20, 20, 60, 20));  // only a ghost so far
  EXPECT_FALSE(cfPlaces(test.scope(), GhostColor::rgb()).empty());
  test.release();
  EXPECT_EQ(seg.lineSeg(), cfSeg(20, 20, 80, 40));
  EXPECT_TRUE(cfPlaces(test.scope(), GhostColor::rgb()).empty());

  test.drag({20, 20}, {30, 60});
  EXPECT_EQ(seg.lineSeg(), cfSeg(30, 60, 80, 40));
}

TEST_F(Segment, theGhostIsTheLineThatIsCommitted)
{
  test.click({40, 20});
  test.press({60, 20}).moveTo({70, 70}).moveTo({90, 20});
  Places level;
  for (long x = 20; x <= 90; ++x)
    level.insert({x, 20});
  EXPECT_EQ(cfPlaces(test.scope(), GhostColor::rgb()), level);
  test.release();
  seg.manipulable(false);
  EXPECT_EQ(cfPlaces(test.scope(), kYellow), level);
}

TEST_F(Segment, theGhostIsAThinLineWhateverThePenOfTheShape)
{
  seg.props(ccGraphicProps(ccColor::redColor(), 5, ceSolidPen, false));
  test.click({40, 20});
  test.press({60, 20}).moveTo({90, 20});
  EXPECT_EQ(cfPlaces(test.scope(), GhostColor::rgb()).size(), 71u);
  test.release();
}

TEST_F(Segment, aGhostIsNotShiftedByTheDragOfAnotherMember)
{
  BoxShape kid(&seg, ccVector<2>(0, 30), 4);  // at (40, 50), behind the handles
  kid.condVisible(true);
  cfSelect(seg);
  ccUIObject* const end = seg.frontKid();
  for (ccUIObject* member : {static_cast<ccUIObject*>(&kid), end}) {
    member->multiSelectable(true);
    member->condSelected(true, false);
  }
  test.press({60, 20}).moveTo({90, 20});
  ASSERT_TRUE(kid.dragging() && end->dragging());
  Places expected;
  for (long x = 20; x <= 90; ++x)
    expected.insert({x, 20});
  for (long y = 50; y < 54; ++y)
    for (long x = 70; x < 74; ++x)
      expected.insert({x, y});
  EXPECT_EQ(cfPlaces(test.scope(), GhostColor::rgb()), expected);
  test.release();
}

TEST_F(Segment, aDragThatEndsWhereItBeganCommitsWhatItsGhostShowed)
{
  test.click({40, 20});
  test.press({60, 20}).moveTo({90, 50}).moveTo({60, 20});
  EXPECT_EQ(cfPlaces(test.scope(), GhostColor::rgb()).size(), 41u);
  test.release();
  EXPECT_EQ(seg.lineSeg(), cfSeg(20, 20, 60, 20));
}

TEST_F(Segment, clickingAHandleNeverChangesTheSelectionThatItShows)
{
  test.click({40, 20});
  Places const handles = cfPlaces(test.scope(), kMagenta);
  EXPECT_EQ(handles.size(), 98u);
  for (bool const shift : {false, true}) {
    test.shift(shift).click({60, 20}).click({20, 20}).doubleClick({20, 20}).shift(false);
    test.update();
    EXPECT_EQ(cfPlaces(test.scope(), kMagenta), handles);
    EXPECT_TRUE(seg.selected());
    EXPECT_EQ(cfVisibleHandles(seg), 2);
    EXPECT_EQ(seg.lineSeg(), cfSeg(20, 20, 60, 20));
  }
}

TEST_F(Segment, draggingTheSegmentItselfMovesAllOfIt)
{
  test.press({40, 20}).moveTo({50, 35});
  EXPECT_EQ(seg.lineSeg(), cfSeg(20, 20, 60, 20));
  Places level;
  for (long x = 30; x <= 70; ++x)
    level.insert({x, 35});
  EXPECT_EQ(cfPlaces(test.scope(), GhostColor::rgb()), level);
  test.release();
  EXPECT_EQ(seg.lineSeg(), cfSeg(30, 35, 70, 35));
  EXPECT_EQ(cfHandle(seg, 1)->absPos(), ccVector<2>(70, 35));
}

TEST_F(Segment, aDisplayThatDoesNotLieAtTheRootsOriginIsDraggedInItsOwnCoordinates)
{
  TestDisplay shifted(200, 120, {.rect = ccUIRect(50, 30, 120, 80)});
  ccUILineSeg inner(shifted.displayFrame());
  inner.lineSeg(cfSeg(20, 20, 60, 20));
  inner.condVisible(true);
  shifted.click({90, 50});
  shifted.drag({110, 50}, {130, 70});
  EXPECT_EQ(inner.lineSeg(), cfSeg(20, 20, 80, 40));
}

TEST_F(Segment, aHandleThatIsLetGoOfByItsCommitEndsCleanly)
{
  test.click({40, 20});
  test.press({60, 20}).moveTo({80, 40});
  seg.freeHandles();  // the one that is dragged, too
  test.moveTo({90, 50}).release();
  EXPECT_EQ(seg.lineSeg(), cfSeg(20, 20, 60, 20));
  EXPECT_EQ(seg.numKids(), 0);
}

TEST_F(Segment, hoveringAndDraggingAllocateNothing)
{
  test.scope().keepLog(false);
  test.click({40, 20});
  test.press({60, 20}).moveTo({80, 40}).moveTo({60, 20}).release();
  test.cursors().reserve(1000);  // which it remembers
  for (int i = 0; i < 4; ++i)
    test.moveTo({20 + 5 * i, 20});
  long const before = MemoryWatch::allocations();
  for (int i = 0; i < 30; ++i)
    test.moveTo({15 + 2 * i, 18 + i % 4});
  EXPECT_EQ(MemoryWatch::allocations(), before);

  test.moveTo({60, 20}).press().moveTo({61, 21});
  long const pressed = MemoryWatch::allocations();
  for (int i = 0; i < 50; ++i)
    test.moveTo({60 + i, 20 + i % 30});
  EXPECT_EQ(MemoryWatch::allocations(), pressed);
  test.release();
}

struct Line : ::testing::Test {
  GhostColor ghost;
  TestDisplay test{120, 80};
  ccUILine line{test.displayFrame()};

  Line() { line.line(ccLine(ccVector<2>(1, 0), ccPoint(50, 30))), line.condVisible(true); }
};

TEST_F(Line, hasItsDefaults)
{
  ccUILine const fresh;
  EXPECT_EQ(fresh.line(), ccLine(ccVector<2>(1, 0), ccPoint(256, 240)));
  EXPECT_FLOAT_EQ(ccUILine::touchDist(), 3);
}

TEST_F(Line, isTouchedAlongItsWholeLength)
{
  EXPECT_TRUE(line.isTouched(ccVector<2>(-1000, 33), 1));
  EXPECT_FALSE(line.isTouched(ccVector<2>(50, 33.1), 1));
  EXPECT_FALSE(line.isTouched(ccVector<2>(50, 31.6), 2));
}

TEST_F(Line, itsHandleStandsOnItsPointAndFollowsIt)
{
  test.click({10, 30});
  ASSERT_EQ(line.numKids(), 1);
  auto* const handle = dynamic_cast<ccUILineRotHandle*>(cfHandle(line, 0));
  EXPECT_EQ(handle->uiLine(), &line);
  EXPECT_EQ(handle->absPos(), ccVector<2>(50, 30));
  line.line(ccLine(ccVector<2>(1, 1), ccPoint(60, 40)));
  EXPECT_EQ(handle->absPos(), ccVector<2>(60, 40));
}

TEST_F(Line, theDragAloneSetsItsDirection)
{
  test.click({10, 30});
  test.press({53, 30}).moveTo({53, 50});  // beside the middle of the handle
  EXPECT_EQ(line.line().dir(), ccVector<2>(1, 0));
  Places upright;
  for (long y = 0; y < 80; ++y)
    upright.insert({50, y});
  EXPECT_EQ(cfPlaces(test.scope(), GhostColor::rgb()), upright);
  test.release();
  EXPECT_EQ(line.line(), ccLine(ccVector<2>(0, 1), ccPoint(50, 30)));
}

TEST_F(Line, aShortDragOfItsHandleTurnsNothingHoweverFarThePointerWent)
{
  test.click({10, 30});
  test.press({50, 30}).moveTo({90, 70}).moveTo({53, 27}).release();
  EXPECT_EQ(line.line(), ccLine(ccVector<2>(1, 0), ccPoint(50, 30)));
  test.drag({50, 30}, {54, 30});
  EXPECT_EQ(line.line().dir(), ccVector<2>(1, 0));
  test.drag({50, 30}, {50, 26});
  EXPECT_EQ(line.line().dir(), ccVector<2>(0, -1));
}

TEST_F(Line, aLineThatIsPickedItselfGetsItsPointWhereItIsDropped)
{
  test.drag({10, 31}, {25, 60});
  EXPECT_EQ(line.line(), ccLine(ccVector<2>(1, 0), ccPoint(25, 60)));
}

TEST_F(Line, aLineThatIsDraggedAlongWithAnotherMovesByTheDrag)
{
  ccUILineSeg seg(test.displayFrame());
  seg.lineSeg(cfSeg(20, 60, 60, 60));
  seg.condVisible(true);
  line.multiSelectable(true);
  seg.multiSelectable(true);
  test.click({10, 30});
  test.shift(true).click({40, 60}).shift(false);
  ASSERT_TRUE(line.selected() && seg.selected());

  test.drag({30, 60}, {37, 65});

  EXPECT_EQ(seg.lineSeg(), cfSeg(27, 65, 67, 65));
  EXPECT_EQ(line.line(), ccLine(ccVector<2>(1, 0), ccPoint(57, 35)));
}

TEST_F(Line, onADisplayThatDoesNotLieAtTheRootsOriginItIsDroppedWhereThePointerIs)
{
  TestDisplay shifted(200, 120, {.rect = ccUIRect(50, 30, 120, 80)});
  ccUILine inner(shifted.displayFrame());
  inner.line(ccLine(ccVector<2>(1, 0), ccPoint(50, 30)));
  inner.condVisible(true);
  shifted.drag({60, 60}, {75, 90});
  EXPECT_EQ(inner.line().pos(), ccPoint(25, 60));
}

}  // namespace
