#include "geometry/segment.h"

namespace {

ccRadian cf_arcSpan(ccRadian span)
{
  cf_require(cf_isFinite(span) && std::abs(span.value()) <= 2 * cfPi, "span of an arc");
  return span;
}

}  // namespace

cc2SegmentArc::cc2SegmentArc(ccRadian start, ccRadian span, ccXform<2> const& xform)
    : start_(cf_finite(start, "start of an arc")), span_(cf_arcSpan(span)), xform_(xform)
{
  double scale = 1;
  ccRadian rot;
  bool mirrored = false;
  cf_require(cf_isFinite(xform.trans()) && xform.similarity(scale, rot, mirrored), "map of the unit circle to an arc");
}

cc2SegmentArc::cc2SegmentArc(ccEllipseArc const& arc)
    : start_(arc.start() + arc.conic().phi), span_(arc.span()),
      xform_(arc.conic().rx, arc.conic().rx, arc.conic().c)
{
  cf_require(arc.conic().isCircle(), "segment of an arc that is not circular");
}

ccPoint cc2SegmentArc::closestPoint(ccVector<2> const& q) const
{
  ccPoint const first = xform_ * ccVector<2>::polar(1, start_);
  ccVector<2> const d = cf_finite(q, "place near an arc") - xform_.trans();
  if (d == ccVector<2>() || first == xform_.trans())
    return first;
  // A similarity keeps which point is nearest. The matrix is a multiple of an orthogonal one, so that its transpose inverts it
  // up to a factor.
  ccMatrix<2> const& m = xform_.matrix();
  ccRadian const angle = ccVector<2>(m.element(0, 0) * d.x() + m.element(1, 0) * d.y(),
                                     m.element(0, 1) * d.x() + m.element(1, 1) * d.y()).angle();
  if (cf_isInSpan(angle, start_, span_))
    return xform_ * ccVector<2>::polar(1, angle);
  ccPoint const last = xform_ * ccVector<2>::polar(1, start_ + span_);
  return last.distance(q) < first.distance(q) ? last : first;
}

ccRadian cc2SegmentArc::midDirection() const
{
  ccVector<2> const tangent = cf_leftNormal(ccVector<2>::polar(span_.value() < 0 ? -1 : 1, middle_()));
  return xform_.mapVector(tangent).angle();
}
