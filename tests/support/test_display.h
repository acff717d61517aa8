// An image display for tests: a concrete ccDisplay over memory scopes on a concrete root, with a hand that drives it through
// the event processor and accounts of what it called. A script reads like this:
//
//   TestDisplay test(200, 100, {.depth = 16});
//   test->image(picture, true);
//   test.press({50, 10}).moveTo({80, 40}).release();
//   EXPECT_EQ(test.scope().rgb(80, 40), ...);
//
// Positions are root pels; without a rectangle the display covers the root. Shapes may be made with
// new Shape(test.imageFrame()): the frames count one shape more on each layer than they hold, so that a repaint never skips
// one that was not added by addShape.
#pragma once

#include "tests/support/memory_scope.h"
#include "tests/support/test_tree.h"
#include "ui/display/display.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

// Its colour maps reach the scopes, as with a root on a real screen.
class TestDisplayRoot : public TestRoot {
public:
  TestDisplayRoot(ccUIScope* image, ccUIScope* overlay) : TestRoot(image, overlay) {}

  using TestRoot::colorMap;
  using TestRoot::colorMapEx;
  void colorMap(std::vector<ccRGB> const&) override;
  void colorMapEx(std::vector<ccRGB> const&) override;

  long colorMapSets = 0, colorMapExSets = 0;
};

class ConcreteDisplay : public ccDisplay {
public:
  struct Counts {
    long panChanged = 0, magChanged = 0, imageChanged = 0, mouseModeChanged = 0, colorMapChanged = 0, imageMapChanged = 0,
         updatePanRanges = 0;
  };
  struct Pick {  // what the last selectArea or selectPoint was asked
    CoordinateSystem system = displayCoords;
    ccPelRect area;
    ccPair<double> point;
    std::string prompt;
    ccColor color;
  };

  ConcreteDisplay(ccUIFrame* parent, ccUIRect const&, int depth);

  Counts counts;
  HookLog hooks;                                   // the names of the change hooks, in order
  std::function<void(std::string const&)> onHook;  // called from within each of them
  std::vector<Layers> redraws;                     // the layer of each redraw_
  bool live = false;                               // what isLiveEnabled answers
  bool paintsItself = false;                       // what the question for a full draw is answered
  long fullDrawQuestions = 0;
  Pick pick;

  using ccDisplay::updateDisplay;

  DisplayFormat displayFormat() override;
  bool isLiveEnabled() override { return live; }
  using ccDisplay::selectArea;
  using ccDisplay::selectPoint;
  std::int64_t selectAreaStart(CoordinateSystem, ccPelRect const&, ccColor const&) override;
  ccPelRect selectAreaEnd(std::int64_t handle) override;
  ccPelRect selectArea(CoordinateSystem, ccPelRect const&, char const* prompt, ccColor const&) override;
  std::int64_t selectPointStart(CoordinateSystem, ccPair<double> const&, ccColor const&) override;
  ccPair<double> selectPointEnd(std::int64_t handle) override;
  ccPair<double> selectPoint(CoordinateSystem, ccPair<double> const&, char const* prompt, ccColor const&) override;
  void getDisplayedImage(ccPelBuffer<unsigned char>&, Layers) override;  // all three: ccUIError::NotImplemented
  void getDisplayedImage(ccPelBuffer<ccPackedRGB16Pel>&, Layers) override;
  void getDisplayedImage(ccPelBuffer<ccPackedRGB32Pel>&, Layers) override;
  void redraw_() override;

protected:
  void panChanged() override { count_(counts.panChanged, "panChanged"); }
  void magChanged() override { count_(counts.magChanged, "magChanged"); }
  void imageChanged() override { count_(counts.imageChanged, "imageChanged"); }
  void mouseModeChanged() override { count_(counts.mouseModeChanged, "mouseModeChanged"); }
  void colorMapChanged() override { count_(counts.colorMapChanged, "colorMapChanged"); }
  void imageMapChanged() override { count_(counts.imageMapChanged, "imageMapChanged"); }
  void updatePanRanges() override { count_(counts.updatePanRanges, "updatePanRanges"); }

private:
  bool askDerivedDisplayToDoFullDraw() override;
  void count_(long& counter, char const* name);

