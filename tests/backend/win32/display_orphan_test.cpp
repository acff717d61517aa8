// A display whose window is not there: messages still reach it, and it still goes away cleanly.
#include "tests/support/window_driver.h"

#include <gtest/gtest.h>

TEST(DisplayOrphan, aSizeMessageWithoutAWindowLeavesNothingBehind)
{
  WindowDriver driver(60, 40);
  auto display = std::make_unique<ccWin32Display>(nullptr);
  ccPelBuffer<unsigned char> image(20, 10);
  display->image(image, true);

  display->processWndUpdateMsg(5, 0, 40 << 16 | 60);
  display->image(image, true);
  display.reset();

  EXPECT_EQ(driver.display().clientArea(), ccPair<long>(60, 40));
}
