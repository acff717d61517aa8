#include "ui/shapes/line.h"

#include "foundation/resource.h"
#include "ui/core/event_processor.h"
#include "ui/core/root.h"

#include <cstdlib>

namespace {

float touchDistOfAll = 3;

}  // namespace

float ccUILine::touchDist() { return touchDistOfAll; }

void ccUILine::touchDist(float pels) { touchDistOfAll = pels; }

ccUILine::ccUILine(ccUIObject* above) : cc_HandledShape(above) {}

ccUILine::~ccUILine() { beginDestruction(); }

void ccUILine::line(ccLine const& l)
{
  ccLock lock(rootMutex());
  line_ = l;
  geometryChanged();
}

bool ccUILine::isTouched(ccVector<2> const& p, double scale)
{
  return line_.distToPoint(p) * scale <= static_cast<double>(touchDistOfAll);
}

ccVector<2> ccUILine::pos_() { return line_.pos(); }

void ccUILine::pos_(ccVector<2> const& v) { line_.pos(v); }

void ccUILine::draw_(ccUITablet& canvas, ccColor const& color, DrawMode)
{
  ccGraphicProps props = getGraphicProps();
  props.penColor(color);
  canvas.draw(line_, props, drawLayer());
}

// A line that was picked itself, not by its handle or as one of several, gets its point where it was dropped.
void ccUILine::dragStop_(ccPair<long> const& from, ccPair<long> const& to)
{
  cc_NodeRef const self(this);
  ccUIShapes::dragStop_(from, to);
  if (!self.alive() || !root_ || root_->eventProcessor()->owner() != this)
    return;
  if (ccUITablet const* const canvas = tablet())
    pos(canvas->tabletFromScreen(to));
}

ccUIHandle* ccUILine::makeHandle_(long) { return new ccUILineRotHandle(this); }

ccUILineRotHandle::ccUILineRotHandle(ccUILine* owner) : cc_HandleOf(owner) { setIcon(turnIcon); }

ccLine ccUILineRotHandle::dragParams(ccPair<long> const& delta)
{
  ccLine const& line = owner()->line();
  if (std::labs(delta.x()) < kTurnDeadZone && std::labs(delta.y()) < kTurnDeadZone)
    return line;
  ccVector<2> const dir = mapMove(delta);
  return dir == ccVector<2>() ? line : ccLine(dir, line.pos());
}

void ccUILineRotHandle::dragAnimate_(ccPair<long> const& start, ccPair<long> const& current)
{
  if (owner())
    drawGhost_(dragParams(current - start));
}

void ccUILineRotHandle::dragStop_(ccPair<long> const& start, ccPair<long> const& current)
{
  if (ccUILine* const shape = owner())
    shape->line(dragParams(current - start));
}
