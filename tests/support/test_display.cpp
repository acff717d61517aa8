#include "tests/support/test_display.h"

#include "canvas/ui_error.h"

void TestDisplayRoot::colorMap(std::vector<ccRGB> const& m)
{
  ++colorMapSets;
  TestRoot::colorMap(m);
  // The ramp of the display takes the places 10 to 240 of the palette.
  std::vector<ccRGB> palette = systemColorMap();
  for (std::size_t i = 0; i <= 230 && i < m.size(); ++i)
    palette[10 + i] = m[i];
  if (ccUIScope* const surface = scope(imageLayer))
    surface->colorMap(palette);
}

void TestDisplayRoot::colorMapEx(std::vector<ccRGB> const& m)
{
  ++colorMapExSets;
  TestRoot::colorMapEx(m);
  if (ccUIScope* const surface = scope(imageLayer))
    surface->colorMapEx(m);
}

ConcreteDisplay::ConcreteDisplay(ccUIFrame* parent, ccUIRect const& r, int depth) : ccDisplay(parent, r), depth_(depth) {}

void ConcreteDisplay::count_(long& counter, char const* name)
{
  ++counter;
  hooks.emplace_back(name);
  if (onHook)
    onHook(name);
}

ccDisplay::DisplayFormat ConcreteDisplay::displayFormat()
{
  switch (depth_) {
  case 15:
    return format15;
  case 16:
    return format16;
  case 24:
    return format24;
  case 32:
    return format32;
  default:
    return format8;
  }
}

std::int64_t ConcreteDisplay::selectAreaStart(CoordinateSystem cs, ccPelRect const& area, ccColor const& color)
{
  pick = Pick{cs, area, {}, "", color};
  return 1;
}

ccPelRect ConcreteDisplay::selectAreaEnd(std::int64_t) { return pick.area; }

ccPelRect ConcreteDisplay::selectArea(CoordinateSystem cs, ccPelRect const& area, char const* prompt, ccColor const& color)
{
  pick = Pick{cs, area, {}, prompt, color};
  return area;
}

std::int64_t ConcreteDisplay::selectPointStart(CoordinateSystem cs, ccPair<double> const& point, ccColor const& color)
{
  pick = Pick{cs, {}, point, "", color};
  return 1;
}

ccPair<double> ConcreteDisplay::selectPointEnd(std::int64_t) { return pick.point; }

ccPair<double> ConcreteDisplay::selectPoint(CoordinateSystem cs, ccPair<double> const& point, char const* prompt,
                                            ccColor const& color)
{
  pick = Pick{cs, {}, point, prompt, color};
  return point;
}

void ConcreteDisplay::getDisplayedImage(ccPelBuffer<unsigned char>&, Layers) { throw ccUIError::NotImplemented(); }
void ConcreteDisplay::getDisplayedImage(ccPelBuffer<ccPackedRGB16Pel>&, Layers) { throw ccUIError::NotImplemented(); }
void ConcreteDisplay::getDisplayedImage(ccPelBuffer<ccPackedRGB32Pel>&, Layers) { throw ccUIError::NotImplemented(); }

void ConcreteDisplay::redraw_()
{
  redraws.push_back(redrawLayer_);
  ccDisplay::redraw_();
}

bool ConcreteDisplay::askDerivedDisplayToDoFullDraw()
{
  ++fullDrawQuestions;
  return paintsItself;
}

TestDisplay::TestDisplay(long rootWidth, long rootHeight, TestDisplaySetup const& setup)
    : imageScope_(ccPair<long>(rootWidth, rootHeight), setup.depth),
      overlayScope_(setup.overlay ? std::make_unique<MemoryScope>(ccPair<long>(rootWidth, rootHeight), setup.depth,
                                                                  MemoryScope::overlayPlane)
                                  : nullptr),
      root_(&imageScope_, overlayScope_.get()),
      display_(std::make_unique<ConcreteDisplay>(
          &root_, setup.rect.isNull() ? ccUIRect(0, 0, rootWidth, rootHeight) : setup.rect, setup.depth))
{
  // A node made with new dies with its parent; this one is deleted before.
  display_->autoDelete(false);
  for (ccDisplay::CoordinateSystem cs : {ccDisplay::displayCoords, ccDisplay::imageCoords, ccDisplay::clientCoords})
    for (ccUITablet::Layers layer : {ccUITablet::imageLayer, ccUITablet::overlayLayer})
      display_->shapesFrame(cs)->incrementCount(layer);
  display_->condVisible(true);
  update();
  clearLogs();
}

