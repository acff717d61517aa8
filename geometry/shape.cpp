#include "geometry/shape.h"

#include "geometry/bezier.h"
#include "geometry/bounds.h"
#include "geometry/gen_rect.h"

namespace {

// Follows strokes; what differs is what is done with their pieces.
class cc_StrokeSink : public ccOutlineSink {
public:
  void point(ccVector<2> const& p) override { place_(p); }
  void moveTo(ccVector<2> const& p) override
  {
    start_ = current_ = p;
    place_(p);
  }
  void lineTo(ccVector<2> const& p) override
  {
    line_(current_, p);
    current_ = p;
  }
  void arcTo(ccEllipseArc2 const& arc) override
  {
    shape_(arc);
    current_ = arc.endPoint();
  }
  void curveTo(ccBezierCurve const& curve) override
  {
    shape_(curve);
    current_ = curve.endPoint();
  }
  void close() override { lineTo(start_); }

protected:
  virtual void place_(ccVector<2> const&) = 0;
  virtual void line_(ccVector<2> const& from, ccVector<2> const& to) = 0;
  virtual void shape_(ccShape const&) = 0;

private:
  ccVector<2> start_, current_;
};

class cc_DistanceSink : public cc_StrokeSink {
public:
  explicit cc_DistanceSink(ccVector<2> const& p) : p_(p) {}
  double best() const { return best_; }

protected:
  void place_(ccVector<2> const& p) override { best_ = std::min(best_, p.distance(p_)); }
  void line_(ccVector<2> const& a, ccVector<2> const& b) override { best_ = std::min(best_, cf_segmentDistance(a, b, p_)); }
  void shape_(ccShape const& s) override { best_ = std::min(best_, s.distanceToPoint(p_)); }

private:
  ccVector<2> p_;
  double best_ = cfInfinity;
};

class cc_BoundsSink : public cc_StrokeSink {
public:
  cs_Bounds const& bounds() const { return bounds_; }

protected:
  void place_(ccVector<2> const& p) override { bounds_.add(p); }
  void line_(ccVector<2> const&, ccVector<2> const& to) override { bounds_.add(to); }
  void shape_(ccShape const& s) override
  {
    ccRect const r = s.encloseRect();
    bounds_.add(r.ul());
    bounds_.add(r.lr());
  }

private:
  cs_Bounds bounds_;
};

}  // namespace

ccPtrHandle<ccShape> ccShape::clone() const { return clone_(); }
ccPtrHandle_const<ccShape> ccShape::map(ccXform<2> const& x) const { return map_(x); }

double ccShape::distanceToPoint(ccVector<2> const& p) const
{
  cc_DistanceSink sink(p);
  outline(sink);
  return sink.best();
}

ccRect ccShape::encloseRect() const
{
  cc_BoundsSink sink;
  outline(sink);
  return sink.bounds().rect();
}

ccGenRect ccShape::encloseGenRect() const { return ccGenRect(encloseRect()); }
