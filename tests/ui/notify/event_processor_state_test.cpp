// The snapshot of a display's event processor.
#include "ui/notify/event_processor_state.h"

#include "foundation/pel_buffer.h"
#include "tests/support/test_display.h"

#include <gtest/gtest.h>

namespace {

TEST(EventProcessorState, isEmptyAtFirst)
{
  ccUIEventProcessorState const state;
  EXPECT_EQ(state.anchor(), ccPair<long>());
  EXPECT_EQ(state.button(), 0u);
  EXPECT_FALSE(state.dblClk());
  EXPECT_EQ(state.dwellCount(), 0);
  EXPECT_FALSE(state.isMouseCaptured());
  EXPECT_EQ(state.mouseCaptureKey(), 0xFFFFFFFFu);
}

TEST(EventProcessorState, hasAGetterAndASetterForEachField)
{
  ccUIEventProcessorState state;
  ccMouseEvent mouse;
  mouse.position({7, 8});
  ccKeyboardEvent key;
  key.key(L'q');
  state.anchor({1, 2});
  state.anchorClient({3.5, 4});
  state.anchorImage({5, 6.25});
  state.button(2);
  state.dblClk(true);
  state.dwellCount(9);
  state.isMouseCaptured(true);
  state.mouseCaptureKey(77);
  state.lastMousePos({11, 12});
  state.lastMouseEvent(mouse);
  state.lastKeyboardEvent(key);

  EXPECT_EQ(state.anchor(), ccPair<long>(1, 2));
  EXPECT_EQ(state.anchorClient(), ccVector<2>(3.5, 4));
  EXPECT_EQ(state.anchorImage(), ccPair<double>(5, 6.25));
  EXPECT_EQ(state.button(), 2u);
  EXPECT_TRUE(state.dblClk());
  EXPECT_EQ(state.dwellCount(), 9);
  EXPECT_TRUE(state.isMouseCaptured());
  EXPECT_EQ(state.mouseCaptureKey(), 77u);
  EXPECT_EQ(state.lastMousePos(), ccPair<long>(11, 12));
  EXPECT_EQ(state.lastMouseEvent().position(), ccPair<long>(7, 8));
  EXPECT_EQ(state.lastKeyboardEvent().unicodeKey(), L'q');
}

struct StateOfDisplay : ::testing::Test {
  // The display does not lie at the root's origin, so root pels and display pels differ.
  TestDisplay test{200, 100, {.rect = ccUIRect(20, 10, 150, 80)}};
  ccUIEventProcessorState state;

  StateOfDisplay()
  {
    ccPelBuffer<unsigned char> image(60, 40);
    image.clientFromImageXform(ccXform<2>(ccMatrix<2>(2, 0, 0, 2), ccVector<2>(0, 0)));
    test->image(image, true);
    test->mag(4);
    test->pan(ccVector<2>(0, 0));
  }
};

TEST_F(StateOfDisplay, takesEverythingFromTheProcessor)
{
  test.keyDown(ccKeyboardEvent::vkShift).keyUp(ccKeyboardEvent::vkShift);
  test.press({60, 30}).moveTo({64, 33});

  state.setState(test.events(), nullptr);

  EXPECT_EQ(state.anchor(), ccPair<long>(60, 30));
  EXPECT_EQ(state.lastMousePos(), ccPair<long>(64, 33));
  EXPECT_EQ(state.button(), std::uint32_t{ccMouseEvent::leftButton});
  EXPECT_EQ(state.lastMouseEvent().event(), ccMouseEvent::mouseMoved);
  EXPECT_EQ(state.lastKeyboardEvent().event(), ccKeyboardEvent::keyUp);
  EXPECT_FALSE(state.dblClk());
  EXPECT_FALSE(state.isMouseCaptured());
  // Without a display the anchor stays as it is.
  EXPECT_EQ(state.anchorClient(), ccVector<2>(60, 30));
  EXPECT_EQ(state.anchorImage(), ccPair<double>(60, 30));
  test.release();
}

TEST_F(StateOfDisplay, theAnchorIsInTheCoordinatesOfTheDisplay)
{
  test.press({60, 30});
  ccPoint const image = test->displayToImage(ccPoint(40, 20));  // 60 - 20, 30 - 10
  ccPoint const client = test->displayToClient(ccPoint(40, 20));
  ASSERT_NEAR(client.x(), image.x() * 2, 1e-9);

  state.setState(test.events(), &test.display());

  EXPECT_EQ(state.anchor(), ccPair<long>(60, 30));
  EXPECT_NEAR(state.anchorImage().x(), image.x(), 1e-9);
  EXPECT_NEAR(state.anchorImage().y(), image.y(), 1e-9);
  EXPECT_NEAR(state.anchorClient().x(), client.x(), 1e-9);
  EXPECT_NEAR(state.anchorClient().y(), client.y(), 1e-9);
  // The image's centre lies on the display's at pan 0: 30 + (40 - 75) / 4 and 20 + (20 - 40) / 4.
  EXPECT_NEAR(image.x(), 21.25, 1);
  EXPECT_NEAR(image.y(), 15, 1);
  test.release();
}

TEST_F(StateOfDisplay, aCaptureIsToldByTheKeyOfTheNode)
{
  test.events().mouseCapture(test.displayFrame());
  state.setState(test.events(), nullptr);
  EXPECT_TRUE(state.isMouseCaptured());
  EXPECT_EQ(state.mouseCaptureKey(), test.displayFrame()->key());

  test.events().mouseCapture(nullptr);
  state.setState(test.events(), nullptr);
  EXPECT_FALSE(state.isMouseCaptured());
  EXPECT_EQ(state.mouseCaptureKey(), 0xFFFFFFFFu);
}

TEST_F(StateOfDisplay, doubleClicksAndDwellsAreToldWhileTheyLast)
{
  test.display().dwell(true);
  test.press({60, 30}).dwell().dwell();
  state.setState(test.events(), nullptr);
  EXPECT_EQ(state.dwellCount(), test.events().dwellCount());
  EXPECT_EQ(state.dwellCount(), 2);
  test.release();
  test.rightClick({50, 50}).rightDoubleClick({50, 50});
  state.setState(test.events(), nullptr);
  EXPECT_EQ(state.dblClk(), test.events().dblClk());
  EXPECT_TRUE(state.dblClk());
}

}  // namespace