TestDisplay::~TestDisplay() = default;

ccUINestedCoordFrame* TestDisplay::imageFrame()
{
  return dynamic_cast<ccUINestedCoordFrame*>(display_->shapesFrame(ccDisplay::imageCoords));
}

ccUINestedCoordFrame* TestDisplay::clientFrame()
{
  return dynamic_cast<ccUINestedCoordFrame*>(display_->shapesFrame(ccDisplay::clientCoords));
}

void TestDisplay::clearLogs()
{
  display_->hooks.clear();
  display_->counts = ConcreteDisplay::Counts();
  display_->redraws.clear();
  display_->fullDrawQuestions = 0;
  root_.cursors.clear();
  root_.colorMapSets = root_.colorMapExSets = 0;
  imageScope_.clearLog();
  if (overlayScope_)
    overlayScope_->clearLog();
}

std::vector<std::uint32_t> TestDisplay::cut_(std::vector<std::uint32_t> const& all) const
{
  ccUIRect const r = ccUIRect(display_->screenOrigin(), static_cast<ccUITablet const&>(*display_).size()) &
                     imageScope_.rootRect();
  std::vector<std::uint32_t> cut;
  for (long y = r.top(); y < r.bottom(); ++y)
    for (long x = r.left(); x < r.right(); ++x)
      cut.push_back(all[static_cast<std::size_t>(y * imageScope_.rootRect().width() + x)]);
  return cut;
}

std::vector<std::uint32_t> TestDisplay::pels() { return cut_(imageScope_.surface()); }

std::vector<std::uint32_t> TestDisplay::screenPels() { return cut_(imageScope_.screen()); }

TestDisplay& TestDisplay::at_(Pos const& at)
{
  pos_ = at;
  return *this;
}

TestDisplay& TestDisplay::send_(ccMouseEvent::Event event, std::uint32_t button)
{
  events().processEvent(cfMouse(event, pos_, button, down_, keys_));
  return *this;
}

TestDisplay& TestDisplay::moveTo(Pos const& to) { return at_(to).send_(ccMouseEvent::mouseMoved, 0); }

TestDisplay& TestDisplay::press_(std::uint32_t button)
{
  down_ |= button;
  return send_(ccMouseEvent::mousePressed, button);
}

TestDisplay& TestDisplay::release_(std::uint32_t button)
{
  down_ &= ~button;
  return send_(ccMouseEvent::mouseReleased, button);
}

TestDisplay& TestDisplay::rightDoubleClick(Pos const& at)
{
  at_(at);
  down_ |= ccMouseEvent::rightButton;
  return send_(ccMouseEvent::mouseDblClicked, ccMouseEvent::rightButton);
}

TestDisplay& TestDisplay::doubleClick(Pos const& at)
{
  click(at);
  down_ |= ccMouseEvent::leftButton;
  send_(ccMouseEvent::mouseDblClicked, ccMouseEvent::leftButton);
  return release();
}

TestDisplay& TestDisplay::dwell() { return send_(ccMouseEvent::mouseDwell, 0); }

TestDisplay& TestDisplay::key_(std::uint32_t mask, bool down)
{
  keys_ = down ? keys_ | mask : keys_ & ~mask;
  return *this;
}

TestDisplay& TestDisplay::keyDown(ccKeyboardEvent::VirtualKey key, bool repeated)
{
  ccKeyboardEvent e;
  e.event(ccKeyboardEvent::keyDown);
  e.key(key);
  e.repeatKey(repeated);
  events().processEvent(e);
  return *this;
}

TestDisplay& TestDisplay::keyUp(ccKeyboardEvent::VirtualKey key)
{
  ccKeyboardEvent e;
  e.event(ccKeyboardEvent::keyUp);
  e.key(key);
  events().processEvent(e);
  return *this;
}

TestDisplay& TestDisplay::character(wchar_t c)
{
  ccKeyboardEvent e;
  e.event(ccKeyboardEvent::keyCharacter);
  e.key(c);
  events().processEvent(e);
  return *this;
}
