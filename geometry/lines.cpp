#include "geometry/lines.h"

#include <algorithm>

double ccLine::distToPoint(ccVector<2> const& p) const
{
  ccVector<2> const d = p - pos_;
  return std::abs(dir_.x() * d.y() - dir_.y() * d.x());
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
  part = ccLineSeg(pos_ + dir_ * first, pos_ + dir_ * last);
  return true;
}

ccPoint ccLineSeg::closestPoint(ccVector<2> const& q) const
{
  ccVector<2> const d = p2_ - p1_;
  double const square = d.dot(d);
  return square > 0 ? ccPoint(p1_ + d * std::clamp((q - p1_).dot(d) / square, 0.0, 1.0)) : p1_;
}

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
