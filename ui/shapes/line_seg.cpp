#include "ui/shapes/line_seg.h"

#include "foundation/resource.h"

namespace {

float touchDistOfAll = 3;

}  // namespace

float ccUILineSeg::touchDist() { return touchDistOfAll; }

void ccUILineSeg::touchDist(float pels) { touchDistOfAll = pels; }

ccUILineSeg::ccUILineSeg(ccUIObject* above) : cc_HandledShape(above) {}

ccUILineSeg::~ccUILineSeg() { beginDestruction(); }

void ccUILineSeg::lineSeg(ccLineSeg const& seg)
{
  ccLock lock(rootMutex());
  seg_ = seg;
  geometryChanged();
}

bool ccUILineSeg::isTouched(ccVector<2> const& p, double scale)
{
  return seg_.distToPoint(p) * scale <= static_cast<double>(touchDistOfAll);
}

ccVector<2> ccUILineSeg::pos_() { return seg_.midPoint(); }

void ccUILineSeg::pos_(ccVector<2> const& v)
{
  ccVector<2> const by = v - seg_.midPoint();
  seg_ = ccLineSeg(seg_.p1() + by, seg_.p2() + by);
  redim_();
}

void ccUILineSeg::draw_(ccUITablet& canvas, ccColor const& color, DrawMode)
{
  ccGraphicProps props = getGraphicProps();
  props.penColor(color);
  canvas.draw(seg_, props, drawLayer());
}

void ccUILineSeg::dragStop_(ccPair<long> const& from, ccPair<long> const& to) { ccUIShapes::dragStop_(from, to); }

ccUIHandle* ccUILineSeg::makeHandle_(long index) { return new ccUILineSegSizeHandle(this, static_cast<int>(index) + 1); }

ccUILineSegSizeHandle::ccUILineSegSizeHandle(ccUILineSeg* owner, int id) : cc_HandleOf(owner), id_(id) {}

void ccUILineSegSizeHandle::update()
{
  if (ccUILineSeg const* const shape = owner())
    pos(cfLineSegEnd(shape->lineSeg(), id_) - shape->lineSeg().midPoint());
}

ccLineSeg ccUILineSegSizeHandle::dragParams(ccPair<long> const& delta)
{
  ccLineSeg const& seg = owner()->lineSeg();
  return cfMoveLineSegEnd(seg, id_, dragged_(cfLineSegEnd(seg, id_), delta));
}

void ccUILineSegSizeHandle::dragAnimate_(ccPair<long> const& start, ccPair<long> const& current)
{
  if (owner())
    drawGhost_(dragParams(current - start));
}

void ccUILineSegSizeHandle::dragStop_(ccPair<long> const& start, ccPair<long> const& current)
{
  if (ccUILineSeg* const shape = owner())
    shape->lineSeg(dragParams(current - start));
}
