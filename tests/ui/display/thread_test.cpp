// Images from several threads while the operator works.
#include "tests/support/test_display.h"
#include "tests/ui/display/test_images.h"

#include "foundation/resource.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

TEST(DisplayThreads, imagesFromSeveralThreadsWhileEventsAreProcessed)
{
  constexpr int kProducers = 3, kRounds = 20;
  TestDisplay test(60, 50, {.overlay = true});
  test.scope().keepLog(false);
  test.overlayScope().keepLog(false);
  auto* const shape = new BoxShape(test.imageFrame(), ccVector<2>(10, 10), 8);
  shape->drawLayer(ccUITablet::overlayLayer);
  shape->condVisible(true);
  std::atomic<int> running{kProducers};
  std::vector<std::thread> producers;
  for (int p = 0; p < kProducers; ++p)
    producers.emplace_back([&test, &running, p] {
      Random random(static_cast<unsigned>(p));
      for (int i = 0; i < kRounds; ++i) {
        long const w = cfPick(random, 1, 70), h = cfPick(random, 1, 60);
        unsigned const seed = static_cast<unsigned>(i);
        switch (p) {
        case 0:
          test->image(cfRandom8(w, h, seed), true);
          break;
        case 1:
          test->image(cfRandom16(w, h, seed, 0, 1023), 10);
          break;
        default:
          test->image(cfRandomRGB32(60, 50, seed));
          break;
        }
      }
      --running;
    });

  Random random(9);
  for (int i = 0; running > 0; ++i) {
    test->mouseMode(static_cast<ccDisplay::MouseMode>(i % 4));
    ccPair<long> const a(cfPick(random, 0, 59), cfPick(random, 0, 49)), b(cfPick(random, 0, 59), cfPick(random, 0, 49));
    switch (i % 5) {
    case 0:
      test.drag(a, b);
      break;
    case 1:
      test.doubleClick(a);
      break;
    case 2:
      test->fit();
      break;
    case 3:
      test.moveTo(a).keyDown(ccKeyboardEvent::vkControl).press().moveTo(b).keyUp(ccKeyboardEvent::vkControl).release();
      break;
    default:
      test.rightClick(a);
      break;
    }
  }
  for (std::thread& producer : producers)
    producer.join();

  // All is as if it had been done by one.
  EXPECT_FALSE(test->dragging());
  EXPECT_FALSE(test->drawingDisabled());
  EXPECT_EQ(test->overlayRepaint_.depth(), 0);
  EXPECT_EQ(test->layerRepaint_.depth(), 1);
  EXPECT_FALSE(test.scope().screenUpdatesLocked());
  ccPelBuffer<unsigned char> const last = cfRandom8(60, 50, 77);
  test->image(last, true);
  test->pan({0, 0});
  test->magExact(1);
  plain::Picture const expected = plain::displayPicture(cfView(60, 50, 60, 50), cfGreyOnSurface(last, 32), 0);
  EXPECT_EQ(plain::firstDifference(expected, test.screenPels()), "");
}

TEST(DisplayThreads, anImageWaitsForTheRootsMutex)
{
  TestDisplay test(60, 50);
  std::atomic<bool> done{false};
  std::thread producer;
  {
    ccLock const lock(test.root().mutex());
    producer = std::thread([&] {
      test->image(cfGrey8(60, 50, 9), true);
      done = true;
    });
    std::this_thread::yield();
    EXPECT_FALSE(test->hasImage());
    EXPECT_FALSE(done);
  }
  producer.join();
  EXPECT_TRUE(done);
  EXPECT_EQ(test.scope().screenRGB(30, 30), ccRGB(9, 9, 9));
}

}  // namespace
