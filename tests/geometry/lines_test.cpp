#include "geometry/lines.h"

#include <gtest/gtest.h>

TEST(Line, directionComesFirst)
{
  ccLine const line(ccVector<2>(0, 5), ccPoint(3, 4));

  EXPECT_EQ(line.dir(), ccVector<2>(0, 1));
  EXPECT_EQ(line.pos(), ccVector<2>(3, 4));
  EXPECT_EQ(line.distToPoint(ccPoint(10, -50)), 7);
}
