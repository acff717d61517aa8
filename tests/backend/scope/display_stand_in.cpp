// What the scope asks of its display, answered by the stand-in. Weak, so that the display's own answers win where both are
// linked.
#include "tests/backend/scope/scope_fixture.h"

[[gnu::weak]] ccWin32UIScope* ccWin32UIScope::displayActiveLockedScope_(ccWin32Display* display)
{
  return reinterpret_cast<DisplayStandIn*>(display)->active;
}

[[gnu::weak]] void ccWin32UIScope::displayActiveLockedScope_(ccWin32Display* display, ccWin32UIScope* scope)
{
  reinterpret_cast<DisplayStandIn*>(display)->active = scope;
}

[[gnu::weak]] bool ccWin32UIScope::platformCompatibility_() { return false; }
