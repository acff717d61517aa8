#include "geometry/lines.h"

#include "geometry/plane.h"

#include <algorithm>

ccLine::ccLine(ccVector<2> const& dir, ccPoint const& pos)
    : dir_(cf_finite(dir, "direction of a line").unit()), pos_(cf_finite(pos, "point of a line"))
{
}

void ccLine::pos(ccPoint const& p) { pos_ = cf_finite(p, "point of a line"); }

double ccLine::distToPoint(ccVector<2> const& p) const
{
  return cf_distance(std::abs(cf_cross(dir_, p - pos_)));
}

bool ccLine::clip(ccRect const& r, ccLineSeg& part) const
{
  ccRect const box = r.encloseRect();
  double first = -std::numeric_limits<double>::infinity(), last = std::numeric_limits<double>::infinity();
  double const low[2] = {box.ul().x(), box.ul().y()}, high[2] = {box.lr().x(), box.lr().y()};
  for (int axis = 0; axis < 2; ++axis) {
    if (dir_[axis] == 0) {
      if (pos_[axis] < low[axis] || pos_[axis] > high[axis])
        return false;
      continue;
    }
    double const a = (low[axis] - pos_[axis]) / dir_[axis], b = (high[axis] - pos_[axis]) / dir_[axis];
    first = std::max(first, std::min(a, b));
    last = std::min(last, std::max(a, b));
  }
  if (!(first <= last))
    return false;
  ccPoint const p1 = pos_ + dir_ * first, p2 = pos_ + dir_ * last;
  if (!cf_isFinite(p1) || !cf_isFinite(p2))
    return false;  // a rectangle beyond all bounds
  part = ccLineSeg(p1, p2);
  return true;
}

ccLineSeg::ccLineSeg(ccPoint const& p1, ccPoint const& p2)
    : p1_(cf_finite(p1, "end of a segment")), p2_(cf_finite(p2, "end of a segment"))
{
}

void ccLineSeg::p1(ccPoint const& p) { p1_ = cf_finite(p, "end of a segment"); }
void ccLineSeg::p2(ccPoint const& p) { p2_ = cf_finite(p, "end of a segment"); }
ccPoint ccLineSeg::closestPoint(ccVector<2> const& q) const 
{
  return cf_closestOnSegment(p1_, p2_, cf_finite(q, "place near a segment"));
}

double ccLineSeg::distanceToPoint(ccVector<2> const& p) const { return cf_segmentDistance(p1_, p2_, p); }

ccRect ccLineSeg::encloseRect() const
{
  return ccRect::fromCorners(ccPoint(std::min(p1_.x(), p2_.x()), std::min(p1_.y(), p2_.y())),
                             ccPoint(std::max(p1_.x(), p2_.x()), std::max(p1_.y(), p2_.y())));
}

void ccLineSeg::outline(ccOutlineSink& sink) const
{
  sink.moveTo(p1_);
  sink.lineTo(p2_);
}

ccPtrHandle<ccShape> ccLineSeg::clone_() const { return new ccLineSeg(*this); }
ccPtrHandle_const<ccShape> ccLineSeg::map_(ccXform<2> const& x) const { return new ccLineSeg(map(x)); }

ccPoint cfLineSegEnd(ccLineSeg const& s, int end) { return end == 1 ? s.p1() : end == 2 ? s.p2() : s.midPoint(); }

ccLineSeg cfMoveLineSegEnd(ccLineSeg const& s, int end, ccPoint const& to)
{
  return end == 1 ? ccLineSeg(to, s.p2()) : end == 2 ? ccLineSeg(s.p1(), to) : s;
}
