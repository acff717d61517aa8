// Shapes that threads of the application change and delete while an operator drags them.
#include "foundation/resource.h"
#include "tests/ui/shapes/shape_stage.h"
#include "ui/shapes/label.h"
#include "ui/shapes/line_seg.h"

#include <atomic>
#include <cstdlib>
#include <random>
#include <thread>

namespace {

TEST(ShapeThreads, shapesAreSetMadeAndDeletedWhileTheyAreDragged)
{
  int const rounds = std::getenv("KRS_LONG") ? 2000 : 60;
  TestDisplay test(120, 80);
  test.scope().keepLog(false);
  ccUILineSeg seg(test.displayFrame());
  seg.lineSeg(ccLineSeg(ccPoint(20, 20), ccPoint(60, 20)));
  seg.condVisible(true);
  std::atomic<int> running{2};
  std::thread setter([&] {
    std::mt19937 random(1);
    for (int i = 0; i < rounds; ++i) {
      auto const at = [&] { return static_cast<double>(random() % 80); };
      seg.lineSeg(ccLineSeg(ccPoint(at(), at()), ccPoint(at(), at())));
      if (i % 5 == 0)
        seg.freeHandles();
      seg.manipulable(i % 7 != 0);
    }
    --running;
  });
  std::thread maker([&] {
    for (int i = 0; i < rounds; ++i) {
      ccUILabel label(test.displayFrame());
      label.label("moving");
      label.condVisible(true);
      ccUILineSeg other(test.displayFrame());
      other.condVisible(true);
      other.userSelect(i % 2);
      label.pos(ccVector<2>(static_cast<double>(i % 100), 30));
    }
    --running;
  });
  std::mt19937 random(2);
  auto const place = [&] { return ccPair<long>(static_cast<long>(random() % 120), static_cast<long>(random() % 80)); };
  while (running > 0) {
    ccPair<long> at = place();
    {
      ccLock lock(test.root().mutex());
      if (random() % 2)
        at = test.displayFrame()->screenCoords(seg.lineSeg().p1());
    }
    test.moveTo(at).press().moveTo(place()).moveTo(place()).release();
  }
  setter.join();
  maker.join();

  seg.lineSeg(ccLineSeg(ccPoint(10, 10), ccPoint(30, 10)));
  seg.manipulable(true);
  cfSelect(seg);
  EXPECT_EQ(cfVisibleHandles(seg), 2);
  EXPECT_EQ(cfHandle(seg, 1)->absPos(), ccVector<2>(30, 10));
}

}  // namespace
