// The phase around a drawing, for the source files of the scope. Where it starts, surfaces may be restored, and a redraw of all
// may run before the drawing goes on; so a drawing decides nothing before its phase stands. What it draws on it asks of the
// phase, and what lies inside it works out from the bounds that the phase gives.
#pragma once

#include "backend/scope/win32_scope.h"

#include <new>

struct ccWin32UIScope::cs_Standing {
  ccWin32UIScope* parent = nullptr;
  ccUIRect rect;
  cs_Place place;
};

// One call of a drawing operation: the scope stands as it was called, whatever a redraw has lent it to in the midst. When the
// call ends it stands as the redraw left it, which is how its owner knows it. Calls within a call are part of it.
class ccWin32UIScope::cc_Call {
public:
  explicit cc_Call(ccWin32UIScope&);
  cc_Call(cc_Call const&) = delete;
  cc_Call& operator=(cc_Call const&) = delete;
  ~cc_Call();
  bool settle();  // to be asked after anything that may redraw; whether the scope had been moved

private:
  ccWin32UIScope& scope_;
  cc_Call* const outer_;
  cc_Call* const whole_;  // the call that this is part of, or this
  cs_Standing called_, after_;
  long redraws_ = 0;
  bool moved_ = false;
};

// Open while it lives, unless drawing is optimised, which keeps it for the next. Positions are pels of the scope.
class ccWin32UIScope::cc_Phase {
public:
  cc_Phase(ccWin32UIScope&, DrawMethod);
  cc_Phase(cc_Phase const&) = delete;
  cc_Phase& operator=(cc_Phase const&) = delete;
  ~cc_Phase();

  explicit operator bool() const { return started_; }
  cs_Target const& target() const { return target_; }
  bool restart(DrawMethod);  // goes on by another method
  void leaveOpen() { leftOpen_ = true; }

private:
  cc_Call call_;
  ccWin32UIScope& scope_;
  cs_Target target_;
  bool started_ = false;
  bool leftOpen_ = false;
};

// Runs a drawing, which never throws for want of memory: what is missing comes with a redraw of all, at the next update.
template <class Draw> void ccWin32UIScope::quietly_(Draw&& draw)
{
  cc_Call const call(*this);
  try {
    draw();
  } catch (std::bad_alloc const&) {
    root_().redrawDue_ = true;
    report_(ownRect_(), false);
  }
}
