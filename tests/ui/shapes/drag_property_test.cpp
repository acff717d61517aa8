// Seeded random drags: nothing changes before the release, and what the last ghost showed is what is committed.
#include "tests/ui/shapes/shape_stage.h"
#include "ui/shapes/line.h"
#include "ui/shapes/line_seg.h"

#include <cstdlib>
#include <random>

namespace {

int cfRounds() { return std::getenv("KRS_LONG") ? 3000 : 150; }

using Random = std::mt19937;

double cfReal(Random& r, double a, double b) { return std::uniform_real_distribution<double>(a, b)(r); }
long cfWhole(Random& r, long a, long b) { return std::uniform_int_distribution<long>(a, b)(r); }

// A display that is zoomed and panned anew for each round, with shapes in one of its three frames.
struct RandomDisplay {
  TestDisplay test{160, 120, {.rect = ccUIRect(7, 5, 145, 110)}};

  RandomDisplay()
  {
    ccPelBuffer<unsigned char> image = cfDark(100, 80);
    image.clientFromImageXform(ccXform<2>(ccMatrix<2>(1.5, 0.4, -0.5, 1.2), ccVector<2>(11, -3)));
    test.scope().keepLog(false);
    test->image(image, true);
  }

  ccUIShapesFrame& anyFrame(Random& random)
  {
    test->magExact(cfReal(random, 0.4, 6));
    test->pan(ccVector<2>(cfReal(random, -20, 20), cfReal(random, -20, 20)));
    return *test->shapesFrame(static_cast<ccDisplay::CoordinateSystem>(cfWhole(random, 0, 2)));
  }
  // A place of the frame that is in sight.
  static ccPoint place(Random& random, ccUIShapesFrame const& frame)
  {
    return frame.tabletFromScreen({cfWhole(random, 20, 135), cfWhole(random, 20, 95)}) +
           ccVector<2>(cfReal(random, -0.2, 0.2), cfReal(random, -0.2, 0.2));
  }
  void steps(Random& random)
  {
    for (long i = cfWhole(random, 0, 4); i >= 0; --i)
      test.moveTo({cfWhole(random, 0, 159), cfWhole(random, 0, 119)});
  }
};

TEST(DragProperty, theLastGhostOfASegmentsHandleIsWhatIsCommitted)
{
  GhostColor const ghost;
  RandomDisplay display;
  Random random(1);
  for (int round = 0; round < cfRounds(); ++round) {
    ccUIShapesFrame& frame = display.anyFrame(random);
    ccUILineSeg seg(&frame);
    seg.lineSeg(ccLineSeg(display.place(random, frame), display.place(random, frame)));
    seg.condVisible(true);
    cfSelect(seg);
    display.test.update();
    ccLineSeg const before = seg.lineSeg();
    int const id = static_cast<int>(cfWhole(random, 1, 2));
    display.test.press(frame.screenCoords(cfLineSegEnd(before, id)));
    ASSERT_NE(display.test.events().owner(), &seg);  // a handle
    bool const first = display.test.events().owner() == cfHandle(seg, 0);
    display.steps(random);
    ASSERT_EQ(seg.lineSeg(), before) << "round " << round;
    Places const shown = cfPlaces(display.test.scope(), GhostColor::rgb());
    display.test.release();

    ccLineSeg const after = seg.lineSeg();
    EXPECT_EQ(first ? after.p2() : after.p1(), first ? before.p2() : before.p1()) << "round " << round;
    seg.manipulable(false);
    ASSERT_EQ(shown, cfPlaces(display.test.scope(), kYellow)) << "round " << round;
  }
}

TEST(DragProperty, theLastGhostOfALinesHandleIsWhatIsCommitted)
{
  GhostColor const ghost;
  RandomDisplay display;
  Random random(2);
  for (int round = 0; round < cfRounds(); ++round) {
    ccUIShapesFrame& frame = display.anyFrame(random);
    ccUILine line(&frame);
    line.line(ccLine(ccVector<2>::polar(1, ccRadian(cfReal(random, -3, 3))), display.place(random, frame)));
    line.condVisible(true);
    cfSelect(line);
    display.test.update();
    ccLine const before = line.line();
    display.test.press(frame.screenCoords(before.pos()));
    ASSERT_EQ(display.test.events().owner(), cfHandle(line, 0));
    display.steps(random);
    ASSERT_EQ(line.line(), before) << "round " << round;
    Places const shown = cfPlaces(display.test.scope(), GhostColor::rgb());
    display.test.release();

    EXPECT_EQ(line.line().pos(), before.pos());
    line.manipulable(false);
    ASSERT_EQ(shown, cfPlaces(display.test.scope(), kYellow)) << "round " << round;
  }
}

TEST(DragProperty, theLastGhostOfSelectedSegmentsIsWhereTheyAreDropped)
{
  GhostColor const ghost;
  RandomDisplay display;
  Random random(3);
  for (int round = 0; round < cfRounds(); ++round) {
    ccUIShapesFrame& frame = display.anyFrame(random);
    ccUILineSeg a(&frame), b(&frame);
    for (ccUILineSeg* seg : {&a, &b}) {
      seg->lineSeg(ccLineSeg(display.place(random, frame), display.place(random, frame)));
      seg->multiSelectable(true);
      seg->manipulable(false);
      seg->condVisible(true);
    }
    cfSelect(a);
    b.userSelect(1);
    ASSERT_TRUE(a.selected() && b.selected());
    display.test.update();
    ccLineSeg const beforeA = a.lineSeg(), beforeB = b.lineSeg();
    ccPair<long> const at = frame.screenCoords(beforeA.midPoint());
    display.test.press(at);
    display.steps(random);
    ccPair<long> const to = display.test.events().lastMousePos();
    ASSERT_TRUE(a.lineSeg() == beforeA && b.lineSeg() == beforeB) << "round " << round;
    Places const shown = cfPlaces(display.test.scope(), GhostColor::rgb());
    display.test.release();

    // Both moved by the same, and a pel of the drag is a pel of the screen.
    ccVector<2> const moved = a.lineSeg().midPoint() - beforeA.midPoint();
    EXPECT_NEAR(moved.distance(b.lineSeg().midPoint() - beforeB.midPoint()), 0, 1e-9);
    ccVector<2> const inPels = frame.screenMap_.mapVector(moved);
    EXPECT_NEAR(inPels.distance(ccVector<2>(to - at)), 0, 1e-6) << "round " << round;
    ASSERT_EQ(shown, cfPlaces(display.test.scope(), kYellow)) << "round " << round;
  }
}

TEST(DragProperty, aDragOfZeroOfAWholeShapeChangesNothing)
{
  RandomDisplay display;
  Random random(4);
  for (int round = 0; round < cfRounds(); ++round) {
    ccUIShapesFrame& frame = display.anyFrame(random);
    ccUILineSeg seg(&frame);
    seg.lineSeg(ccLineSeg(display.place(random, frame), display.place(random, frame)));
    seg.condVisible(true);
    seg.manipulable(false);
    ccLineSeg const before = seg.lineSeg();
    ccPair<long> const at = frame.screenCoords(before.midPoint());
    display.test.press(at).moveTo({cfWhole(random, 0, 159), 50}).moveTo(at).release();
    EXPECT_EQ(seg.lineSeg(), before) << "round " << round;

    // An end that lies on a pel stays on it.
    ccLineSeg const onPels(frame.tabletFromScreen({30, 40}), frame.tabletFromScreen({90, 71}));
    seg.lineSeg(onPels);
    seg.manipulable(true);
    cfSelect(seg);
    display.test.press({90, 71}).moveTo({10, 10}).moveTo({90, 71}).release();
    EXPECT_EQ(seg.lineSeg(), onPels) << "round " << round;
  }
}

}  // namespace
