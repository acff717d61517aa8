#include "canvas/live_props.h"

#include "foundation/math_error.h"

#include <gtest/gtest.h>

#include <limits>

TEST(ccLiveDisplayProps, defaults)
{
  ccLiveDisplayProps const p;
  EXPECT_FALSE(p.xformSet());
  EXPECT_EQ(p.clientTransform(), ccXform<2>());
  EXPECT_EQ(p.frameRateInterval(), 0.0);
  EXPECT_FALSE(p.useSoftwareLiveDisplay());
  EXPECT_TRUE(p.displayOutput());
  EXPECT_EQ(p.restartDelay(), 0.0);
  EXPECT_FALSE(p.makeLocal());
  EXPECT_EQ(p.threadPriority(), -1);
  EXPECT_FALSE(p.pelbufferCallback());
}

TEST(ccLiveDisplayProps, keepsWhatIsSet)
{
  struct Callback : ccLiveDisplayProps::PelbufferCallback {
    void operator()(void const*) override {}
  };
  ccPtrHandle<ccLiveDisplayProps::PelbufferCallback> const callback(new Callback());
  ccLiveDisplayProps p;
  p.frameRateInterval(1.5);
  p.useSoftwareLiveDisplay(true);
  p.displayOutput(false);
  p.restartDelay(0.25);
  p.makeLocal(true);
  p.threadPriority(cePriorityHighest);
  p.pelbufferCallback(callback);

  ccLiveDisplayProps const copy = p;
  EXPECT_EQ(copy.frameRateInterval(), 1.5);
  EXPECT_TRUE(copy.useSoftwareLiveDisplay());
  EXPECT_FALSE(copy.displayOutput());
  EXPECT_EQ(copy.restartDelay(), 0.25);
  EXPECT_TRUE(copy.makeLocal());
  EXPECT_EQ(copy.threadPriority(), 5);
  EXPECT_EQ(copy.pelbufferCallback().get(), callback.get());
}

TEST(ccLiveDisplayProps, aClientTransformIsMarkedAsSet)
{
  ccLiveDisplayProps p;
  p.clientTransform(ccXform<2>());  // the identity counts too
  EXPECT_TRUE(p.xformSet());
  ccXform<2> const x(ccMatrix<2>(0, -2, 2, 0), ccVector<2>(3, 4));
  p.clientTransform(x);
  EXPECT_EQ(p.clientTransform(), x);
}

TEST(ccLiveDisplayProps, aSingularTransformThrowsAndChangesNothing)
{
  ccXform<2> const singular(ccMatrix<2>(1, 2, 2, 4), ccVector<2>(0, 0));
  ccLiveDisplayProps fresh;
  EXPECT_THROW(fresh.clientTransform(singular), ccMathError::Singular);
  EXPECT_FALSE(fresh.xformSet());
  EXPECT_EQ(fresh.clientTransform(), ccXform<2>());

  ccLiveDisplayProps p;
  ccXform<2> const x(2, 2, ccVector<2>(3, 4));
  p.clientTransform(x);
  EXPECT_THROW(p.clientTransform(singular), ccMathError::Singular);
  EXPECT_TRUE(p.xformSet());
  EXPECT_EQ(p.clientTransform(), x);
}

TEST(ccLiveDisplayProps, aTransformWithoutFiniteDeterminantThrows)
{
  ccLiveDisplayProps p;
  double const nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(p.clientTransform(ccXform<2>(nan, 1, ccVector<2>())), ccMathError::Singular);
  EXPECT_FALSE(p.xformSet());
}
