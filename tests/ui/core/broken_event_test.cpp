// Events from archives that end early, are disturbed, or for which memory fails.
#include "tests/support/broken_archives.h"

#include "ui/core/keyboard_event.h"
#include "ui/core/mouse_event.h"

using namespace krs_test;

namespace {

ccMouseEvent mouse(long x, long y, ccMouseEvent::Event event, std::uint32_t keys)
{
  ccMouseEvent e;
  e.position({x, y});
  e.event(event);
  e.whichButton(ccMouseEvent::rightButton);
  e.buttons(static_cast<std::uint32_t>(x) & 7u);
  e.keys(keys);
  return e;
}

template <class Key> ccKeyboardEvent key(ccKeyboardEvent::Event event, bool repeat, Key k)
{
  ccKeyboardEvent e;
  e.event(event);
  e.repeatKey(repeat);
  e.key(k);
  return e;
}

// What an archive moves of a mouse event.
bool sameMouse(ccMouseEvent const& a, ccMouseEvent const& b)
{
  return a.x() == b.x() && a.y() == b.y() && a.event() == b.event() && a.whichButton() == b.whichButton() &&
         a.buttons() == b.buttons() && a.keys() == b.keys();
}

}  // namespace

TEST(BrokenEvent, aMouseEventStaysAsItWas)
{
  expectWholeOrUntouched(
      "mouse", mouse(5, -6, ccMouseEvent::mousePressed, 4), mouse(100, 200, ccMouseEvent::mouseReleased, 2),
      [](ccArchive& ar, ccMouseEvent& e) { ar || e; }, &sameMouse);
}

TEST(BrokenEvent, aKeyboardEventStaysAsItWas)
{
  auto const former = key(ccKeyboardEvent::keyUp, true, L'\x1234');
  expectWholeOrUntouched("character", key(ccKeyboardEvent::keyDown, false, 'k'), former);
  expectWholeOrUntouched("wide", key(ccKeyboardEvent::keyDown, false, L'\x20AC'), former);
  expectWholeOrUntouched("virtual", key(ccKeyboardEvent::keyDown, false, ccKeyboardEvent::vkF1), former);
}

TEST(BrokenEvent, anotherKeyTypeLeavesTheEventAsItWas)
{
  auto const former = key(ccKeyboardEvent::keyUp, true, 'f');
  ccKeyboardEvent e = former;
  // Version 0, key down, key type 3, no repeat, a key.
  ccMemoryArchive ar({0, 0, 0, 0, 1, 0, 0, 0, 3, 0, 0, 0, 0, 'x', 0, 0, 0});
  EXPECT_THROW(ar || e, ccArchive::BadValue);
  EXPECT_EQ(e, former);
}