  int depth_;
};

struct TestDisplaySetup {
  int depth = 32;        // 8, 15, 16, 24 or 32
  bool overlay = false;  // overlay support is class-wide: with one, every tree of the process counts as having it
  ccUIRect rect = {};    // of the display on the root; null: all of the root
};

class TestDisplay {
public:
  using Pos = ccPair<long>;

  TestDisplay(long rootWidth, long rootHeight, TestDisplaySetup const& = {});
  ~TestDisplay();

  ConcreteDisplay& display() { return *display_; }
  ConcreteDisplay* operator->() { return display_.get(); }
  TestDisplayRoot& root() { return root_; }
  MemoryScope& scope() { return imageScope_; }
  MemoryScope& overlayScope() { return *overlayScope_; }  // only with an overlay
  ccUIShapesFrame* displayFrame() { return display_->shapesFrame(ccDisplay::displayCoords); }
  ccUINestedCoordFrame* imageFrame();
  ccUINestedCoordFrame* clientFrame();
  ConcreteDisplay::Counts& counts() { return display_->counts; }
  std::vector<ccUIRootObject::Cursor>& cursors() { return root_.cursors; }  // each call of setCursor
  ccUIEventProcessor& events() { return *root_.eventProcessor(); }

  void update() { root_.globalUpdate(); }
  void clearLogs();                            // hooks, counts, redraws, cursors and the logs of the scopes
  std::vector<std::uint32_t> pels();           // the surface behind the display, row by row
  std::vector<std::uint32_t> screenPels();     // the same of the screen
  void deleteDisplay() { display_.reset(); }

  // The hand. Buttons and keys stay down until they are released; a position stays for what follows.
  TestDisplay& moveTo(Pos const&);
  TestDisplay& press() { return press_(ccMouseEvent::leftButton); }
  TestDisplay& press(Pos const& at) { return at_(at).press(); }
  TestDisplay& release() { return release_(ccMouseEvent::leftButton); }
  TestDisplay& rightPress() { return press_(ccMouseEvent::rightButton); }
  TestDisplay& rightPress(Pos const& at) { return at_(at).rightPress(); }
  TestDisplay& rightRelease() { return release_(ccMouseEvent::rightButton); }
  TestDisplay& rightDoubleClick(Pos const& at);  // the second press alone
  TestDisplay& middlePress() { return press_(ccMouseEvent::middleButton); }
  TestDisplay& middlePress(Pos const& at) { return at_(at).middlePress(); }
  TestDisplay& middleRelease() { return release_(ccMouseEvent::middleButton); }
  TestDisplay& click(Pos const& at) { return moveTo(at).press().release(); }
  TestDisplay& rightClick(Pos const& at) { return moveTo(at).rightPress().rightRelease(); }
  TestDisplay& doubleClick(Pos const& at);  // press, release, double click, release
  TestDisplay& drag(Pos const& from, Pos const& to) { return moveTo(from).press().moveTo(to).release(); }
  TestDisplay& dwell();
  TestDisplay& shift(bool down) { return key_(ccMouseEvent::kShiftKey, down); }
  TestDisplay& control(bool down) { return key_(ccMouseEvent::kControlKey, down); }

  // The keyboard. Key events reach the node below the pointer.
  TestDisplay& keyDown(ccKeyboardEvent::VirtualKey, bool repeated = false);
  TestDisplay& keyUp(ccKeyboardEvent::VirtualKey);
  TestDisplay& character(wchar_t);

private:
  TestDisplay& at_(Pos const&);
  TestDisplay& press_(std::uint32_t button);
  TestDisplay& release_(std::uint32_t button);
  TestDisplay& key_(std::uint32_t mask, bool down);
  TestDisplay& send_(ccMouseEvent::Event, std::uint32_t button);
  std::vector<std::uint32_t> cut_(std::vector<std::uint32_t> const&) const;

  MemoryScope imageScope_;
  std::unique_ptr<MemoryScope> overlayScope_;
  TestDisplayRoot root_;
  std::unique_ptr<ConcreteDisplay> display_;
  Pos pos_;
  std::uint32_t down_ = 0, keys_ = 0;
};
